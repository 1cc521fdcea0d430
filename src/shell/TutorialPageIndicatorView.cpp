#include "shell/TutorialPageIndicatorView.h"

#include "platform/Animations.h"

#include <QHBoxLayout>

TutorialPageIndicatorView::TutorialPageIndicatorView(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("pageIndicatorView"));
    stackView_ = new QHBoxLayout(this);
    stackView_->setContentsMargins(0, 0, 0, 0);
    stackView_->setSpacing(spacing);
    stackView_->setAlignment(Qt::AlignCenter);
    setFixedHeight(dotHeight);
}

void TutorialPageIndicatorView::configure(int numberOfPages, int currentPage) {
    numberOfPages_ = std::max(0, numberOfPages);
    currentPage_ = currentPage;
    rebuildDots();
    update(false);
}

void TutorialPageIndicatorView::setNumberOfPages(int numberOfPages) {
    numberOfPages_ = std::max(0, numberOfPages);
    rebuildDots();
    update(false);
}

void TutorialPageIndicatorView::setCurrentPage(int currentPage) {
    currentPage_ = currentPage;
    update(true);
}

void TutorialPageIndicatorView::rebuildDots() {
    for (QWidget* dot : dotViews_)
        delete dot;
    dotViews_.clear();
    for (int i = 0; i < numberOfPages_; ++i) {
        auto* dot = new QWidget(this);
        dot->setObjectName(QStringLiteral("pageDot%1").arg(i));
        dot->setAttribute(Qt::WA_StyledBackground, true);
        dot->setFixedSize(inactiveDotWidth, dotHeight);
        stackView_->addWidget(dot);
        dotViews_.append(dot);
    }
}

QList<int> TutorialPageIndicatorView::targetDotWidths() const {
    QList<int> widths;
    for (int i = 0; i < dotViews_.size(); ++i)
        widths.append(i == currentPage_ ? activeDotWidth : inactiveDotWidth);
    return widths;
}

void TutorialPageIndicatorView::update(bool animated) {
    const QList<int> targets = targetDotWidths();
    QList<int> starts;
    for (int i = 0; i < dotViews_.size(); ++i) {
        QWidget* dot = dotViews_[i];
        starts.append(dot->width());
        const bool active = i == currentPage_;
        dot->setStyleSheet(active ? QStringLiteral("background: white; border-radius: 4px;")
                                  : QStringLiteral("background: rgba(255,255,255,102); border-radius: 4px;"));
    }
    auto apply = [this, targets, starts](double p) {
        for (int i = 0; i < dotViews_.size() && i < targets.size(); ++i) {
            const int w = static_cast<int>(std::lround(Animations::interpolate(starts[i], targets[i], p)));
            dotViews_[i]->setFixedWidth(w);
        }
    };
    if (animated)
        Animations::animate(this, 0.2, apply);
    else
        apply(1.0);
}
