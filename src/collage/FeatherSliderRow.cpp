#include "collage/FeatherSliderRow.h"

#include "collage/CollageCellStyle.h"
#include "collage/SymbolIconView.h"
#include "collage/TickMarksView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSlider>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

using namespace CollageCellStyle;

namespace {

QString rgba(const QColor& color) {
    return QStringLiteral("rgba(%1, %2, %3, %4)")
        .arg(color.red())
        .arg(color.green())
        .arg(color.blue())
        .arg(color.alpha());
}

QString sliderStyleSheet() {
    return QStringLiteral("QSlider { background: transparent; }"
                          "QSlider::groove:horizontal { height: 4px; border-radius: 2px; background: %1; }"
                          "QSlider::sub-page:horizontal { border-radius: 2px; background: %2; }"
                          "QSlider::add-page:horizontal { border-radius: 2px; background: %1; }"
                          "QSlider::handle:horizontal { background: white; width: 20px; height: 20px;"
                          " margin: -8px 0; border-radius: 10px; }")
        .arg(rgba(white(0.18)), rgba(systemBlue()));
}

QString valueText(double value) {
    return QString::number(static_cast<long long>(std::lround(value)));
}

} // namespace

FeatherSliderRow::FeatherSliderRow(const QString& symbolName, const QString& title, QWidget* parent)
    : QWidget(parent) {
    setFixedHeight(rowHeight);

    iconTile_ = new QWidget(this);
    iconTile_->setFixedSize(32, 32);
    iconTile_->setAttribute(Qt::WA_StyledBackground);
    iconTile_->setStyleSheet(QStringLiteral("background: %1; border-radius: 10px;").arg(rgba(white(0.08))));
    iconView_ = new SymbolIconView(iconTile_);
    iconView_->setSymbolName(symbolName);
    iconView_->setTintColor(Qt::white);
    iconView_->setFallback(SymbolFallback::outline);
    iconView_->setGeometry(8, 8, 15, 15);

    titleLabel_ = new QLabel(title, this);
    QFont titleFont = font();
    titleFont.setPixelSize(13);
    titleFont.setWeight(QFont::DemiBold);
    titleLabel_->setFont(titleFont);
    titleLabel_->setStyleSheet(QStringLiteral("color: white; background: transparent;"));
    // Both rows' sliders start at the same x, whatever their titles.
    titleLabel_->setFixedWidth(76);

    slider_ = new QSlider(Qt::Horizontal, this);
    slider_->setRange(static_cast<int>(minimumValue * resolution),
                      static_cast<int>(maximumValue * resolution));
    slider_->setSingleStep(resolution);    // arrow keys: one unit
    slider_->setPageStep(10 * resolution); // Page Up/Down: ten units
    slider_->setFocusPolicy(Qt::StrongFocus);
    slider_->setStyleSheet(sliderStyleSheet());
    slider_->setAccessibleName(title);
    connect(slider_, &QSlider::valueChanged, this, &FeatherSliderRow::sliderChanged);

    tickMarksView_ = new TickMarksView(this);

    // The ticks run under the groove, inset by half the thumb so the ends line up with its centre.
    auto* sliderColumn = new QVBoxLayout;
    sliderColumn->setContentsMargins(0, 0, 0, 0);
    sliderColumn->setSpacing(0);
    sliderColumn->addWidget(slider_);
    auto* ticksRow = new QHBoxLayout;
    ticksRow->setContentsMargins(10, 0, 10, 0);
    ticksRow->addWidget(tickMarksView_);
    sliderColumn->addLayout(ticksRow);

    valuePill_ = new QWidget(this);
    valuePill_->setFixedSize(40, 26);
    valuePill_->setAttribute(Qt::WA_StyledBackground);
    valuePill_->setStyleSheet(QStringLiteral("background: %1; border-radius: 9px;").arg(rgba(white(0.08))));
    valueLabel_ = new QLabel(valuePill_);
    QFont valueFont = font();
    valueFont.setPixelSize(13);
    valueLabel_->setFont(valueFont);
    valueLabel_->setAlignment(Qt::AlignCenter);
    valueLabel_->setStyleSheet(QStringLiteral("color: white; background: transparent;"));
    valueLabel_->setGeometry(0, 0, 40, 26);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(10);
    row->addWidget(iconTile_, 0, Qt::AlignVCenter);
    row->addWidget(titleLabel_, 0, Qt::AlignVCenter);
    row->addLayout(sliderColumn, 1);
    row->addWidget(valuePill_, 0, Qt::AlignVCenter);

    showValue(slider_->value() / double(resolution));
}

void FeatherSliderRow::setValue(double value) {
    if (!std::isfinite(value))
        return;
    const double clamped = std::clamp(value, minimumValue, maximumValue);
    loading_ = true;
    slider_->setValue(static_cast<int>(std::lround(clamped * resolution)));
    loading_ = false;
    // The pill shows the value given, not the slider's nearest tenth.
    showValue(clamped);
}

double FeatherSliderRow::value() const {
    return slider_->value() / double(resolution);
}

void FeatherSliderRow::sliderChanged(int position) {
    if (loading_)
        return;
    const double value = position / double(resolution);
    showValue(value);
    if (onValueChanged)
        onValueChanged(value);
}

void FeatherSliderRow::showValue(double value) {
    valueLabel_->setText(valueText(value));
}
