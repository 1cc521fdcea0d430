#include "shell/TutorialStartPageViewController.h"

#include "shell/OptionCardView.h"
#include "shell/TutorialPageIndicatorView.h"
#include "shell/TutorialStyle.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace TutorialStyle;

TutorialStartPageViewController::TutorialStartPageViewController(
    QString titleFirstLine, QString titleSecondLine, QString subtitle, QList<Option> options,
    QString buttonTitle, int pageIndex, int pageCount, std::function<void()> onContinue,
    std::function<void()> onBack, QWidget* parent)
    : ViewController(parent), titleFirstLine_(std::move(titleFirstLine)),
      titleSecondLine_(std::move(titleSecondLine)), subtitle_(std::move(subtitle)),
      options_(std::move(options)), buttonTitle_(std::move(buttonTitle)), pageIndex_(pageIndex),
      pageCount_(pageCount), onContinue(std::move(onContinue)), onBack(std::move(onBack)) {
    setObjectName(QStringLiteral("tutorialStartPage"));
    setFocusPolicy(Qt::StrongFocus);
}

QList<TutorialStartPageViewController::Option> TutorialStartPageViewController::startOptions() {
    return {
        {QStringLiteral("aiblending"), QStringLiteral("Frame a photo"),
         QStringLiteral("One photo, one frame.")},
        {QStringLiteral("lumivex"), QStringLiteral("Start a New"),
         QStringLiteral("Begin with a finished design.")},
        {QStringLiteral("collagestory"), QStringLiteral("Build a layout"),
         QStringLiteral("Place your photos your way.")},
        {QStringLiteral("mirroreffect"), QStringLiteral("Start blank"),
         QStringLiteral("An empty canvas to fill.")},
    };
}

void TutorialStartPageViewController::viewDidLoad() {
    setAttribute(Qt::WA_StyledBackground, true);
    setStyleSheet(pageStyleSheet());

    backButton_ = makeBackButton(this);
    backButton_->setVisible(static_cast<bool>(onBack));
    connect(backButton_, &QPushButton::clicked, this, &TutorialStartPageViewController::didTapBack);

    titleFirstLineLabel_ = makeTitleLabel(titleFirstLine_, QStringLiteral("titleFirstLineLabel"), this);
    titleSecondLineLabel_ = makeTitleLabel(titleSecondLine_, QStringLiteral("titleSecondLineLabel"), this);
    subtitleLabel_ = makeSubtitleLabel(subtitle_, this);

    topRowStack_ = new QHBoxLayout;
    bottomRowStack_ = new QHBoxLayout;
    for (QHBoxLayout* row : {topRowStack_, bottomRowStack_}) {
        row->setSpacing(12);
        row->setContentsMargins(20, 0, 20, 0);
    }
    for (int i = 0; i < options_.size(); ++i) {
        const Option& option = options_[i];
        auto* card = new OptionCardView(i, option.symbolName, option.title, option.subtitle, this);
        card->onTap = [this](int index) { didSelectOption(index); };
        (i < 2 ? topRowStack_ : bottomRowStack_)->addWidget(card);
        cardViews_.append(card);
    }

    pageIndicatorView_ = new TutorialPageIndicatorView(this);
    pageIndicatorView_->configure(pageCount_, pageIndex_);

    continueButton_ = makeContinueButton(buttonTitle_, this);
    connect(continueButton_, &QPushButton::clicked, this, &TutorialStartPageViewController::didTapContinue);

    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(0, 8, 0, 12);
    page->setSpacing(0);
    auto* topBar = new QHBoxLayout;
    topBar->setContentsMargins(16, 0, 16, 0);
    topBar->addWidget(backButton_);
    topBar->addStretch(1);
    page->addLayout(topBar);
    page->addSpacing(20);
    page->addWidget(titleFirstLineLabel_);
    page->addWidget(titleSecondLineLabel_);
    page->addSpacing(10);
    auto* subtitleRow = new QHBoxLayout;
    subtitleRow->setContentsMargins(kSideMargin, 0, kSideMargin, 0);
    subtitleRow->addWidget(subtitleLabel_);
    page->addLayout(subtitleRow);
    page->addSpacing(28);
    page->addLayout(topRowStack_, 1);
    page->addSpacing(12);
    page->addLayout(bottomRowStack_, 1);
    page->addSpacing(24);
    page->addWidget(pageIndicatorView_, 0, Qt::AlignHCenter);
    page->addSpacing(16);
    auto* buttonRow = new QHBoxLayout;
    buttonRow->setContentsMargins(20, 0, 20, 0);
    buttonRow->addWidget(continueButton_);
    page->addLayout(buttonRow);
}

void TutorialStartPageViewController::didSelectOption(int index) {
    if (index < 0 || index >= cardViews_.size())
        return;
    selectedIndex_ = index;
    for (OptionCardView* card : cardViews_)
        card->setCardSelected(card->index() == index, true);
}

void TutorialStartPageViewController::didTapBack() {
    if (onBack)
        onBack();
}

// Continue does not need a picked card.
void TutorialStartPageViewController::didTapContinue() {
    if (onContinue)
        onContinue();
}

void TutorialStartPageViewController::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        didTapContinue();
        return;
    case Qt::Key_Backspace:
    case Qt::Key_Escape:
        didTapBack();
        return;
    default:
        ViewController::keyPressEvent(event);
    }
}
