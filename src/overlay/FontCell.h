#pragma once

#include <QLabel>
#include <QWidget>

// A label drawn upside down under another, faint and with a soft shadow: the reflection of a font cell.
class ReflectionLabel : public QLabel {
    Q_OBJECT
public:
    using QLabel::QLabel;
    static constexpr double alpha = 0.1;

protected:
    void paintEvent(QPaintEvent* event) override;
};

// One entry of a font list: the sample word in its font at 30 points, with its reflection under it.
// Selected, the word is drawn in the selection yellow.
class FontCell : public QWidget {
    Q_OBJECT
public:
    static constexpr double fontSize = 30;

    explicit FontCell(QWidget* parent = nullptr);

    // Shows entry `index` of the font list; out of range is ignored.
    void configure(int index);
    int index() const { return index_; }

    bool isSelected() const { return selected_; }
    void setSelected(bool selected);

    QLabel* fontLblName() const { return fontLblName_; }
    QLabel* oppositeLbl() const { return oppositeLbl_; }

    QSize sizeHint() const override { return {150, 90}; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

signals:
    void tapped(int index);

private:
    void refreshLook();

    QLabel* fontLblName_ = nullptr;
    ReflectionLabel* oppositeLbl_ = nullptr;
    int index_ = -1;
    bool selected_ = false;
};
