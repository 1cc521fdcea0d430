#pragma once

#include "platform/Image.h"

#include <QColor>
#include <QWidget>
#include <functional>

// A start card: a picture under a dark gradient with a title and a subtitle. It can be selected,
// shrinks a little while pressed and reports a tap with its index.
class OptionCardView : public QWidget {
    Q_OBJECT
public:
    OptionCardView(int index, const QString& imageName, const QString& title, const QString& subtitle,
                   QWidget* parent = nullptr);

    std::function<void(int index)> onTap;

    void setCardSelected(bool selected, bool animated);
    bool isCardSelected() const { return selected_; }

    int index() const { return index_; }
    QString title() const { return title_; }
    QString subtitle() const { return subtitle_; }
    const ImagePtr& backgroundImage() const { return background_; }

    double borderWidth() const { return borderWidth_; }
    QColor borderColor() const { return borderColor_; }
    double overlayAlpha() const { return overlayAlpha_; }
    bool isPressed() const { return pressed_; }

    static QColor selectionColor() { return QColor(119, 140, 229); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void setPressed(bool pressed);

    int index_;
    QString title_;
    QString subtitle_;
    ImagePtr background_;
    QImage backgroundUpright_;
    bool selected_ = false;
    bool pressed_ = false;
    double borderWidth_ = 1.0;
    QColor borderColor_ = QColor(255, 255, 255, 20);
    double overlayAlpha_ = 0.0;
};
