#pragma once

#include <QAbstractButton>
#include <QColor>

class ImageView;
class QLabel;

// One tool of the classic collage's tool row: an icon over a label. The selected tool shows the icon's
// selected variant and a yellow label.
class BtnsCell : public QAbstractButton {
    Q_OBJECT
public:
    static const QColor selectedColor;   // "faca16"
    static const QColor unselectedColor; // grey 0.549

    BtnsCell(const QString& title, const QString& icon, const QString& selectedIcon,
             QWidget* parent = nullptr);

    ImageView* btnImageView() const { return btnImageView_; }
    QLabel* btnTextLbl() const { return btnTextLbl_; }

    void setSelectedState(bool selected);
    bool isSelectedState() const { return selected_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ImageView* btnImageView_;
    QLabel* btnTextLbl_;
    QString icon_;
    QString selectedIcon_;
    bool selected_ = false;
};
