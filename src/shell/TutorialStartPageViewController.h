#pragma once

#include "platform/ViewController.h"

#include <QList>
#include <optional>

class OptionCardView;
class QLabel;
class QPushButton;
class QHBoxLayout;
class TutorialPageIndicatorView;

// The closing tutorial page: four start cards in two rows, one of which may be picked.
class TutorialStartPageViewController : public ViewController {
    Q_OBJECT
public:
    struct Option {
        QString symbolName; // name of the card's background picture
        QString title;
        QString subtitle;
    };

    TutorialStartPageViewController(QString titleFirstLine, QString titleSecondLine, QString subtitle,
                                    QList<Option> options, QString buttonTitle, int pageIndex, int pageCount,
                                    std::function<void()> onContinue, std::function<void()> onBack,
                                    QWidget* parent = nullptr);

    // The four cards the tutorial closes with.
    static QList<Option> startOptions();

    void didTapBack();
    void didTapContinue();
    void didSelectOption(int index);

    std::optional<int> selectedIndex() const { return selectedIndex_; }
    const QList<Option>& options() const { return options_; }
    int pageIndex() const { return pageIndex_; }
    int pageCount() const { return pageCount_; }

    const QList<OptionCardView*>& cardViews() const { return cardViews_; }
    QPushButton* backButton() const { return backButton_; }
    QPushButton* continueButton() const { return continueButton_; }
    QLabel* titleFirstLineLabel() const { return titleFirstLineLabel_; }
    QLabel* titleSecondLineLabel() const { return titleSecondLineLabel_; }
    QLabel* subtitleLabel() const { return subtitleLabel_; }
    TutorialPageIndicatorView* pageIndicatorView() const { return pageIndicatorView_; }

protected:
    void viewDidLoad() override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QString titleFirstLine_;
    QString titleSecondLine_;
    QString subtitle_;
    QList<Option> options_;
    QString buttonTitle_;
    int pageIndex_;
    int pageCount_;
    std::function<void()> onContinue;
    std::function<void()> onBack;
    std::optional<int> selectedIndex_;

    QPushButton* backButton_ = nullptr;
    QLabel* titleFirstLineLabel_ = nullptr;
    QLabel* titleSecondLineLabel_ = nullptr;
    QLabel* subtitleLabel_ = nullptr;
    QHBoxLayout* topRowStack_ = nullptr;
    QHBoxLayout* bottomRowStack_ = nullptr;
    QList<OptionCardView*> cardViews_;
    TutorialPageIndicatorView* pageIndicatorView_ = nullptr;
    QPushButton* continueButton_ = nullptr;
};
