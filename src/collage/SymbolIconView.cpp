#include "collage/SymbolIconView.h"

#include <QPainter>

SymbolIconView::SymbolIconView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void SymbolIconView::setSymbolName(const QString& name) {
    symbolName_ = name;
    update();
}

void SymbolIconView::setTintColor(const QColor& tint) {
    tint_ = tint;
    update();
}

void SymbolIconView::setFallback(CollageCellStyle::SymbolFallback fallback) {
    fallback_ = fallback;
    update();
}

void SymbolIconView::setDrawsBrandMark(bool drawsBrandMark) {
    drawsBrandMark_ = drawsBrandMark;
    update();
}

void SymbolIconView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (drawsBrandMark_ && CollageCellStyle::drawBrandMark(painter, symbolName_, QRectF(rect())))
        return;
    CollageCellStyle::drawSymbol(painter, symbolName_, QRectF(rect()), tint_, fallback_);
}
