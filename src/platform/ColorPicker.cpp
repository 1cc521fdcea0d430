#include "platform/ColorPicker.h"

#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
constexpr int kHues = 12, kShades = 8;
}

ColorPicker::ColorPicker(Color initial, QWidget* parent) : ViewController(parent), selected_(initial) {
    setObjectName(QStringLiteral("colorPicker"));
    setModalPresentationStyle(ModalPresentationStyle::pageSheet);
}

QList<Color> ColorPicker::palette() {
    QList<Color> colours;
    for (int g = 0; g < kHues; ++g)
        colours << Color::white(1.0 - double(g) / (kHues - 1));
    for (int shade = 0; shade < kShades; ++shade) {
        // From pale tints through full colour to deep shades.
        const double saturation = std::min(1.0, 0.25 + shade * 0.25);
        const double brightness = shade < 3 ? 1.0 : 1.0 - (shade - 3) * 0.15;
        for (int h = 0; h < kHues; ++h)
            colours << Color::fromHSB(double(h) / kHues, saturation, brightness);
    }
    return colours;
}

void ColorPicker::viewDidLoad() {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 16, 16, 16);
    auto* header = new QHBoxLayout;
    auto* title = new QLabel(QStringLiteral("Colors"), this);
    title->setStyleSheet(QStringLiteral("color: white; font-size: 17px; font-weight: 600;"));
    doneButton_ = new QPushButton(QStringLiteral("Done"), this);
    doneButton_->setObjectName(QStringLiteral("colorPickerDone"));
    doneButton_->setStyleSheet(
        QStringLiteral("QPushButton { color: #0a84ff; background: transparent; border: none; "
                       "font-size: 17px; font-weight: 600; }"));
    connect(doneButton_, &QPushButton::clicked, this, [this]() { dismiss(true); });
    header->addWidget(title);
    header->addStretch();
    header->addWidget(doneButton_);
    layout->addLayout(header);
    auto* grid = new QGridLayout;
    grid->setSpacing(0);
    const QList<Color> colours = palette();
    for (int i = 0; i < colours.size(); ++i) {
        auto* swatch = new QPushButton(this);
        swatch->setFixedHeight(28);
        swatch->setCursor(Qt::PointingHandCursor);
        swatch->setStyleSheet(QStringLiteral("QPushButton { background: %1; border: none; }")
                                  .arg(colours[i].toQColor().name()));
        const Color colour = colours[i];
        connect(swatch, &QPushButton::clicked, this, [this, colour]() { pick(colour); });
        grid->addWidget(swatch, i / kHues, i % kHues);
        swatches_ << swatch;
    }
    layout->addLayout(grid);
    layout->addStretch();
}

void ColorPicker::pick(const Color& color) {
    selected_ = color;
    update();
    if (onColorChanged)
        onColorChanged(color);
}

void ColorPicker::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), QColor(28, 28, 30));
    // The current colour as a bar along the bottom.
    painter.fillRect(QRect(16, height() - 60, width() - 32, 40), selected_.toQColor());
}
