#pragma once

#include "platform/Image.h"

#include <QAbstractButton>
#include <QColor>
#include <QLabel>
#include <QList>
#include <QPointer>
#include <QVariantAnimation>
#include <QWidget>

// The small views the three blend screens share.

// The blend's two accent colours, system blue and system purple.
QColor blendBlue(double alpha = 1.0);
QColor blendPurple(double alpha = 1.0);

// A gender tab: idle it is a faint outlined pill, active it gets a blue-to-purple stroked border.
class GenderPillButton : public QAbstractButton {
    Q_OBJECT
public:
    explicit GenderPillButton(const QString& title, QWidget* parent = nullptr);

    bool isActive() const { return isActive_; }
    // Restyles only when the flag changes.
    void setActive(bool active);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool isActive_ = false;
};

// One stock picture in the template grid.
class AIBlendingThumbnailCell : public QAbstractButton {
    Q_OBJECT
public:
    explicit AIBlendingThumbnailCell(QWidget* parent = nullptr);

    void setImage(ImagePtr image);
    const ImagePtr& image() const { return image_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ImagePtr image_;
};

// A white arc of 72 per cent of a circle that turns once every 0.9 seconds while animating.
class BlendSpinnerView : public QWidget {
    Q_OBJECT
public:
    static constexpr double kLineWidth = 2.5;
    static constexpr double kStrokeEnd = 0.72;
    static constexpr double kPeriod = 0.9;

    explicit BlendSpinnerView(QWidget* parent = nullptr);

    // Starts the turn unless it already runs.
    void startAnimating();
    void stopAnimating();
    bool isAnimating() const;
    double rotation() const { return rotation_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPointer<QVariantAnimation> spin_;
    double rotation_ = 0.0;
};

// A label whose text is filled with a left-to-right gradient.
class GradientLabel : public QLabel {
    Q_OBJECT
public:
    explicit GradientLabel(const QString& text, QWidget* parent = nullptr);

    QList<QColor> gradientColors;

protected:
    void paintEvent(QPaintEvent* event) override;
};

// A pill filled with a horizontal gradient, with an optional symbol before a white title.
class GradientPillButton : public QAbstractButton {
    Q_OBJECT
public:
    GradientPillButton(const QString& title, const QString& symbolName = {}, QWidget* parent = nullptr);

    QList<QColor> buttonColors;
    bool hasIcon() const { return !icon_.isNull(); }
    double gradientOpacity() const { return gradientOpacity_; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void animateOpacity(double to);

    QImage icon_;
    double gradientOpacity_ = 1.0;
    // The animation deletes itself when it stops; the guarded pointer notices.
    QPointer<QVariantAnimation> highlight_;
};

// A round dark button with the back chevron.
QAbstractButton* makeBlendBackButton(QWidget* parent);
