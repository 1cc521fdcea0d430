#pragma once

#include <QWidget>
#include <functional>

class ImageView;
class QLabel;

// One row of the format chooser: icon, title, description, a "Suggested" pill and a check mark.
class SavingTypeCell : public QWidget {
    Q_OBJECT
public:
    static constexpr int kHeight = 60;

    explicit SavingTypeCell(QWidget* parent = nullptr);

    void configure(const QString& iconName, const QString& title, const QString& description, bool suggested,
                   bool selected);

    std::function<void()> onTap;

    ImageView* savingImageName() const { return savingImageName_; }
    QLabel* saveformatnameLbl() const { return saveformatnameLbl_; }
    QLabel* infolbl() const { return infolbl_; }
    QLabel* suggestedLbl() const { return suggestedLbl_; }
    QLabel* selectbtn() const { return selectbtn_; }

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    ImageView* savingImageName_ = nullptr;
    QLabel* saveformatnameLbl_ = nullptr;
    QLabel* infolbl_ = nullptr;
    QLabel* suggestedLbl_ = nullptr;
    QLabel* selectbtn_ = nullptr;
};
