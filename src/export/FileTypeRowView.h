#pragma once

#include "export/SavingtypeMethod.h"

#include <QAbstractButton>
#include <QColor>

// The row at the top of a format sheet naming its format; tapping it opens the format chooser.
class FileTypeRowView : public QAbstractButton {
    Q_OBJECT
public:
    static constexpr double kCornerRadius = 8;
    static constexpr double kBorderWidth = 0.5;
    static QColor borderColor() { return QColor(0x94, 0x94, 0x94); }

    explicit FileTypeRowView(SavingtypeMethod type, QWidget* parent = nullptr);

    SavingtypeMethod type() const { return type_; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    SavingtypeMethod type_;
};
