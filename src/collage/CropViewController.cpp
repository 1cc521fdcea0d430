#include "collage/CropViewController.h"

#include "collage/CollageCellStyle.h"
#include "collage/CropCanvasView.h"
#include "collage/CropGeometry.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTransform>
#include <QVBoxLayout>

namespace {

// Longest side of the copy drawn on screen; the cut is always made from the full picture.
constexpr int displayLimit = 2048;

QPushButton* textButton(const QString& title, const QColor& colour, bool bold, QWidget* parent) {
    auto* button = new QPushButton(title, parent);
    QFont font = button->font();
    font.setPixelSize(17);
    font.setWeight(bold ? QFont::DemiBold : QFont::Normal);
    button->setFont(font);
    button->setCursor(Qt::PointingHandCursor);
    // Never narrower than the title: the bar gives way in its gaps, not in the words.
    button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    button->setStyleSheet(QStringLiteral("QPushButton { color: %1; background: transparent; border: none;"
                                         " padding: 8px 10px; }"
                                         "QPushButton:pressed { color: rgba(255, 255, 255, 120); }"
                                         "QPushButton:focus { text-decoration: underline; }")
                              .arg(colour.name()));
    return button;
}

QPushButton* aspectChip(const QString& title, QWidget* parent) {
    auto* chip = new QPushButton(title, parent);
    chip->setCheckable(true);
    chip->setCursor(Qt::PointingHandCursor);
    QFont font = chip->font();
    font.setPixelSize(13);
    font.setWeight(QFont::DemiBold);
    chip->setFont(font);
    const QColor blue = CollageCellStyle::systemBlue();
    chip->setStyleSheet(QStringLiteral("QPushButton { color: white; background: rgba(255, 255, 255, 30);"
                                       " border: none; border-radius: 13px; padding: 5px 12px; }"
                                       "QPushButton:checked { background: %1; }")
                            .arg(blue.name()));
    return chip;
}

} // namespace

CropViewController::CropViewController(ImagePtr image, std::optional<CropperState> initialState,
                                       QWidget* parent)
    : ViewController(parent), image_(std::move(image)) {
    setModalPresentationStyle(ModalPresentationStyle::fullScreen);
    setFocusPolicy(Qt::StrongFocus);
    if (image_) {
        const QImage upright = image_->uprightBitmap();
        uprightSize_ = upright.size();
        uprightDisplay_ =
            upright.width() > displayLimit || upright.height() > displayLimit
                ? upright.scaled(displayLimit, displayLimit, Qt::KeepAspectRatio, Qt::SmoothTransformation)
                : upright;
    }
    cropRect_ = pictureBounds();
    if (initialState && image_) {
        turns_ = ((initialState->rotationQuarterTurns % 4) + 4) % 4;
        aspectRatio_ = initialState->aspectRatio;
        const QRectF kept = QRectF(initialState->cropRect).intersected(pictureBounds());
        cropRect_ = kept.isEmpty() ? pictureBounds() : kept;
    }
}

CropViewController::~CropViewController() = default;

QSize CropViewController::pictureSize() const {
    return rotatedSize(uprightSize_, turns_);
}

QRectF CropViewController::pictureBounds() const {
    return QRectF(QPointF(0, 0), QSizeF(pictureSize()));
}

CropperState CropViewController::state() const {
    return {turns_, CropGeometry::pixelRect(cropRect_, QRect(QPoint(0, 0), pictureSize())), aspectRatio_};
}

QAbstractButton* CropViewController::aspectButton(CropAspectRatio ratio) const {
    const auto found = aspectButtons_.find(ratio);
    return found == aspectButtons_.end() ? nullptr : found->second;
}

void CropViewController::setAspectRatio(CropAspectRatio ratio) {
    aspectRatio_ = ratio;
    if (const auto aspect = cropAspectRatioValue(ratio))
        cropRect_ = CropGeometry::fittedRect(pictureBounds(), aspect, cropRect_.center());
    syncCanvas();
}

void CropViewController::rotateLeft() {
    rotate(false);
}

void CropViewController::rotateRight() {
    rotate(true);
}

void CropViewController::rotate(bool clockwise) {
    if (!image_)
        return;
    cropRect_ = CropGeometry::turned(cropRect_, QSizeF(pictureSize()), clockwise);
    turns_ = (turns_ + (clockwise ? 1 : 3)) % 4;
    aspectRatio_ = turnedCropAspectRatio(aspectRatio_);
    syncCanvas();
}

void CropViewController::reset() {
    turns_ = 0;
    aspectRatio_ = CropAspectRatio::free;
    cropRect_ = pictureBounds();
    syncCanvas();
}

void CropViewController::confirm() {
    if (onConfirm)
        onConfirm(image_ ? std::optional<CropperState>(state()) : std::nullopt);
}

void CropViewController::cancel() {
    if (onCancel)
        onCancel();
    else
        dismiss(true);
}

void CropViewController::viewDidLoad() {
    setAutoFillBackground(true);
    QPalette palette = this->palette();
    palette.setColor(QPalette::Window, Qt::black);
    setPalette(palette);

    canvasView_ = new CropCanvasView(this);
    canvasView_->onCropRectChanged = [this]() {
        cropRect_ = canvasView_->cropRect();
        syncControls();
    };

    auto* chips = new QHBoxLayout;
    chips->setSpacing(8);
    chips->addStretch(1);
    auto* group = new QButtonGroup(this);
    group->setExclusive(true);
    for (CropAspectRatio ratio : allCropAspectRatios) {
        QPushButton* chip = aspectChip(cropAspectRatioTitle(ratio), this);
        group->addButton(chip);
        connect(chip, &QPushButton::clicked, this, [this, ratio]() { setAspectRatio(ratio); });
        aspectButtons_[ratio] = chip;
        chips->addWidget(chip);
    }
    chips->addStretch(1);

    cancelButton_ = textButton(tr("Cancel"), Qt::white, false, this);
    rotateButton_ = textButton(tr("Rotate"), Qt::white, false, this);
    rotateButton_->setToolTip(tr("Turn left (R); Shift+R turns right"));
    resetButton_ = textButton(tr("Reset"), Qt::white, false, this);
    doneButton_ = textButton(tr("Done"), CollageCellStyle::systemBlue(), true, this);
    connect(cancelButton_, &QAbstractButton::clicked, this, &CropViewController::cancel);
    connect(rotateButton_, &QAbstractButton::clicked, this, &CropViewController::rotateLeft);
    connect(resetButton_, &QAbstractButton::clicked, this, &CropViewController::reset);
    connect(doneButton_, &QAbstractButton::clicked, this, &CropViewController::confirm);

    sizeLabel_ = new QLabel(this);
    sizeLabel_->setAlignment(Qt::AlignCenter);
    sizeLabel_->setStyleSheet(QStringLiteral("color: rgba(255, 255, 255, 150); background: transparent;"));

    // The four actions share the bar's width; the size of the cut stands on its own line above, where
    // a long figure cannot push them off a narrow screen.
    auto* bar = new QHBoxLayout;
    bar->setContentsMargins(8, 0, 8, 0);
    bar->setSpacing(0);
    bar->addWidget(cancelButton_);
    bar->addStretch(1);
    bar->addWidget(rotateButton_);
    bar->addStretch(1);
    bar->addWidget(resetButton_);
    bar->addStretch(1);
    bar->addWidget(doneButton_);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 12, 0, 12);
    column->setSpacing(12);
    column->addWidget(canvasView_, 1);
    column->addWidget(sizeLabel_);
    column->addLayout(chips);
    column->addLayout(bar);

    syncCanvas();
    canvasView_->setFocus(Qt::OtherFocusReason);
}

void CropViewController::syncCanvas() {
    if (!canvasView_)
        return;
    const QImage display =
        turns_ == 0 ? uprightDisplay_ : uprightDisplay_.transformed(QTransform().rotate(90 * turns_));
    canvasView_->setPicture(display, pictureSize());
    canvasView_->setAspect(cropAspectRatioValue(aspectRatio_));
    canvasView_->setCropRect(cropRect_);
    syncControls();
}

void CropViewController::syncControls() {
    if (QAbstractButton* chip = aspectButton(aspectRatio_))
        chip->setChecked(true);
    const QRect pixels = state().cropRect;
    if (sizeLabel_)
        sizeLabel_->setText(image_ ? QStringLiteral("%1 × %2").arg(pixels.width()).arg(pixels.height())
                                   : QString());
}

void CropViewController::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Escape:
        cancel();
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        confirm();
        return;
    case Qt::Key_R:
        if (event->modifiers() & Qt::ShiftModifier)
            rotateRight();
        else
            rotateLeft();
        return;
    default:
        ViewController::keyPressEvent(event);
    }
}
