#include "mirror/MirrorVController.h"

#include "export/EditorSavingChain.h"
#include "filters/FilterStripView.h"
#include "mirror/CaptionLabelView.h"
#include "mirror/EditBtnCell.h"
#include "mirror/MirrorCanvasView.h"
#include "mirror/MirrorCell.h"
#include "mirror/MirrorImageView.h"
#include "mirror/MirrorPattern.h"
#include "platform/Alert.h"
#include "platform/Assets.h"
#include "platform/Dispatch.h"
#include "platform/Log.h"
#include "platform/Screen.h"
#include "platform/Storyboard.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <array>
#include <cmath>

namespace {
constexpr int topBarHeight = 56;
constexpr int toolBarHeight = 70;
constexpr int canvasTop = topBarHeight + 16;
const QColor background(16, 16, 18);

struct ToolEntry {
    const char* title;
    const char* picture;
};
constexpr std::array<ToolEntry, MirrorVController::toolCount> tools{{
    {"2D Mirror", "ic_2d"},
    {"3d Mirror", "ic_3d"},
    {"Effects", "ic_effect"},
    {"Text", "ic_edittext"},
    {"Stickers", "ic_sticker"},
    {"Gallery", "ic_addimage"},
}};
} // namespace

MirrorVController::MirrorVController(QWidget* parent) : BaseViewController(parent) {
    setObjectName(QStringLiteral("MirrorVController"));
    savingChain_ = new EditorSavingChain(this, [this] { return containerView_->snapshot(); });
}

MirrorVController::~MirrorVController() {
    // A sliding panel's animation writes into its slot; it goes before the slots do.
    for (const auto& s : panels_)
        delete s->animation.data();
}

void MirrorVController::viewDidLoad() {
    imageVideoPickerDelegate = this;
    fileMediaPickerDelegate = this;
    playgroundProcessDelegate = this;
    // The canvas is as wide as the screen, and square.
    containerView_ = new MirrorCanvasView(Screen::main().size().width(), this);
    containerView_->setObjectName(QStringLiteral("containerView"));
    QPointer<MirrorVController> self(this);
    containerView_->onImageTapped = [self](MirrorImageView* view) {
        if (self)
            self->imageTapped(view);
    };
    containerView_->onStickerDoubleTapped = [self](StickerView* sticker) {
        if (self)
            self->doubleTapped(sticker);
    };
    if (!selectedImage)
        fatalError("MirrorVController: a picture is needed before the screen loads");
    containerView_->setSelectedImage(selectedImage);
    buildTopBar();
    buildToolStrip();
    buildPatternPanel();
    buildHighMirrorPanel();
    buildFilterPanel();
    buildGalleryPanel();
    buildTextPanels();
    applyLowMirrorPattern(0);
    layoutViews();
}

void MirrorVController::buildTopBar() {
    topView_ = new QWidget(this);
    topView_->setObjectName(QStringLiteral("topView"));
    backButton_ = new QPushButton(QStringLiteral("‹ Back"), topView_);
    backButton_->setObjectName(QStringLiteral("backButton"));
    saveButton_ = new QPushButton(QStringLiteral("Save"), topView_);
    saveButton_->setObjectName(QStringLiteral("saveButton"));
    for (QPushButton* button : {backButton_, saveButton_}) {
        button->setCursor(Qt::PointingHandCursor);
        button->setStyleSheet(
            QStringLiteral("QPushButton { color: white; background: transparent; border: none;"
                           " font-size: 16px; font-weight: 600; }"));
    }
    saveButton_->setStyleSheet(QStringLiteral("QPushButton { color: black; background: #faca16; border: none;"
                                              " border-radius: 14px; font-size: 15px; font-weight: 600; }"));
    titleLabel_ = new QLabel(QStringLiteral("Mirror"), topView_);
    titleLabel_->setAlignment(Qt::AlignCenter);
    titleLabel_->setStyleSheet(QStringLiteral("color: white; font-size: 18px; font-weight: 700;"));
    connect(backButton_, &QPushButton::clicked, this, [this] { backButton(); });
    connect(saveButton_, &QPushButton::clicked, this, [this] { saveButton(); });
}

void MirrorVController::buildToolStrip() {
    toolBarView_ = new QWidget(this);
    toolBarView_->setObjectName(QStringLiteral("toolBarView"));
    toolBarView_->setAttribute(Qt::WA_StyledBackground);
    toolBarView_->setStyleSheet(QStringLiteral("background: rgb(28, 28, 30);"));
    for (int i = 0; i < toolCount; ++i) {
        const QString picture = QString::fromLatin1(tools[size_t(i)].picture);
        auto* cell = new EditBtnCell(i, QString::fromLatin1(tools[size_t(i)].title), picture,
                                     picture + QLatin1Char('1'), toolBarView_);
        connect(cell, &QAbstractButton::clicked, this, [this, i] { didSelectTool(i); });
        toolCells_ << cell;
    }
}

void MirrorVController::layoutViews() {
    if (!containerView_)
        return;
    const int w = width();
    topView_->setGeometry(0, 0, w, topBarHeight);
    backButton_->setGeometry(8, 10, 80, 36);
    saveButton_->setGeometry(w - 86, 12, 74, 32);
    titleLabel_->setGeometry(90, 0, w - 180, topBarHeight);
    containerView_->move((w - containerView_->width()) / 2, canvasTop);
    toolBarView_->setGeometry(0, height() - toolBarHeight, w, toolBarHeight);
    const int cellWidth = w / toolCount;
    for (EditBtnCell* cell : toolCells_)
        cell->setGeometry(cell->index() * cellWidth, 0, cellWidth, toolBarHeight);
    layoutPanels();
}

void MirrorVController::resizeEvent(QResizeEvent* event) {
    BaseViewController::resizeEvent(event);
    layoutViews();
}

void MirrorVController::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), background);
}

void MirrorVController::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        backButton();
        return;
    }
    BaseViewController::keyPressEvent(event);
}

ImagePtr MirrorVController::scaledToFit(const ImagePtr& photo, double side) {
    if (!photo || photo->size().isEmpty())
        return nullptr;
    const QSizeF size = photo->size();
    const double k = std::min(side / size.width(), side / size.height());
    const double scale = Screen::main().scale();
    const QSize pixels(std::max(1, int(std::lround(size.width() * k * scale))),
                       std::max(1, int(std::lround(size.height() * k * scale))));
    QImage bitmap(pixels, QImage::Format_ARGB32_Premultiplied);
    bitmap.fill(Qt::transparent);
    {
        QPainter painter(&bitmap);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(QRect(QPoint(), pixels), photo->uprightBitmap());
    }
    return Image::make(std::move(bitmap), scale);
}

// ---- patterns ----

void MirrorVController::applyLowMirrorPattern(int index) {
    containerView_->applyLowMirrorPattern(index);
}

void MirrorVController::applyHighMirrorPattern(int index, bool mirrorFirst) {
    containerView_->applyHighMirrorPattern(index, mirrorFirst);
}

void MirrorVController::PatternsActionTapped(int tag) {
    for (QPushButton* button : patternButtons_)
        button->setStyleSheet(button->property("tag").toInt() == tag
                                  ? QStringLiteral("border: 1.5px solid #faca16; border-radius: 5px;")
                                  : QStringLiteral("border: none; border-radius: 5px;"));
    lowMirrorSelect = true;
    lowIndexSelect = tag;
    applyLowMirrorPattern(tag);
}

void MirrorVController::didSelectHighMirror(int index) {
    for (MirrorCell* cell : highMirrorCells_)
        cell->setChosen(cell->index() == index);
    lowMirrorSelect = false;
    highIndexSelect = index;
    applyHighMirrorPattern(index, index % 2 == 0);
}

void MirrorVController::mirrorCancel() {
    slidePanel(Panel::mirrorPattern, false);
}

void MirrorVController::highmirroCancelBtn() {
    slidePanel(Panel::highMirror, false);
}

void MirrorVController::filterCancel() {
    slidePanel(Panel::filter, false);
}

// ---- tools ----

void MirrorVController::reloadToolStrip() {
    for (EditBtnCell* cell : toolCells_)
        cell->configure(cell->index() == toolBtnSelect);
}

void MirrorVController::didSelectTool(int index) {
    if (index < 0 || index >= toolCount)
        return;
    toolBtnSelect = index;
    reloadToolStrip();
    switch (index) {
    case 0:
        showOnly(Panel::mirrorPattern);
        break;
    case 1:
        showOnly(Panel::highMirror);
        break;
    case 2:
        showOnly(Panel::filter);
        break;
    case 3:
        textbtnSelect = noTool;
        reloadTextTools();
        showOnly(Panel::textEditing);
        presentTextEntry(false, QString());
        break;
    case 4: {
        auto* catalogue = Storyboard::instantiate<StickerCategoryController>(
            QStringLiteral("Main"), QStringLiteral("StickerCategoryController"));
        catalogue->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
        catalogue->delegate = this;
        present(catalogue, true);
        break;
    }
    case 5:
        showOnly(Panel::gallery);
        break;
    default:
        break;
    }
}

// ---- looks ----

void MirrorVController::imageTapped(MirrorImageView* view) {
    if (!view)
        return;
    containerView_->setCurrentImageView(view);
    containerView_->setCurrentImage(view->image());
}

void MirrorVController::FilterButtonTapped(int index) {
    if (index < 0 || index >= int(filterTable().size()))
        return;
    MirrorImageView* view = containerView_->currentImageView();
    const ImagePtr source = containerView_->currentImage();
    if (!view || !source)
        return;
    // Every look starts from the pane's unfiltered picture, so looks replace each other.
    if (ImagePtr filtered = applyLook(looks_, filterTable()[size_t(index)].lookupImage, source))
        view->setImage(filtered);
}

// ---- gallery ----

QPushButton* MirrorVController::galleryButton(int tag) const {
    for (QPushButton* button : galleryButtons_)
        if (button->property("tag").toInt() == tag)
            return button;
    return nullptr;
}

void MirrorVController::imageChooseBtn(int tag) {
    switch (tag) {
    case 100:
        slidePanel(Panel::gallery, false);
        break;
    case 101:
        openCamera();
        break;
    case 102:
        openLibrary(true);
        break;
    case 103:
        openDocumentPicker();
        break;
    default: // 104: no picture generator on this system
        break;
    }
}

void MirrorVController::replacePicture(const ImagePtr& image) {
    if (!image)
        return;
    selectedImage = image;
    containerView_->setSelectedImage(image);
    if (lowMirrorSelect)
        applyLowMirrorPattern(lowIndexSelect);
    else
        applyHighMirrorPattern(highIndexSelect, highIndexSelect % 2 == 0);
}

void MirrorVController::pickedImage(const ImagePtr& image) {
    replacePicture(image);
}

void MirrorVController::playgroundImageReady(const ImagePtr& image) {
    replacePicture(image);
}

void MirrorVController::pickedVideo(const QString& url) {
    printLine(("A video cannot be mirrored; choose a photo instead of " + url).toStdString());
}

void MirrorVController::pickedFiles(const std::vector<MediaItem>& items) {
    // Videos are passed over: the first picture is taken.
    for (const MediaItem& item : items)
        if (item.type == MediaType::image && item.thumbnail) {
            replacePicture(item.thumbnail);
            return;
        }
    if (!items.empty())
        printLine("None of the chosen files is a photo; the picture stays as it was.");
}

// ---- picture stickers ----

StickerView* MirrorVController::makeOverlay(QGraphicsWidget* content) {
    auto* overlay = new StickerView(content);
    overlay->delegate = this;
    overlay->closeImageView()->setImage(Assets::image(QStringLiteral("sticker_cross")));
    overlay->rotateImageView()->setImage(Assets::image(QStringLiteral("sticker_rotate")));
    overlay->setCenter(QPointF(containerView_->side() / 2, containerView_->side() / 2));
    overlay->showEditingHandlers = true;
    overlay->updateHandlers();
    return overlay;
}

void MirrorVController::stickerPicked(ImagePtr image) {
    if (presentedViewController())
        presentedViewController()->dismiss(true);
    if (!image)
        return;
    auto* overlay = makeOverlay(new StickerPictureView(std::move(image), QSizeF(150, 150)));
    overlay->setData(0, count);
    ++count;
    setSelectedStickerView(overlay);
    containerView_->addSticker(overlay);
}

void MirrorVController::setSelectedStickerView(StickerView* sticker) {
    if (sticker == selectedStickerView_)
        return;
    if (selectedStickerView_) {
        selectedStickerView_->showEditingHandlers = false;
        selectedStickerView_->updateHandlers();
    }
    selectedStickerView_ = sticker;
    if (sticker) {
        sticker->showEditingHandlers = true;
        sticker->updateHandlers();
    }
}

void MirrorVController::stickerViewDidTap(StickerView* sticker) {
    setSelectedStickerView(sticker);
    tagValue = sticker->data(0).toInt();
}

void MirrorVController::stickerViewDidChangeRotating(StickerView* sticker) {
    setSelectedStickerView(sticker);
    // A caption is re-sized by its owner: its font follows the label's height.
    if (auto* label = dynamic_cast<CaptionLabelView*>(sticker->contentView()))
        label->setFont(label->fontName(), label->size().height() * 3 * 0.25);
}

// ---- leaving and saving ----

void MirrorVController::backButton() {
    auto* alert = new Alert(QStringLiteral("Warning!!!"), QStringLiteral("Editing will be lost!"));
    QPointer<MirrorVController> self(this);
    alert->addAction({QStringLiteral("OK"), AlertActionStyle::defaultStyle, [self] {
                          // Asked of the presenter, so the alert on its way out is not taken for
                          // the screen to close.
                          if (self && self->presentingViewController())
                              self->presentingViewController()->dismiss(true);
                      }});
    alert->addAction({QStringLiteral("Edit"), AlertActionStyle::cancel, {}});
    present(alert, true);
}

void MirrorVController::saveButton() {
    // The picture is taken without handles; the overlays stay, their handles off until tapped.
    for (StickerView* sticker : containerView_->stickersOnCanvas()) {
        sticker->showEditingHandlers = false;
        sticker->updateHandlers();
    }
    selectedStickerView_ = nullptr;
    savingChain_->openChooser();
}
