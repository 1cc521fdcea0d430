#pragma once

#include <QAbstractButton>
#include <QString>

class ImageView;
class QLabel;

// A cell of a tool strip: a picture with its title below. Selected, it shows the selected picture and
// the title in the selection yellow; otherwise the plain picture and a grey title.
class EditBtnCell : public QAbstractButton {
    Q_OBJECT
public:
    static const QColor selectedTitleColor; // (250, 202, 22)
    static const QColor plainTitleColor;    // (140, 140, 140)

    EditBtnCell(int index, QString title, QString picture, QString selectedPicture,
                QWidget* parent = nullptr);

    int index() const { return index_; }
    void configure(bool selected);
    bool isShownSelected() const { return shownSelected_; }

    QLabel* displayLbl() const { return label_; }
    ImageView* displayImgView() const { return imageView_; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int index_;
    QString picture_, selectedPicture_;
    QLabel* label_ = nullptr;
    ImageView* imageView_ = nullptr;
    bool shownSelected_ = false;
};
