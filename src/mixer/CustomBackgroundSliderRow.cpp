#include "mixer/CustomBackgroundSliderRow.h"

#include "collage/SymbolIconView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <cmath>

CustomBackgroundSliderRow::CustomBackgroundSliderRow(const QString& symbolName, const QString& title,
                                                     double minimum, double maximum, QWidget* parent)
    : QWidget(parent) {
    setFixedHeight(rowHeight);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    iconView_ = new SymbolIconView(this);
    iconView_->setSymbolName(symbolName);
    iconView_->setTintColor(Qt::white);
    iconView_->setFixedSize(20, 20);
    titleLabel_ = new QLabel(title, this);
    titleLabel_->setFixedWidth(40);
    titleLabel_->setStyleSheet(QStringLiteral("color: white; font-size: 13px; font-weight: 500;"));
    slider_ = new QSlider(Qt::Horizontal, this);
    slider_->setRange(int(std::lround(minimum * resolution)), int(std::lround(maximum * resolution)));
    slider_->setStyleSheet(QStringLiteral(
        "QSlider::groove:horizontal { height: 4px; border-radius: 2px; background: rgba(255,255,255,60); }"
        "QSlider::sub-page:horizontal { border-radius: 2px; background: white; }"
        "QSlider::handle:horizontal { background: white; width: 18px; height: 18px; margin: -7px 0; "
        "border-radius: 9px; }"));
    valueLabel_ = new QLabel(this);
    valueLabel_->setFixedWidth(40);
    valueLabel_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    valueLabel_->setStyleSheet(QStringLiteral("color: white; font-size: 13px;"));
    layout->addWidget(iconView_);
    layout->addSpacing(8);
    layout->addWidget(titleLabel_);
    layout->addSpacing(12);
    layout->addWidget(slider_, 1);
    layout->addSpacing(12);
    layout->addWidget(valueLabel_);
    connect(slider_, &QSlider::valueChanged, this, [this](int position) {
        const double exact = double(position) / resolution;
        showValue(exact);
        if (onValueChanged)
            onValueChanged(exact);
    });
    showValue(value());
}

void CustomBackgroundSliderRow::setValue(double value) {
    const QSignalBlocker block(slider_);
    slider_->setValue(int(std::lround(value * resolution)));
    showValue(this->value());
}

double CustomBackgroundSliderRow::value() const {
    return double(slider_->value()) / resolution;
}

void CustomBackgroundSliderRow::showValue(double value) {
    valueLabel_->setText(QString::number(std::lround(value)));
}
