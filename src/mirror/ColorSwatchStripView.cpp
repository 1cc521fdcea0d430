#include "mirror/ColorSwatchStripView.h"

#include "mirror/MirrorPattern.h"
#include "platform/Animations.h"
#include "platform/Dispatch.h"

#include <QPainter>
#include <QPointer>
#include <QScrollBar>

ColorSwatchButton::ColorSwatchButton(int tag, Color color, QWidget* parent)
    : QAbstractButton(parent), tag_(tag), color_(color) {
    setCursor(Qt::PointingHandCursor);
}

void ColorSwatchButton::setScale(double scale) {
    scale_ = scale;
    update();
}

void ColorSwatchButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double diameter = ColorSwatchStripView::swatchSide * scale_;
    const QRectF circle(width() / 2.0 - diameter / 2, height() / 2.0 - diameter / 2, diameter, diameter);
    painter.setBrush(color_.toQColor());
    painter.setPen(QPen(Qt::white, 2.0 * scale_));
    painter.drawEllipse(circle.adjusted(scale_, scale_, -scale_, -scale_));
}

const QStringList& ColorSwatchStripView::swatchTable() {
    static const QStringList table{
        "color-wheel", "ffcbf2", "f3c4fb", "ecbcfd", "e5b3fe", "e2afff", "deaaff", "d8bbff", "d0d1ff",
        "c8e7ff",      "c0fdff", "eccaff", "e2c6ff", "d8c2ff", "cebeff", "c4baff", "b9b5ff", "afb1ff",
        "a5adff",      "9ba9ff", "fae0e4", "f7cad0", "f9bec7", "fbb1bd", "ff99ac", "ff85a1", "ff7096",
        "ff5c8a",      "ff477e", "ff0a54", "e9f5db", "cfe1b9", "b5c99a", "97a97c", "87986a", "718355",
        "a9d6e5",      "89c2d9", "61a5c2", "468faf", "2c7da0", "2a6f97", "014f86", "01497c", "013a63",
        "012a4a",      "e8d1c5", "eddcd2", "fff1e6", "f0efeb", "eeddd3", "edede8", "ccff33", "9ef01a",
        "70e000",      "38b000", "008000", "007200", "006400", "004b23", "eddcd2", "fff1e6", "fde2e4",
        "fad2e1",      "c5dedd", "dbe7e4", "f0efeb", "d6e2e9", "bcd4e6", "99c1de", "ffea00", "ffdd00",
        "ffd000",      "ffc300", "ffb700", "ffaa00", "ffa200", "ff9500", "ff8800", "ff7b00", "ad2831",
        "800e13",      "640d14", "38040e", "250902", "ffe169", "fad643", "edc531", "dbb42c", "c9a227",
        "b69121",      "a47e1b", "926c15", "805b10", "76520e", "ecf39e", "90a955", "4f772d", "31572c",
        "132a13",      "ffe0e9", "ffc2d4", "ff9ebb", "ff7aa2", "e05780", "b9375e", "8a2846", "602437",
        "602437",      "ffe3e0", "fbc3bc", "f7a399", "f38375", "f7a399", "f38375", "ef6351", "c4fff9",
        "9ceaef",      "68d8d6", "3dccc7", "07beb8", "add7f6", "87bfff", "3f8efc", "2667ff", "3b28cc",
        "f8f9fa",      "e9ecef",
    };
    return table;
}

ColorSwatchStripView::ColorSwatchStripView(QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidgetResizable(false);
    setStyleSheet(QStringLiteral("background: transparent;"));
    content_ = new QWidget;
    setWidget(content_);
    QPointer<ColorSwatchStripView> self(this);
    Dispatch::main().async([self] {
        if (self)
            self->buildSwatches();
    });
}

void ColorSwatchStripView::buildSwatches() {
    const QStringList& table = swatchTable();
    for (int i = 0; i < table.size(); ++i) {
        auto* swatch = new ColorSwatchButton(i, colorFromHex(table[i]), content_);
        connect(swatch, &QAbstractButton::clicked, this, [this, swatch] { buttonTapped(swatch); });
        swatch->show();
        swatches_ << swatch;
    }
    placeSwatches();
}

void ColorSwatchStripView::placeSwatches() {
    const int start = int(viewport()->width() * 0.5 - 20);
    // The chosen swatch grows to 1.6 times its side about its centre; the button leaves room for that.
    const int room = int(swatchSide * 1.6) + 2, pad = (room - swatchSide) / 2;
    for (ColorSwatchButton* swatch : swatches_)
        swatch->setGeometry(start + swatch->tag() * swatchStep - pad, swatchY - pad, room, room);
    content_->resize(int(swatchTable().size()) * swatchStep + viewport()->width() - 40,
                     std::max(viewport()->height(), swatchY + room));
}

void ColorSwatchStripView::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    placeSwatches();
}

void ColorSwatchStripView::buttonTapped(ColorSwatchButton* sender) {
    for (ColorSwatchButton* swatch : swatches_)
        swatch->setScale(1.0);
    sender->setScale(1.6);
    if (onColorChosen)
        onColorChosen(sender->color());
    // The chosen swatch goes to the middle of the strip.
    const int swatchX = int(viewport()->width() * 0.5 - 20) + sender->tag() * swatchStep;
    const int target = std::clamp(int(swatchX - (viewport()->width() * 0.5 - swatchSide * 0.5)), 0,
                                  horizontalScrollBar()->maximum());
    const int from = horizontalScrollBar()->value();
    QPointer<QScrollBar> bar(horizontalScrollBar());
    Animations::animate(this, 0.3, [bar, from, target](double t) {
        if (bar)
            bar->setValue(int(std::lround(Animations::interpolate(from, target, t))));
    });
}
