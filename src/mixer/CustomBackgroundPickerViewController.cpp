#include "mixer/CustomBackgroundPickerViewController.h"

#include "collage/PhotoLoading.h"
#include "mixer/CustomBackgroundActionButton.h"
#include "mixer/CustomBackgroundCategoryRowCell.h"
#include "mixer/CustomBackgroundPreviewView.h"
#include "mixer/CustomBackgroundSliderRow.h"
#include "mixer/GradientColorPickerViewController.h"
#include "platform/Assets.h"
#include "platform/ColorPicker.h"
#include "platform/ImageView.h"
#include "platform/PhotoPicker.h"
#include "platform/Screen.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>
#include <numbers>

namespace {

constexpr int kSide = 16;
constexpr int kPreviewInset = 60;

template <class... Ts> struct overloaded : Ts... { using Ts::operator()...; };

QColor placeholderGrey() {
    return QColor::fromRgbF(0.15, 0.15, 0.15);
}

} // namespace

CustomBackgroundPickerViewController::CustomBackgroundPickerViewController(QWidget* parent)
    : ViewController(parent), categories_(CustomBackgrounds::catalogue()) {
    setObjectName(QStringLiteral("customBackgroundPicker"));
    setModalPresentationStyle(ModalPresentationStyle::fullScreen);
    setAttribute(Qt::WA_StyledBackground, true);
    setStyleSheet(QStringLiteral("#customBackgroundPicker { background: black; }"));
}

CustomBackgroundPickerViewController::~CustomBackgroundPickerViewController() = default;

QWidget* CustomBackgroundPickerViewController::previewContainerView() const {
    return previewContainerView_;
}

void CustomBackgroundPickerViewController::viewDidLoad() {
    buildViews();
    setSelection(std::nullopt, std::nullopt);
    reloadCategories();
}

void CustomBackgroundPickerViewController::buildViews() {
    backButton_ = new QPushButton(this);
    backButton_->setObjectName(QStringLiteral("backButton"));
    backButton_->setFixedSize(28, 28);
    backButton_->setIcon(Assets::symbol(QStringLiteral("chevron.left"), 28));
    backButton_->setIconSize(QSize(28, 28));
    backButton_->setCursor(Qt::PointingHandCursor);
    backButton_->setStyleSheet(QStringLiteral("QPushButton { background: transparent; border: none; }"));
    connect(backButton_, &QPushButton::clicked, this, &CustomBackgroundPickerViewController::didTapBack);

    titleLabel_ = new QLabel(QStringLiteral("Custom Background"), this);
    titleLabel_->setAlignment(Qt::AlignCenter);
    titleLabel_->setStyleSheet(QStringLiteral("color: white; font-size: 17px; font-weight: 600;"));

    doneButton_ = new QPushButton(QStringLiteral("Done"), this);
    doneButton_->setObjectName(QStringLiteral("doneButton"));
    doneButton_->setCursor(Qt::PointingHandCursor);
    connect(doneButton_, &QPushButton::clicked, this, &CustomBackgroundPickerViewController::didTapDone);

    previewContainerView_ = new CustomBackgroundPreviewView(this);
    previewImageView_ = previewContainerView_->imageView();
    previewPlaceholderLabel_ = new QLabel(QStringLiteral("Pick a background below"), previewContainerView_);
    previewPlaceholderLabel_->setAlignment(Qt::AlignCenter);
    previewPlaceholderLabel_->setWordWrap(true);
    previewPlaceholderLabel_->setStyleSheet(QStringLiteral("color: rgba(255,255,255,128); font-size: 14px;"));

    actionsStackView_ = new QWidget(this);
    auto* actions = new QHBoxLayout(actionsStackView_);
    actions->setContentsMargins(0, 0, 0, 0);
    actions->setSpacing(12);
    importButton_ =
        new CustomBackgroundActionButton(QStringLiteral("Import"), QStringLiteral("photo.on.rectangle"));
    colorButton_ = new CustomBackgroundActionButton(QStringLiteral("Color"), QStringLiteral("eyedropper"));
    gradientButton_ = new CustomBackgroundActionButton(QStringLiteral("Gradient"),
                                                       QStringLiteral("circle.lefthalf.filled"));
    for (auto* button : {importButton_, colorButton_, gradientButton_})
        actions->addWidget(button, 1);
    connect(importButton_, &QPushButton::clicked, this, &CustomBackgroundPickerViewController::didTapImport);
    connect(colorButton_, &QPushButton::clicked, this, &CustomBackgroundPickerViewController::didTapColor);
    connect(gradientButton_, &QPushButton::clicked, this,
            &CustomBackgroundPickerViewController::didTapGradient);

    slidersStackView_ = new QWidget(this);
    auto* sliders = new QVBoxLayout(slidersStackView_);
    sliders->setContentsMargins(0, 0, 0, 0);
    sliders->setSpacing(14);
    blurRow_ = new CustomBackgroundSliderRow(QStringLiteral("drop.fill"), QStringLiteral("Blur"), 0, 100);
    hueRow_ =
        new CustomBackgroundSliderRow(QStringLiteral("paintpalette.fill"), QStringLiteral("Hue"), -180, 180);
    sliders->addWidget(blurRow_);
    sliders->addWidget(hueRow_);
    QPointer<CustomBackgroundPickerViewController> self(this);
    blurRow_->onValueChanged = [self](double value) {
        if (self)
            self->blurChanged(value);
    };
    hueRow_->onValueChanged = [self](double value) {
        if (self)
            self->hueChanged(value);
    };

    categoryTableView_ = new QScrollArea(this);
    categoryTableView_->setFrameShape(QFrame::NoFrame);
    categoryTableView_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    categoryTableView_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    categoryTableView_->setWidgetResizable(true);
    categoryTableView_->setStyleSheet(
        QStringLiteral("QScrollArea, QScrollArea > QWidget > QWidget { background: transparent; }"));
    auto* table = new QWidget;
    auto* rows = new QVBoxLayout(table);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    for (int section = 0; section < int(categories_.size()); ++section) {
        auto* header = new QLabel(categories_[std::size_t(section)].title, table);
        header->setFixedHeight(36);
        header->setContentsMargins(kSide, 0, kSide, 0);
        header->setStyleSheet(QStringLiteral("color: white; font-size: 15px; font-weight: 600;"));
        auto* row = new CustomBackgroundCategoryRowCell(table);
        row->onSelectItem = [self, section](int item) {
            if (self)
                self->didSelectCatalogItem(section, item);
        };
        rows->addWidget(header);
        rows->addWidget(row);
        categoryRows_ << row;
    }
    rows->addStretch();
    categoryTableView_->setWidget(table);
}

void CustomBackgroundPickerViewController::resizeEvent(QResizeEvent* event) {
    ViewController::resizeEvent(event);
    layoutScreen();
}

void CustomBackgroundPickerViewController::layoutScreen() {
    if (!backButton_)
        return;
    const int w = width();
    backButton_->move(kSide, 8);
    titleLabel_->setGeometry(0, 8, w, 28);
    titleLabel_->lower();
    doneButton_->adjustSize();
    const int doneWidth = doneButton_->sizeHint().width();
    doneButton_->setGeometry(w - kSide - doneWidth, 8 + (28 - 30) / 2, doneWidth, 30);
    const int previewSide = std::max(0, w - 2 * kPreviewInset);
    const int previewTop = 8 + 28 + 20;
    previewContainerView_->setGeometry(kPreviewInset, previewTop, previewSide, previewSide);
    previewPlaceholderLabel_->setGeometry(12, 0, std::max(0, previewSide - 24), previewSide);
    const int actionsTop = previewTop + previewSide + 20;
    actionsStackView_->setGeometry(kSide, actionsTop, w - 2 * kSide, 76);
    int tableTop = actionsTop + 76 + 16;
    if (!slidersStackView_->isHidden()) {
        const int slidersHeight = 2 * CustomBackgroundSliderRow::rowHeight + 14;
        slidersStackView_->setGeometry(20, tableTop, w - 40, slidersHeight);
        tableTop += slidersHeight + 16;
    }
    categoryTableView_->setGeometry(0, tableTop, w, std::max(0, height() - tableTop));
}

void CustomBackgroundPickerViewController::setSelection(std::optional<CustomBackgroundSelection> selection,
                                                        std::optional<IndexPath> catalogPath) {
    selection_ = std::move(selection);
    selectedCatalogIndexPath_ = catalogPath;
    const bool has = selection_.has_value();
    doneButton_->setEnabled(has);
    doneButton_->setStyleSheet(QStringLiteral("QPushButton { color: white; background: rgba(10,132,255,%1); "
                                              "border: none; border-radius: 15px; padding: 6px 16px; "
                                              "font-size: 15px; font-weight: 600; }")
                                   .arg(has ? 255 : 102));
    slidersStackView_->setVisible(has);
    previewPlaceholderLabel_->setVisible(!has);
    // Every new selection starts unfiltered.
    blurRow_->setValue(0);
    hueRow_->setValue(0);
    blurAmount_ = 0;
    hueAmount_ = 0;
    previewContainerView_->setBlurFraction(0);

    baseImageForFilters_.reset();
    previewContainerView_->setGradient(std::nullopt);
    if (!selection_) {
        previewImageView_->setImage(nullptr);
        previewImageView_->setVisible(false);
        previewContainerView_->setBackgroundColor(placeholderGrey());
    } else {
        std::visit(overloaded{[this](const ImagePtr& image) {
                                  baseImageForFilters_ = image;
                                  previewImageView_->setImage(image);
                                  previewImageView_->setVisible(true);
                              },
                              [this](const Color& color) {
                                  previewImageView_->setVisible(false);
                                  previewContainerView_->setBackgroundColor(color.toQColor());
                              },
                              [this](const CustomBackgroundGradient& gradient) {
                                  previewImageView_->setVisible(false);
                                  previewContainerView_->setBackgroundColor(Qt::transparent);
                                  previewContainerView_->setGradient(
                                      std::pair(gradient.start.toQColor(), gradient.end.toQColor()));
                              }},
                   *selection_);
    }
    layoutScreen();
}

void CustomBackgroundPickerViewController::reloadCategories() {
    for (int section = 0; section < categoryRows_.size(); ++section) {
        const Category& category = categories_[std::size_t(section)];
        std::optional<int> selected;
        if (selectedCatalogIndexPath_ && selectedCatalogIndexPath_->section == section)
            selected = selectedCatalogIndexPath_->item;
        categoryRows_[section]->configure(category.assetPrefix, category.itemCount, selected);
    }
}

void CustomBackgroundPickerViewController::didSelectCatalogItem(int section, int item) {
    if (section < 0 || section >= int(categories_.size()) || item < 0 ||
        item >= categories_[std::size_t(section)].itemCount)
        return;
    ImagePtr image = Assets::image(categories_[std::size_t(section)].assetName(item));
    if (!image)
        return;
    setSelection(CustomBackgroundSelection(image), IndexPath{section, item});
    reloadCategories();
}

void CustomBackgroundPickerViewController::didTapImport() {
    PickerConfiguration configuration;
    configuration.selectionLimit = 1;
    QPointer<CustomBackgroundPickerViewController> self(this);
    PhotoPicker::present(this, configuration, [self](std::vector<PickerResult> results) {
        if (!self || results.empty())
            return;
        results.resize(1);
        loadImagesInOrder(results, self, [self](std::vector<ImagePtr> images) {
            if (self && !images.empty() && images.front())
                self->setSelection(CustomBackgroundSelection(images.front()), std::nullopt);
        });
    });
}

void CustomBackgroundPickerViewController::didTapColor() {
    auto* picker = new ColorPicker();
    QPointer<CustomBackgroundPickerViewController> self(this);
    picker->onColorChanged = [self](const Color& color) {
        if (self) {
            self->setSelection(CustomBackgroundSelection(color), std::nullopt);
            self->reloadCategories();
        }
    };
    present(picker, true);
}

void CustomBackgroundPickerViewController::didTapGradient() {
    auto* sheet = new GradientColorPickerViewController();
    QPointer<CustomBackgroundPickerViewController> self(this);
    sheet->onConfirm = [self](Color start, Color end) {
        if (self) {
            self->setSelection(CustomBackgroundSelection(CustomBackgroundGradient{start, end}), std::nullopt);
            self->reloadCategories();
        }
    };
    present(sheet, true);
}

void CustomBackgroundPickerViewController::blurChanged(double value) {
    blurAmount_ = value;
    applyBlur();
}

void CustomBackgroundPickerViewController::applyBlur() {
    // Only pictures blur; the row still moves for a colour or a gradient.
    const bool picture = selection_ && std::holds_alternative<ImagePtr>(*selection_);
    previewContainerView_->setBlurFraction(picture ? std::clamp(blurAmount_ / 100.0, 0.0, 1.0) : 0.0);
}

void CustomBackgroundPickerViewController::hueChanged(double value) {
    hueAmount_ = value;
    if (!selection_)
        return;
    const double radians = hueAmount_ * std::numbers::pi / 180.0;
    std::visit(overloaded{[&](const ImagePtr&) {
                              // Always from the unfiltered picture, so steps do not add up.
                              previewImageView_->setImage(
                                  CustomBackgrounds::hueAdjusted(baseImageForFilters_, radians));
                          },
                          [&](const Color& color) {
                              previewContainerView_->setBackgroundColor(
                                  CustomBackgrounds::rotatedHue(color, radians).toQColor());
                          },
                          [&](const CustomBackgroundGradient& gradient) {
                              previewContainerView_->setGradient(
                                  std::pair(CustomBackgrounds::rotatedHue(gradient.start, radians).toQColor(),
                                            CustomBackgrounds::rotatedHue(gradient.end, radians).toQColor()));
                          }},
               *selection_);
}

QColor CustomBackgroundPickerViewController::previewBackgroundColor() const {
    return previewContainerView_->backgroundColor();
}

std::optional<std::pair<QColor, QColor>> CustomBackgroundPickerViewController::previewGradientColors() const {
    return previewContainerView_->gradient();
}

double CustomBackgroundPickerViewController::previewBlurFraction() const {
    return previewContainerView_->blurFraction();
}

void CustomBackgroundPickerViewController::didTapDone() {
    if (!selection_)
        return;
    // The preview as it is seen, blur and hue included, at screen scale.
    const double scale = Screen::main().scale();
    QImage picture((QSizeF(previewContainerView_->size()) * scale).toSize(),
                   QImage::Format_ARGB32_Premultiplied);
    if (picture.isNull())
        return;
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::transparent);
    {
        QPainter painter(&picture);
        previewContainerView_->render(&painter, QPoint(), QRegion(), QWidget::DrawChildren);
    }
    picture.setDevicePixelRatio(1.0);
    ImagePtr image = Image::make(picture, scale);
    if (!image)
        return;
    if (onDone)
        onDone(image);
    dismiss(true);
}

void CustomBackgroundPickerViewController::didTapBack() {
    dismiss(true);
}
