#include "frames/CollageViewController.h"

#include "export/EditorSavingChain.h"
#include "filters/FilterStripView.h"
#include "frames/BackgroundColorList.h"
#include "frames/BtnsCell.h"
#include "frames/FrameAreaView.h"
#include "frames/FrameCellItem.h"
#include "platform/Alert.h"
#include "platform/Animations.h"
#include "platform/Assets.h"
#include "platform/Dispatch.h"
#include "platform/Log.h"
#include "platform/Screen.h"

#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QSlider>

namespace {

constexpr int kHeaderTop = 56;
constexpr int kToolRowHeight = 76;
constexpr int kPanelHeight = 140;
constexpr int kPanelContentTop = 36;

struct ToolRow {
    const char* title;
    const char* icon;
};
const std::array<ToolRow, CollageViewController::toolCount> kTools{{{"Collage", "ic_fcollage"},
                                                                    {"Filter", "ic_filter"},
                                                                    {"Adjust", "ic_adjustments"},
                                                                    {"Color", "ic_color"},
                                                                    {"Gallery", "ic_newgallery"}}};

QScrollArea* makeTray(QWidget* parent) {
    auto* tray = new QScrollArea(parent);
    tray->setFrameShape(QFrame::NoFrame);
    tray->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    tray->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    tray->setStyleSheet(
        QStringLiteral("QScrollArea, QScrollArea > QWidget > QWidget { background: transparent; }"));
    tray->setWidget(new QWidget);
    return tray;
}

// A round colour swatch of `side` points.
void styleColorButton(QPushButton* button, const Color& color, int side) {
    button->setStyleSheet(
        QStringLiteral("QPushButton { background: %1; border: 1px solid white; border-radius: %2px; }")
            .arg(color.toQColor().name())
            .arg(side / 2));
}

QSlider* makeSlider(QWidget* parent, const QString& name, int maximum, int value) {
    auto* slider = new QSlider(Qt::Horizontal, parent);
    slider->setObjectName(name);
    slider->setRange(0, maximum);
    slider->setValue(value);
    return slider;
}

} // namespace

CollageViewController::CollageViewController(QWidget* parent) : BaseViewController(parent) {
    setAttribute(Qt::WA_StyledBackground);
    setStyleSheet(QStringLiteral("CollageViewController { background: black; }"));
}

CollageViewController::~CollageViewController() = default;

QString CollageViewController::photoCountMessage(int count) {
    return QStringLiteral("Please select %1 photo for this frame").arg(count);
}

std::optional<int> CollageViewController::lookOfCell(int cell) const {
    return cell >= 0 && cell < FrameGeometry::maxCells ? cellLooks_[std::size_t(cell)] : std::nullopt;
}

double CollageViewController::panelOffset(Tool tool) const {
    return tool < galleryTool ? panelOffsets_[std::size_t(tool)] : panelHidden;
}

void CollageViewController::viewDidLoad() {
    QPointer<CollageViewController> self(this);
    Dispatch::main().async([self] {
        if (self)
            self->openPhotoPicker(self->tagValue);
    });
    photoMediaPickerDelegate = this;
    imageVideoPickerDelegate = this;
    index = currentindex;

    mainview_ = new FrameAreaView(this);
    mainview_->setObjectName(QStringLiteral("mainview"));
    mainview_->onCellTapped = [self](int tag) {
        if (self)
            self->imageTapped1(tag);
    };
    savingChain_ = new EditorSavingChain(
        this, [self]() -> ImagePtr { return self ? self->mainview_->snapshot() : nullptr; });
    buildHeader();
    buildPanels();
    buildToolRow();
    buildFrameTray();
    buildColorTray();
    Dispatch::main().async([self] {
        if (self)
            self->buildFilterTray();
    });
    layoutViews();
}

void CollageViewController::buildHeader() {
    titleLabel_ = new QLabel(QStringLiteral("Collage"), this);
    titleLabel_->setAlignment(Qt::AlignCenter);
    titleLabel_->setStyleSheet(QStringLiteral("color: white; font-size: 18px; font-weight: 600;"));
    backButton_ = new QPushButton(this);
    backButton_->setObjectName(QStringLiteral("backButton"));
    backButton_->setIcon(Assets::symbol(QStringLiteral("chevron.left"), 22));
    backButton_->setIconSize(QSize(22, 22));
    shareButton_ = new QPushButton(QStringLiteral("Save"), this);
    shareButton_->setObjectName(QStringLiteral("shareButton"));
    for (QPushButton* button : {backButton_, shareButton_}) {
        button->setCursor(Qt::PointingHandCursor);
        button->setStyleSheet(
            QStringLiteral("QPushButton { border: none; border-radius: 16px; background: #faca16;"
                           " color: black; font-size: 15px; font-weight: 600; }"));
    }
    backButton_->setStyleSheet(QStringLiteral("QPushButton { border: none; background: transparent; }"));
    connect(backButton_, &QPushButton::clicked, this, &CollageViewController::backBtn);
    connect(shareButton_, &QPushButton::clicked, this, &CollageViewController::shareBtn);
}

void CollageViewController::buildPanels() {
    const std::array<QString, 4> names{QStringLiteral("collagePanel"), QStringLiteral("filterPanel"),
                                       QStringLiteral("adjustPanel"), QStringLiteral("colorPanel")};
    for (int i = 0; i < 4; ++i) {
        auto* panel = new QWidget(this);
        panel->setObjectName(names[std::size_t(i)]);
        panel->setAttribute(Qt::WA_StyledBackground);
        panel->setStyleSheet(QStringLiteral("#%1 { background: #1c1c1e; }").arg(names[std::size_t(i)]));
        auto* cancel = new QPushButton(panel);
        cancel->setObjectName(QStringLiteral("cancelButton"));
        cancel->setIcon(Assets::symbol(QStringLiteral("xmark"), 18));
        cancel->setIconSize(QSize(18, 18));
        cancel->setGeometry(8, 6, 28, 28);
        cancel->setCursor(Qt::PointingHandCursor);
        cancel->setStyleSheet(QStringLiteral("QPushButton { border: none; background: transparent; }"));
        connect(cancel, &QPushButton::clicked, this, [this, i] { adjustCancel(Tool(i)); });
        panels_[std::size_t(i)] = panel;
    }
    collageScrollView_ = makeTray(panels_[collageTool]);
    colorScrollView_ = makeTray(panels_[colorTool]);

    QWidget* adjust = panels_[adjustTool];
    spacingSlider_ = makeSlider(adjust, QStringLiteral("spacingSlider"), maximumSpacing,
                                int(FrameGeometry::defaultSpacing));
    cornerSlider_ = makeSlider(adjust, QStringLiteral("cornerSlider"), maximumCornerRadius, 0);
    connect(spacingSlider_, &QSlider::valueChanged, this, [this](int v) { sliderspacing(v); });
    connect(cornerSlider_, &QSlider::valueChanged, this, [this](int v) { cornerspace(v); });
    for (const auto& [slider, text] :
         {std::pair{spacingSlider_, "Spacing"}, std::pair{cornerSlider_, "Corners"}}) {
        auto* label = new QLabel(QString::fromLatin1(text), adjust);
        label->setObjectName(slider->objectName() + QStringLiteral("Label"));
        label->setStyleSheet(QStringLiteral("color: white; font-size: 13px;"));
    }
}

void CollageViewController::buildToolRow() {
    toolRow_ = new QWidget(this);
    toolRow_->setObjectName(QStringLiteral("toolRow"));
    toolRow_->setAttribute(Qt::WA_StyledBackground);
    toolRow_->setStyleSheet(QStringLiteral("#toolRow { background: black; }"));
    for (int row = 0; row < toolCount; ++row) {
        const QString icon = QString::fromLatin1(kTools[std::size_t(row)].icon);
        auto* cell = new BtnsCell(QString::fromLatin1(kTools[std::size_t(row)].title), icon,
                                  icon + QLatin1Char('1'), toolRow_);
        connect(cell, &BtnsCell::clicked, this, [this, row] { didSelectTool(row); });
        toolCells_ << cell;
    }
}

void CollageViewController::buildFrameTray() {
    const QStringList previews = maingridarray.value_or(QStringList());
    const int first = FrameGeometry::firstFrameOfRange(currentindex).value_or(0);
    QWidget* content = collageScrollView_->widget();
    for (int i = 0; i < previews.size(); ++i) {
        auto* button = new QPushButton(content);
        const int tag = i + first;
        button->setObjectName(QStringLiteral("frame%1").arg(tag));
        button->setProperty("tag", tag);
        button->setGeometry(5 + i * frameButtonStep, 1, frameButtonSide, frameButtonSide);
        button->setIcon(Assets::icon(previews[i]));
        button->setIconSize(QSize(frameButtonSide, frameButtonSide));
        button->setCursor(Qt::PointingHandCursor);
        button->setStyleSheet(QStringLiteral("QPushButton { border: none; background: transparent; }"));
        connect(button, &QPushButton::clicked, this, [this, tag] { buttonTappedWithSender(tag); });
        frameButtons_ << button;
    }
    content->resize(int(previews.size()) * frameButtonStep, frameButtonSide + 2);
}

void CollageViewController::buildColorTray() {
    const std::vector<Color>& colors = backgroundColorList();
    QWidget* content = colorScrollView_->widget();
    for (int tag = 0; tag < int(colors.size()); ++tag) {
        auto* button = new QPushButton(content);
        button->setObjectName(QStringLiteral("color%1").arg(tag));
        button->setProperty("tag", tag);
        button->setCursor(Qt::PointingHandCursor);
        styleColorButton(button, colors[std::size_t(tag)], colorButtonSide);
        connect(button, &QPushButton::clicked, this, [this, tag] { colorButtonTapped(tag); });
        colorButtons_ << button;
    }
    content->resize((int(colors.size()) + 1) * colorButtonStep, 80);
}

void CollageViewController::buildFilterTray() {
    filterScrollView_ = new FilterStripView(panels_[filterTool]);
    filterScrollView_->setObjectName(QStringLiteral("filterScrollView"));
    QPointer<CollageViewController> self(this);
    filterScrollView_->onFilterSelected = [self](int row) {
        if (self)
            self->FilterButtonTapped(row);
    };
    layoutViews();
    filterScrollView_->show();
}

void CollageViewController::resizeEvent(QResizeEvent* event) {
    BaseViewController::resizeEvent(event);
    if (isViewLoaded())
        layoutViews();
}

void CollageViewController::layoutViews() {
    const int w = width(), h = height();
    titleLabel_->setGeometry(0, kHeaderTop, w, 32);
    backButton_->setGeometry(12, kHeaderTop, 32, 32);
    shareButton_->setGeometry(w - 84, kHeaderTop, 72, 32);
    const int top = Screen::main().size().height() >= 812 ? 120 : 154;
    mainview_->setGeometry(0, top, w, h / 2);
    toolRow_->setGeometry(0, h - kToolRowHeight, w, kToolRowHeight);
    const int cellWidth = w / toolCount;
    for (int i = 0; i < toolCells_.size(); ++i)
        toolCells_[i]->setGeometry(i * cellWidth, 0, cellWidth, kToolRowHeight);
    for (int i = 0; i < 4; ++i) {
        const int y = h - kToolRowHeight - kPanelHeight + int(panelOffsets_[std::size_t(i)]);
        panels_[std::size_t(i)]->setGeometry(0, y, w, kPanelHeight);
    }
    collageScrollView_->setGeometry(0, kPanelContentTop, w, frameButtonSide + 4);
    colorScrollView_->setGeometry(0, kPanelContentTop + 4, w, 80);
    for (QPushButton* button : colorButtons_) {
        const int tag = button->property("tag").toInt();
        const double scale = button->property("selected").toBool() ? selectedColorScale : 1.0;
        const double side = colorButtonSide * scale;
        const QPointF centre(w / 2.0 - 20 + tag * colorButtonStep + colorButtonSide / 2.0,
                             20 + colorButtonSide / 2.0);
        button->setGeometry(QRectF(centre - QPointF(side, side) / 2.0, QSizeF(side, side)).toRect());
    }
    if (filterScrollView_)
        filterScrollView_->setGeometry(0, kPanelContentTop, w, FilterStripView::buttonHeight + 4);
    spacingSlider_->setGeometry(96, kPanelContentTop + 12, w - 120, 28);
    cornerSlider_->setGeometry(96, kPanelContentTop + 56, w - 120, 28);
    if (auto* label = panels_[adjustTool]->findChild<QLabel*>(QStringLiteral("spacingSliderLabel")))
        label->setGeometry(20, kPanelContentTop + 12, 72, 28);
    if (auto* label = panels_[adjustTool]->findChild<QLabel*>(QStringLiteral("cornerSliderLabel")))
        label->setGeometry(20, kPanelContentTop + 56, 72, 28);
    toolRow_->raise();
}

void CollageViewController::slidePanel(Tool tool, double offset) {
    const double from = panelOffsets_[std::size_t(tool)];
    QPointer<CollageViewController> self(this);
    panels_[std::size_t(tool)]->raise();
    toolRow_->raise();
    Animations::animate(this, panelDuration, [self, tool, from, offset](double progress) {
        if (!self)
            return;
        self->panelOffsets_[std::size_t(tool)] = Animations::interpolate(from, offset, progress);
        self->layoutViews();
    });
}

void CollageViewController::didSelectTool(int row) {
    if (row < 0 || row >= toolCount)
        return;
    isFirst = false;
    collectBtnIndex = row;
    if (row == galleryTool) {
        isGallery = true;
        for (int i = 0; i < 4; ++i)
            slidePanel(Tool(i), panelHidden);
        openLibrary(true);
    } else {
        slidePanel(Tool(row), panelShown);
    }
    reloadToolRow();
}

void CollageViewController::reloadToolRow() {
    for (int i = 0; i < toolCells_.size(); ++i)
        toolCells_[i]->setSelectedState(i == collectBtnIndex);
}

void CollageViewController::adjustCancel(Tool tool) {
    if (tool < galleryTool)
        slidePanel(tool, panelHidden);
}

void CollageViewController::buttonTappedWithSender(int tag) {
    // The tray only holds frames with as many cells as there are photos.
    if (FrameGeometry::cellCount(tag) != tagValue || int(mutableImages.size()) != tagValue)
        return;
    index = tag;
    printLine(std::to_string(index));
    QPointer<CollageViewController> self(this);
    Dispatch::main().async([self] {
        if (self)
            self->mainview_->layoutFrame(self->index);
    });
}

void CollageViewController::colorButtonTapped(int tag) {
    if (tag < 0 || tag >= colorButtons_.size())
        return;
    for (QPushButton* button : colorButtons_) {
        const bool selected = button->property("tag").toInt() == tag;
        if (button->property("selected").toBool() != selected)
            styleColorButton(button, backgroundColorList()[std::size_t(button->property("tag").toInt())],
                             int(colorButtonSide * (selected ? selectedColorScale : 1.0)));
        button->setProperty("selected", selected);
    }
    layoutViews();
    colorScrollView_->ensureWidgetVisible(colorButtons_[tag], colorScrollView_->width() / 2, 0);
    mainview_->setBackgroundColor(backgroundColorList()[std::size_t(tag)]);
}

void CollageViewController::FilterButtonTapped(int row) {
    const auto& table = filterTable();
    if (row < 0 || row >= int(table.size()) || !currentImage)
        return;
    const QString& lookup = table[std::size_t(row)].lookupImage;
    if (!Assets::image(lookup))
        return;
    // Always from the photo as it was picked, so a second look replaces the first.
    const ImagePtr filtered = applyLook(looks_, lookup, currentImage);
    if (!filtered)
        return;
    mainview_->cell(commontag)->setImage(filtered);
    cellLooks_[std::size_t(commontag)] = row;
}

void CollageViewController::imageTapped1(int tag) {
    if (tag < 0 || tag >= int(mutableImages.size()))
        return;
    commontag = tag;
    currentImage = mutableImages[std::size_t(tag)];
}

void CollageViewController::sliderspacing(double value) {
    mainview_->setSpacing(value, index);
}

void CollageViewController::cornerspace(double value) {
    mainview_->setCornerRadius(value);
}

void CollageViewController::shareBtn() {
    savingChain_->openChooser();
}

void CollageViewController::backBtn() {
    dismiss(true);
}

void CollageViewController::pickedImage(const ImagePtr& image) {
    isGallery = false;
    if (!image || commontag < 0 || commontag >= int(mutableImages.size()))
        return;
    mainview_->cell(commontag)->setImage(image);
    currentImage = image;
    mutableImages[std::size_t(commontag)] = image;
    cellLooks_[std::size_t(commontag)].reset();
}

void CollageViewController::pickedMedia(const std::vector<MediaItem>& items, const PickerConfiguration&) {
    // A photo that could not be read is missing from the list, and a video has no picture: either way
    // the frame would be left with an empty cell, so the user is asked again.
    std::vector<ImagePtr> images;
    for (const MediaItem& item : items) {
        if (item.thumbnail)
            images.push_back(item.thumbnail);
    }
    if (int(items.size()) != tagValue || int(images.size()) != tagValue ||
        FrameGeometry::cellCount(currentindex) != tagValue) {
        showPhotoCountAlert();
        return;
    }
    mutableImages = std::move(images);
    cellLooks_.fill(std::nullopt);
    index = currentindex;
    currentImage = mutableImages.front();
    commontag = 0;
    for (int i = 0; i < FrameGeometry::maxCells; ++i)
        mainview_->cell(i)->setImage(i < tagValue ? mutableImages[std::size_t(i)] : nullptr);
    QPointer<CollageViewController> self(this);
    Dispatch::main().async([self] {
        if (self)
            self->mainview_->layoutFrame(self->index);
    });
}

void CollageViewController::showPhotoCountAlert() {
    auto* alert = new Alert(photoCountTitle(), photoCountMessage(tagValue));
    QPointer<CollageViewController> self(this);
    // The picker has closed to answer; it opens again for a new choice once the message is read.
    alert->addAction({QStringLiteral("OK"), AlertActionStyle::defaultStyle, [self] {
                          if (self)
                              self->openPhotoPicker(self->tagValue);
                      }});
    present(alert, true);
}

void CollageViewController::pickedMediaCancelled() {
    if (!mainview_->cell(0)->image())
        dismiss(true);
}
