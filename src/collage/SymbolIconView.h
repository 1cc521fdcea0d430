#pragma once

#include "collage/CollageCellStyle.h"

#include <QColor>
#include <QWidget>

// A symbol picture by name, tinted; shows a fallback when the picture is not installed.
class SymbolIconView : public QWidget {
    Q_OBJECT
public:
    explicit SymbolIconView(QWidget* parent = nullptr);

    QString symbolName() const { return symbolName_; }
    void setSymbolName(const QString& name);
    QColor tintColor() const { return tint_; }
    void setTintColor(const QColor& tint);
    void setFallback(CollageCellStyle::SymbolFallback fallback);
    // Brand names draw their own mark (CollageCellStyle::drawBrandMark) rather than a tinted picture.
    void setDrawsBrandMark(bool drawsBrandMark);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString symbolName_;
    QColor tint_ = Qt::white;
    CollageCellStyle::SymbolFallback fallback_ = CollageCellStyle::SymbolFallback::nothing;
    bool drawsBrandMark_ = false;
};
