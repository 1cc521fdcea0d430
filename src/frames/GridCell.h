#pragma once

#include <QAbstractButton>

class ImageView;

// A frame preview in the grid. A selected cell shows its picture 6 % larger.
class GridCell : public QAbstractButton {
    Q_OBJECT
public:
    static constexpr double selectedScale = 1.06;

    explicit GridCell(const QString& assetName, QWidget* parent = nullptr);

    ImageView* Gridimgview() const { return imageView_; }
    bool isSelected() const { return selected_; }
    void setSelected(bool selected);
    double imageScale() const { return selected_ ? selectedScale : 1.0; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void placeImage();

    ImageView* imageView_;
    bool selected_ = false;
};
