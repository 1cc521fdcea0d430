#include "export/SheetControls.h"

#include "export/RasterExport.h"
#include "platform/Assets.h"
#include "platform/ImageView.h"
#include "platform/Log.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QSlider>
#include <QVBoxLayout>
#include <cmath>

namespace {
constexpr int kSliderSteps = 1000;
const char* const kUnticked = "ic_checkbox";
const char* const kTicked = "ic_checkbox1";
} // namespace

namespace SheetControls {

ImagePtr checkboxImage(bool ticked) {
    const QString name = QString::fromLatin1(ticked ? kTicked : kUnticked);
    ImagePtr image = Assets::image(name);
    if (!image)
        fatalError(("Missing asset \"" + name + "\"").toStdString());
    return image;
}

bool toggleCheck(ImageView* check) {
    // Pictures are shared by name, so the artwork is recognised by identity.
    const bool wasUnticked = check->image() == checkboxImage(false);
    check->setImage(checkboxImage(wasUnticked));
    return wasUnticked;
}

QWidget* makeHeader(const QString& title, QPushButton** backButton, QWidget* parent) {
    auto* header = new QWidget(parent);
    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(0, 0, 0, 0);
    auto* label = new QLabel(title, header);
    label->setObjectName(QStringLiteral("titleLbl"));
    label->setStyleSheet(QStringLiteral("color: black; font-size: 18px; font-weight: 700;"));
    auto* back = new QPushButton(QStringLiteral("✕"), header);
    back->setObjectName(QStringLiteral("backButton"));
    back->setCursor(Qt::PointingHandCursor);
    back->setFixedSize(32, 32);
    back->setStyleSheet(QStringLiteral("QPushButton { background: #f2f2f7; color: #3c3c43; border: none;"
                                       " border-radius: 16px; font-size: 14px; font-weight: 700; }"));
    row->addWidget(label, 1);
    row->addWidget(back);
    *backButton = back;
    return header;
}

QPushButton* makeDownloadButton(QWidget* parent) {
    auto* button = new QPushButton(QStringLiteral("Download"), parent);
    button->setObjectName(QStringLiteral("downloadBtn"));
    button->setCursor(Qt::PointingHandCursor);
    button->setFixedHeight(48);
    button->setStyleSheet(QStringLiteral("QPushButton { background: #faca16; color: black; border: none;"
                                         " border-radius: 24px; font-size: 17px; font-weight: 700; }"
                                         "QPushButton:pressed { background: #e0b30f; }"));
    return button;
}

QSlider* makeSlider(double minimum, double start, const QString& name, QWidget* parent) {
    auto* slider = new QSlider(Qt::Horizontal, parent);
    slider->setObjectName(name);
    slider->setRange(static_cast<int>(std::lround(minimum * kSliderSteps)), kSliderSteps);
    slider->setValue(static_cast<int>(std::lround(start * kSliderSteps)));
    slider->setFixedHeight(28);
    slider->setStyleSheet(QStringLiteral(
        "QSlider::groove:horizontal { height: 4px; background: #e5e5ea; border-radius: 2px; }"
        "QSlider::sub-page:horizontal { background: #faca16; border-radius: 2px; }"
        "QSlider::handle:horizontal { background: white; border: 1px solid #c7c7cc; width: 22px;"
        " height: 22px; margin: -10px 0; border-radius: 11px; }"));
    return slider;
}

float sliderValue(const QSlider* slider) {
    return static_cast<float>(slider->value()) / static_cast<float>(kSliderSteps);
}

QWidget* makeValueRow(const QString& caption, QLabel* valueLabel, QWidget** valueView, QWidget* parent) {
    auto* rowWidget = new QWidget(parent);
    auto* row = new QHBoxLayout(rowWidget);
    row->setContentsMargins(0, 0, 0, 0);
    auto* label = new QLabel(caption, rowWidget);
    label->setStyleSheet(QStringLiteral("color: black; font-size: 15px; font-weight: 600;"));
    auto* box = new QWidget(rowWidget);
    box->setAttribute(Qt::WA_StyledBackground, true);
    box->setStyleSheet(QStringLiteral("background: #f2f2f7; border-radius: 6px;"));
    auto* boxLayout = new QHBoxLayout(box);
    boxLayout->setContentsMargins(10, 2, 10, 2);
    valueLabel->setParent(box);
    valueLabel->setAlignment(Qt::AlignCenter);
    valueLabel->setMinimumWidth(28);
    valueLabel->setStyleSheet(QStringLiteral("color: black; font-size: 14px; font-weight: 600;"));
    boxLayout->addWidget(valueLabel);
    row->addWidget(label, 1);
    row->addWidget(box);
    *valueView = box;
    return rowWidget;
}

QLabel* makeNote(const QString& name, QWidget* parent) {
    auto* note = new QLabel(parent);
    note->setObjectName(name);
    note->setStyleSheet(QStringLiteral("color: #6e6e73; font-size: 13px;"));
    return note;
}

SizeRows addSizeRows(QVBoxLayout* content, const QString& valueLabelName, QWidget* parent) {
    SizeRows rows;
    rows.valueLabel = new QLabel(QStringLiteral("1.0"));
    rows.valueLabel->setObjectName(valueLabelName);
    content->addWidget(makeValueRow(QStringLiteral("Size"), rows.valueLabel, &rows.valueView, parent));
    rows.slider = makeSlider(0.1, 1.0, QStringLiteral("sizeSlider"), parent);
    content->addWidget(rows.slider);
    rows.pixelLabel = makeNote(QStringLiteral("pxLbl"), parent);
    content->addWidget(rows.pixelLabel);
    return rows;
}

std::optional<QSizeF> showSliderSize(QLabel* valueLabel, QLabel* pixelLabel, const ImagePtr& picture,
                                     float value) {
    valueLabel->setText(RasterExport::sizeValueText(value));
    if (!picture)
        return std::nullopt;
    const QSizeF size(picture->size().width() * static_cast<double>(value),
                      picture->size().height() * static_cast<double>(value));
    pixelLabel->setText(RasterExport::pixelLabel(size.width(), size.height()));
    return size;
}

} // namespace SheetControls

CheckRowView::CheckRowView(const QString& caption, const QString& name, QWidget* parent)
    : QAbstractButton(parent) {
    setObjectName(name);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    check_ = new ImageView(this);
    check_->setContentMode(ContentMode::scaleAspectFit);
    check_->setFixedSize(26, 26);
    check_->setImage(SheetControls::checkboxImage(false));
    check_->setAttribute(Qt::WA_TransparentForMouseEvents);
    caption_ = new QLabel(caption, this);
    caption_->setStyleSheet(QStringLiteral("color: black; font-size: 15px;"));
    caption_->setAttribute(Qt::WA_TransparentForMouseEvents);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(10);
    row->addWidget(check_);
    row->addWidget(caption_, 1);
}

QSize CheckRowView::sizeHint() const {
    return QSize(200, 34);
}

void CheckRowView::paintEvent(QPaintEvent*) {
    if (!isDown())
        return;
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0, 0, 0, 12));
}
