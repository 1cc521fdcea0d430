#include "shell/TutorialPageViewController.h"

#include "platform/Assets.h"
#include "platform/ImageView.h"
#include "shell/TutorialPageIndicatorView.h"
#include "shell/TutorialStyle.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace TutorialStyle;

TutorialPageViewController::TutorialPageViewController(TutorialPageContent content,
                                                       std::function<void()> onContinue,
                                                       std::function<void()> onBack,
                                                       std::function<void()> onSkip, QWidget* parent)
    : ViewController(parent), content_(std::move(content)), onContinue(std::move(onContinue)),
      onBack(std::move(onBack)), onSkip(std::move(onSkip)) {
    setObjectName(QStringLiteral("tutorialPage%1").arg(content_.pageIndex));
    setFocusPolicy(Qt::StrongFocus);
}

void TutorialPageViewController::viewDidLoad() {
    setAttribute(Qt::WA_StyledBackground, true);
    setStyleSheet(pageStyleSheet());

    heroImageView_ = new ImageView(this);
    heroImageView_->setObjectName(QStringLiteral("heroImageView"));
    heroImageView_->setContentMode(ContentMode::scaleAspectFill);
    heroImageView_->setImage(Assets::image(content_.imageName));
    heroImageView_->setMinimumHeight(200);

    titleFirstLineLabel_ =
        makeTitleLabel(content_.titleFirstLine, QStringLiteral("titleFirstLineLabel"), this);
    titleSecondLineLabel_ =
        makeTitleLabel(content_.titleSecondLine, QStringLiteral("titleSecondLineLabel"), this);
    subtitleLabel_ = makeSubtitleLabel(content_.subtitle, this);

    filterOptionsStack_ = new QWidget(this);
    filterOptionsStack_->setObjectName(QStringLiteral("filterOptionsStack"));
    auto* filterRow = new QHBoxLayout(filterOptionsStack_);
    filterRow->setContentsMargins(0, 0, 0, 0);
    filterRow->setSpacing(18);
    filterRow->setAlignment(Qt::AlignCenter);
    for (int i = 0; i < content_.filterOptions.size(); ++i) {
        auto* option = new QLabel(content_.filterOptions[i], filterOptionsStack_);
        const bool selected = i == content_.selectedFilterIndex;
        option->setProperty("selectedOption", selected);
        option->setStyleSheet(selected ? QStringLiteral("color: white; font-size: 15px; font-weight: 600;")
                                       : QStringLiteral("color: rgba(255,255,255,102); font-size: 15px;"));
        filterRow->addWidget(option);
    }
    // An empty list collapses the row so the text above closes up to what follows.
    if (content_.filterOptions.isEmpty())
        filterOptionsStack_->setFixedHeight(0);

    pageIndicatorView_ = new TutorialPageIndicatorView(this);
    pageIndicatorView_->configure(content_.pageCount, content_.pageIndex);

    continueButton_ = makeContinueButton(content_.buttonTitle, this);
    connect(continueButton_, &QPushButton::clicked, this, &TutorialPageViewController::didTapContinue);

    auto* text = new QVBoxLayout;
    text->setContentsMargins(kSideMargin, 0, kSideMargin, 0);
    text->setSpacing(2);
    text->addWidget(titleFirstLineLabel_);
    text->addWidget(titleSecondLineLabel_);
    text->addSpacing(10);
    text->addWidget(subtitleLabel_);
    text->addSpacing(content_.filterOptions.isEmpty() ? 0 : 18);
    text->addWidget(filterOptionsStack_);

    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 12);
    page->setSpacing(0);
    if (content_.imageFirst) {
        page->addWidget(heroImageView_, 5);
        page->addSpacing(24);
        page->addLayout(text);
        page->addStretch(1);
    } else {
        page->addSpacing(kBackButtonSize + 40);
        page->addLayout(text);
        page->addSpacing(24);
        page->addWidget(heroImageView_, 5);
        page->addSpacing(16);
    }
    page->addWidget(pageIndicatorView_, 0, Qt::AlignHCenter);
    page->addSpacing(16);
    auto* buttonRow = new QHBoxLayout;
    buttonRow->setContentsMargins(kSideMargin, 0, kSideMargin, 0);
    buttonRow->addWidget(continueButton_);
    page->addLayout(buttonRow);

    // The top controls float over the picture.
    backButton_ = makeBackButton(this);
    backButton_->setVisible(hasBackAction());
    connect(backButton_, &QPushButton::clicked, this, &TutorialPageViewController::didTapBack);
    skipButton_ = new QPushButton(QStringLiteral("Skip"), this);
    skipButton_->setObjectName(QStringLiteral("skipButton"));
    skipButton_->setCursor(Qt::PointingHandCursor);
    skipButton_->setStyleSheet(QStringLiteral("QPushButton { color: white; background: rgba(0,0,0,60);"
                                              " border: none; border-radius: 14px; padding: 6px 14px;"
                                              " font-size: 15px; }"));
    connect(skipButton_, &QPushButton::clicked, this, &TutorialPageViewController::didTapSkip);
}

void TutorialPageViewController::resizeEvent(QResizeEvent* event) {
    ViewController::resizeEvent(event);
    if (backButton_) {
        backButton_->move(16, 8);
        backButton_->raise();
    }
    if (skipButton_) {
        skipButton_->adjustSize();
        skipButton_->move(width() - skipButton_->width() - 16, 8);
        skipButton_->raise();
    }
}

QList<QLabel*> TutorialPageViewController::filterOptionLabels() const {
    return filterOptionsStack_ ? filterOptionsStack_->findChildren<QLabel*>() : QList<QLabel*>();
}

void TutorialPageViewController::didTapBack() {
    if (onBack)
        onBack();
}

void TutorialPageViewController::didTapContinue() {
    if (onContinue)
        onContinue();
}

void TutorialPageViewController::didTapSkip() {
    if (onSkip)
        onSkip();
}

void TutorialPageViewController::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Right:
        didTapContinue();
        return;
    case Qt::Key_Backspace:
    case Qt::Key_Left:
        didTapBack();
        return;
    case Qt::Key_Escape:
        didTapSkip();
        return;
    default:
        ViewController::keyPressEvent(event);
    }
}
