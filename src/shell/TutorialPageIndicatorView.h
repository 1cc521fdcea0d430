#pragma once

#include <QList>
#include <QWidget>

class QHBoxLayout;

// A row of dots; the current page's dot is wider and fully white.
class TutorialPageIndicatorView : public QWidget {
    Q_OBJECT
public:
    explicit TutorialPageIndicatorView(QWidget* parent = nullptr);

    static constexpr int dotHeight = 8;
    static constexpr int inactiveDotWidth = 8;
    static constexpr int activeDotWidth = 22;
    static constexpr int spacing = 6;

    void configure(int numberOfPages, int currentPage);
    void setNumberOfPages(int numberOfPages);
    void setCurrentPage(int currentPage);
    int numberOfPages() const { return numberOfPages_; }
    int currentPage() const { return currentPage_; }

    using QWidget::update;
    void update(bool animated);

    const QList<QWidget*>& dotViews() const { return dotViews_; }
    // Widths the dots have once any running animation has ended.
    QList<int> targetDotWidths() const;

private:
    void rebuildDots();

    QHBoxLayout* stackView_ = nullptr;
    QList<QWidget*> dotViews_;
    int numberOfPages_ = 0;
    int currentPage_ = 0;
};
