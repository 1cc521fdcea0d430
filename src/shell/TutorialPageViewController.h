#pragma once

#include "platform/ViewController.h"
#include "shell/TutorialPageContent.h"

#include <QList>
#include <functional>

class ImageView;
class QLabel;
class QPushButton;
class QHBoxLayout;
class TutorialPageIndicatorView;

// A tutorial page with a large picture, two title lines, a subtitle, an optional row of filter
// names, the page dots and a continue button; back and skip at the top.
class TutorialPageViewController : public ViewController {
    Q_OBJECT
public:
    TutorialPageViewController(TutorialPageContent content, std::function<void()> onContinue,
                               std::function<void()> onBack, std::function<void()> onSkip,
                               QWidget* parent = nullptr);

    const TutorialPageContent& content() const { return content_; }
    // Without a back action the page has no back button.
    bool hasBackAction() const { return static_cast<bool>(onBack); }

    void didTapBack();
    void didTapContinue();
    void didTapSkip();

    ImageView* heroImageView() const { return heroImageView_; }
    QPushButton* backButton() const { return backButton_; }
    QPushButton* skipButton() const { return skipButton_; }
    QPushButton* continueButton() const { return continueButton_; }
    QLabel* titleFirstLineLabel() const { return titleFirstLineLabel_; }
    QLabel* titleSecondLineLabel() const { return titleSecondLineLabel_; }
    QLabel* subtitleLabel() const { return subtitleLabel_; }
    TutorialPageIndicatorView* pageIndicatorView() const { return pageIndicatorView_; }
    QWidget* filterOptionsStack() const { return filterOptionsStack_; }
    QList<QLabel*> filterOptionLabels() const;

protected:
    void viewDidLoad() override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    TutorialPageContent content_;
    std::function<void()> onContinue;
    std::function<void()> onBack;
    std::function<void()> onSkip;

    ImageView* heroImageView_ = nullptr;
    QPushButton* backButton_ = nullptr;
    QPushButton* skipButton_ = nullptr;
    QLabel* titleFirstLineLabel_ = nullptr;
    QLabel* titleSecondLineLabel_ = nullptr;
    QLabel* subtitleLabel_ = nullptr;
    TutorialPageIndicatorView* pageIndicatorView_ = nullptr;
    QWidget* filterOptionsStack_ = nullptr;
    QPushButton* continueButton_ = nullptr;
};
