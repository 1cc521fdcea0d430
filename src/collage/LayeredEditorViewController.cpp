#include "collage/LayeredEditorViewController.h"

#include "collage/AspectRatioOptionCell.h"
#include "collage/CollageCanvasView.h"
#include "collage/CropViewController.h"
#include "collage/FeatherOptionsView.h"
#include "collage/FeatherSliderRow.h"
#include "collage/LayersPanelView.h"
#include "collage/LayersTabButton.h"
#include "collage/LayoutOptionCell.h"
#include "collage/PhotoLoading.h"
#include "collage/ToolButtonCell.h"
#include "collage/TransformActionCell.h"
#include "export/RateShareController.h"
#include "platform/Alert.h"
#include "platform/Animations.h"
#include "platform/Assets.h"
#include "platform/DroppedFiles.h"
#include "platform/ItemProvider.h"
#include "platform/PhotoMemoryBudget.h"
#include "platform/PhotoPicker.h"
#include "platform/Storyboard.h"

#include <QDropEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVariantAnimation>
#include <QWheelEvent>

namespace {

constexpr int kSideInset = 12;
constexpr int kToolsHeight = 64;
constexpr int kStackSpacing = 8;
constexpr int kChevronSize = 36;
constexpr int kBackButtonSize = 32;
// Symbol pictures keep a margin around their glyph, and a chevron covers only half of its square, so
// the icon fills the whole button to give the stroke a readable size.
constexpr int kBackIconSize = kBackButtonSize;
constexpr int kChevronIconSize = kChevronSize;

// The sheet behind the tools: rounded on its top corners only.
class BottomSheetBackground : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath path;
        const QRectF r = rect();
        path.addRoundedRect(r.adjusted(0, 0, 0, 20), 20, 20);
        painter.fillPath(path, QColor(28, 28, 28));
    }
};

// A strip that scrolls sideways, also with an ordinary mouse wheel.
class HorizontalStrip : public QScrollArea {
public:
    explicit HorizontalStrip(QWidget* parent) : QScrollArea(parent) {
        setFrameShape(QFrame::NoFrame);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setWidgetResizable(false);
        setStyleSheet(
            QStringLiteral("QScrollArea { background: transparent; } QScrollArea > QWidget > QWidget "
                           "{ background: transparent; }"));
        viewport()->setAutoFillBackground(false);
    }

protected:
    void wheelEvent(QWheelEvent* event) override {
        const QPoint delta = event->angleDelta();
        const int step = std::abs(delta.x()) > std::abs(delta.y()) ? delta.x() : delta.y();
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() - step / 2);
        event->accept();
    }
};

// A row of cells laid out left to right with the strip's insets and spacing.
QWidget* makeRow(QWidget* parent, QHBoxLayout** layout, int spacing) {
    auto* row = new QWidget(parent);
    row->setAttribute(Qt::WA_TranslucentBackground);
    *layout = new QHBoxLayout(row);
    (*layout)->setContentsMargins(16, 0, 16, 0);
    (*layout)->setSpacing(spacing);
    (*layout)->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    return row;
}

} // namespace

LayeredEditorViewController::LayeredEditorViewController(std::unique_ptr<LayeredEditorViewModel> viewModel,
                                                         Texts texts, const QString& objectName,
                                                         QWidget* parent)
    : ViewController(parent), viewModel_(std::move(viewModel)), texts_(std::move(texts)) {
    setObjectName(objectName);
    setModalPresentationStyle(ModalPresentationStyle::fullScreen);
    setFocusPolicy(Qt::StrongFocus);
    setAcceptDrops(true);
}

LayeredEditorViewController::~LayeredEditorViewController() = default;

void LayeredEditorViewController::viewDidLoad() {
    buildViews();
    bind();
    canvasView_->configure(viewModel_->images(), viewModel_->selectedLayoutOption());
    applyAspectRatio(viewModel_->selectedAspectRatioOption());
}

void LayeredEditorViewController::buildViews() {
    setAttribute(Qt::WA_StyledBackground, true);
    setStyleSheet(QStringLiteral("#%1 { background: black; }").arg(objectName()));

    backButton_ = new QPushButton(this);
    backButton_->setObjectName(QStringLiteral("backButton"));
    backButton_->setFixedSize(kBackButtonSize, kBackButtonSize);
    backButton_->setIconSize(QSize(kBackIconSize, kBackIconSize));
    backButton_->setCursor(Qt::PointingHandCursor);
    backButton_->setToolTip(QStringLiteral("Back"));
    const QIcon back = Assets::icon(QStringLiteral("chevron.left"));
    if (back.isNull())
        backButton_->setText(QStringLiteral("‹"));
    else
        backButton_->setIcon(back);
    backButton_->setStyleSheet(QStringLiteral("QPushButton { color: white; background: rgba(255,255,255,30); "
                                              "border: none; border-radius: 16px; font-size: 22px; }"));
    connect(backButton_, &QPushButton::clicked, this, &LayeredEditorViewController::didTapBack);

    titleLabel_ = new QLabel(QStringLiteral("Ratio"), this);
    titleLabel_->setObjectName(QStringLiteral("titleLabel"));
    titleLabel_->setAlignment(Qt::AlignCenter);
    titleLabel_->setStyleSheet(QStringLiteral("color: white; font-size: 17px; font-weight: 600;"));

    saveButton_ = new QPushButton(QStringLiteral("Save"), this);
    saveButton_->setObjectName(QStringLiteral("saveButton"));
    saveButton_->setIcon(Assets::icon(QStringLiteral("square.and.arrow.down")));
    saveButton_->setCursor(Qt::PointingHandCursor);
    saveButton_->setFixedHeight(34);
    saveButton_->setToolTip(QStringLiteral("Save (Ctrl+S)"));
    saveButton_->setStyleSheet(
        QStringLiteral("QPushButton { color: white; background: #0a84ff; border: none; "
                       "border-radius: 17px; padding: 0 14px; font-size: 15px; "
                       "font-weight: 600; } QPushButton:pressed { background: #0864c4; }"));
    connect(saveButton_, &QPushButton::clicked, this, [this]() { saveButtonTapped(); });

    layersButton_ = new LayersTabButton(this);
    connect(layersButton_, &QPushButton::clicked, this, &LayeredEditorViewController::didTapLayers);

    canvasView_ = new CollageCanvasView(this);
    // A graphics view takes every drag for its scene and drops it there; files dropped on the canvas are
    // this screen's to import.
    canvasView_->setAcceptDrops(false);
    canvasView_->viewport()->setAcceptDrops(false);
    canvasFrame_ = new QWidget(this);
    canvasFrame_->setAttribute(Qt::WA_TransparentForMouseEvents);
    canvasFrame_->setStyleSheet(
        QStringLiteral("border: 1px solid rgba(255,255,255,20); background: transparent;"));

    bottomSheetBackgroundView_ = new BottomSheetBackground(this);

    expandChevronButton_ = new QPushButton(this);
    expandChevronButton_->setObjectName(QStringLiteral("expandChevronButton"));
    expandChevronButton_->setFixedSize(kChevronSize, kChevronSize);
    expandChevronButton_->setIconSize(QSize(kChevronIconSize, kChevronIconSize));
    expandChevronButton_->setCursor(Qt::PointingHandCursor);
    expandChevronButton_->setStyleSheet(QStringLiteral("QPushButton { color: white; background: transparent; "
                                                       "border: none; font-size: 18px; }"));
    connect(expandChevronButton_, &QPushButton::clicked, this,
            &LayeredEditorViewController::didTapExpandChevron);

    optionsPanelContainerView_ = new QWidget(this);
    optionsPanelContainerView_->setObjectName(QStringLiteral("optionsPanelContainer"));
    optionsPanelContainerView_->setAttribute(Qt::WA_StyledBackground, true);
    optionsPanelContainerView_->setVisible(false);
    auto* containerLayout = new QVBoxLayout(optionsPanelContainerView_);
    containerLayout->setContentsMargins(0, 0, 0, 0);
    optionsScrollArea_ = new HorizontalStrip(optionsPanelContainerView_);
    optionsRow_ = makeRow(optionsScrollArea_, &optionsLayout_, 10);
    optionsScrollArea_->setWidget(optionsRow_);
    featherOptionsView_ = new FeatherOptionsView(optionsPanelContainerView_);
    featherOptionsView_->setVisible(false);
    containerLayout->addWidget(optionsScrollArea_);
    containerLayout->addWidget(featherOptionsView_);

    toolsScrollArea_ = new HorizontalStrip(this);
    QHBoxLayout* toolsLayout = nullptr;
    QWidget* toolsRow = makeRow(toolsScrollArea_, &toolsLayout, 8);
    for (int i = 0; i < viewModel_->toolCount(); ++i) {
        auto* cell = new ToolButtonCell(toolsRow);
        cell->setFixedSize(72, kToolsHeight);
        cell->onTap = [this, i]() { didSelectTool(i); };
        toolsLayout->addWidget(cell);
        toolCells_.append(cell);
    }
    toolsRow->adjustSize();
    toolsScrollArea_->setWidget(toolsRow);
    reloadTools();

    layersPanelView_ = new LayersPanelView(this);
    layersPanelView_->setVisible(false);
    const QIcon chevron = Assets::icon(chevronSymbol_);
    expandChevronButton_->setIcon(chevron);
    if (chevron.isNull())
        expandChevronButton_->setText(QStringLiteral("⌄"));
}

void LayeredEditorViewController::bind() {
    QPointer<LayeredEditorViewController> self(this);
    LayeredEditorViewModel& vm = *viewModel_;
    vm.onTitleChanged = [self](const QString& title) {
        if (self)
            self->titleLabel_->setText(title);
    };
    vm.onActivePanelChanged = [self](std::optional<OptionsPanel> panel) {
        if (self)
            self->showPanel(panel);
    };
    vm.onLayoutOptionSelected = [self](CollageLayoutOption option, int) {
        if (!self)
            return;
        self->canvasView_->configure(self->viewModel_->images(), option);
        self->reloadOptions();
    };
    vm.onAspectRatioOptionSelected = [self](CollageAspectRatioOption option, int) {
        if (!self)
            return;
        self->applyAspectRatio(option);
        self->reloadOptions();
    };
    vm.onImagesChanged = [self](const std::vector<ImagePtr>& images,
                                std::optional<CollageLayoutOption> option) {
        if (!self)
            return;
        self->canvasView_->configure(images, option);
        if (self->panelMode_ == OptionsPanel::layout)
            self->reloadOptions();
    };
    vm.onImportRequested = [self](int limit) {
        if (self && limit >= 1)
            self->presentImportPicker(limit);
    };
    vm.onRotateSelectedPaneRequested = [self]() {
        if (self)
            self->canvasView_->rotateSelectedPane();
    };
    vm.onFlipSelectedPaneRequested = [self]() {
        if (self)
            self->canvasView_->flipSelectedPane();
    };
    vm.onCropRequested = [self]() {
        if (self)
            self->presentCropper();
    };
    vm.onResetConfirmationRequested = [self]() {
        if (self)
            self->showResetAlert();
    };
    vm.onResetConfirmed = [self]() {
        if (!self)
            return;
        self->canvasView_->resetSelectedPane();
        self->canvasView_->clearCustomBackground();
    };
    vm.onDeleteRequested = [self]() {
        if (!self)
            return;
        if (const auto index = self->canvasView_->selectedIndex())
            self->viewModel_->deleteImage(*index);
    };
    vm.onDeleteBlockedByMinimum = [self]() {
        if (self)
            self->showMinimumAlert();
    };

    canvasView_->onSelectionChanged = [self]() {
        if (!self)
            return;
        if (self->panelMode_ == OptionsPanel::feather)
            self->loadFeathersIntoSliders();
        self->layersPanelView_->reloadData();
    };
    canvasView_->onLayersChanged = [self]() {
        if (self)
            self->layersPanelView_->reloadData();
    };
    featherOptionsView_->onHorizontalFeatherChanged = [self](double value) {
        if (!self)
            return;
        const auto current = self->canvasView_->selectedPaneFeather();
        self->canvasView_->setSelectedPaneFeather(value, current ? current->second : 25.0);
    };
    featherOptionsView_->onVerticalFeatherChanged = [self](double value) {
        if (!self)
            return;
        const auto current = self->canvasView_->selectedPaneFeather();
        self->canvasView_->setSelectedPaneFeather(current ? current->first : 25.0, value);
    };

    layersPanelView_->numberOfLayers = [self]() {
        return self ? static_cast<int>(self->canvasView_->paneViews().size()) : 0;
    };
    layersPanelView_->thumbnail = [self](int row) {
        return self ? self->canvasView_->layerThumbnail(row) : nullptr;
    };
    layersPanelView_->isRowSelected = [self](int row) {
        if (!self)
            return false;
        const auto& order = self->canvasView_->zOrder();
        return row >= 0 && row < static_cast<int>(order.size()) &&
               self->canvasView_->selectedIndex() == order[row];
    };
    layersPanelView_->onSelectRow = [self](int row) {
        if (!self)
            return;
        const auto& order = self->canvasView_->zOrder();
        if (row >= 0 && row < static_cast<int>(order.size()))
            self->canvasView_->selectPane(order[row]);
    };
    layersPanelView_->onMoveRow = [self](int from, int to) {
        if (self)
            self->canvasView_->moveLayer(from, to);
    };
}

QSizeF LayeredEditorViewController::canvasSizeFor(std::optional<double> ratio, const QSizeF& room) {
    // No ratio ("Original") is a square. On a short screen the canvas shrinks as a whole, keeping
    // its shape, so the sheet below always stays in view.
    const double r = ratio.value_or(1.0) > 0.0 ? ratio.value_or(1.0) : 1.0;
    double w = room.width();
    double h = w / r;
    if (h > room.height()) {
        h = std::max(0.0, room.height());
        w = h * r;
    }
    return QSizeF(std::floor(w), std::floor(h));
}

bool LayeredEditorViewController::isOptionsPanelVisible() const {
    return optionsPanelContainerView_ && !optionsPanelContainerView_->isHidden();
}

QRect LayeredEditorViewController::canvasRoom() const {
    const int top = 8 + 32 + 16 + 40 + 30;
    const int chevronTop = expandChevronButton_->y();
    return QRect(kSideInset, top, width() - 2 * kSideInset, std::max(0, chevronTop - 12 - top));
}

void LayeredEditorViewController::layoutScreen(bool animated) {
    if (!backButton_)
        return;
    const int w = width();
    const int h = height();
    backButton_->move(16, 8);
    titleLabel_->setGeometry(0, 8, w, 32);
    titleLabel_->lower();
    saveButton_->adjustSize();
    saveButton_->setGeometry(w - 16 - saveButton_->width(), 8 + (32 - 34) / 2, saveButton_->width(), 34);
    layersButton_->adjustSize();
    const int layersHeight = std::max(40, layersButton_->height());
    layersButton_->setGeometry(w - 16 - layersButton_->width(), 8 + 32 + 16, layersButton_->width(),
                               layersHeight);

    // The bottom sheet grows upwards from the tools.
    const int toolsTop = h - 8 - kToolsHeight;
    toolsScrollArea_->setGeometry(0, toolsTop, w, kToolsHeight);
    int stackTop = toolsTop;
    if (isOptionsPanelVisible()) {
        stackTop = toolsTop - kStackSpacing - optionsPanelHeight_;
        optionsPanelContainerView_->setGeometry(0, stackTop, w, optionsPanelHeight_);
    }
    const int sheetTop = stackTop - 14;
    bottomSheetBackgroundView_->setGeometry(0, sheetTop, w, h - sheetTop);
    bottomSheetBackgroundView_->lower();
    expandChevronButton_->move((w - kChevronSize) / 2, sheetTop + 4 - kChevronSize);

    const QRect room = canvasRoom();
    const QSizeF size = canvasSizeFor(canvasRatio_, QSizeF(room.size()));
    const QRect target(room.x() + static_cast<int>((room.width() - size.width()) / 2), room.y(),
                       static_cast<int>(size.width()), static_cast<int>(size.height()));
    if (canvasAnimation_)
        canvasAnimation_->stop();
    if (animated && canvasView_->geometry() != target && canvasView_->width() > 0) {
        const QRect start = canvasView_->geometry();
        QPointer<LayeredEditorViewController> self(this);
        canvasAnimation_ = Animations::animate(this, 0.25, [self, start, target](double p) {
            if (!self)
                return;
            const QRect r(
                QPoint(static_cast<int>(Animations::interpolate(start.x(), target.x(), p)),
                       static_cast<int>(Animations::interpolate(start.y(), target.y(), p))),
                QSize(static_cast<int>(Animations::interpolate(start.width(), target.width(), p)),
                      static_cast<int>(Animations::interpolate(start.height(), target.height(), p))));
            self->canvasView_->setGeometry(r);
            self->canvasFrame_->setGeometry(r);
        });
    } else {
        canvasView_->setGeometry(target);
        canvasFrame_->setGeometry(target);
    }
    layersPanelView_->setGeometry(rect());
    layersPanelView_->raise();
}

void LayeredEditorViewController::resizeEvent(QResizeEvent* event) {
    ViewController::resizeEvent(event);
    layoutScreen(false);
}

void LayeredEditorViewController::applyAspectRatio(std::optional<CollageAspectRatioOption> option) {
    canvasRatio_ = option ? ratio(*option) : std::nullopt;
    layoutScreen(true);
}

void LayeredEditorViewController::reloadTools() {
    for (int i = 0; i < toolCells_.size() && i < viewModel_->toolCount(); ++i)
        static_cast<ToolButtonCell*>(toolCells_[i])
            ->configure(viewModel_->toolDisplayable(i), selectedToolIndex_ == i);
}

void LayeredEditorViewController::didSelectTool(int index) {
    if (index < 0 || index >= toolCells_.size())
        return;
    selectedToolIndex_ = index;
    reloadTools();
    viewModel_->selectTool(index);
}

int LayeredEditorViewController::optionCount() const {
    if (panelMode_ == OptionsPanel::layout)
        return static_cast<int>(viewModel_->layoutOptions().size());
    if (panelMode_ == OptionsPanel::ratio)
        return static_cast<int>(viewModel_->aspectRatioOptions().size());
    if (panelMode_ == OptionsPanel::transform)
        return static_cast<int>(viewModel_->transformActions().size());
    return 0; // the feather panel and no panel have no option cells
}

void LayeredEditorViewController::reloadOptions() {
    const int count = optionCount();
    // Cells are made again only when the panel or the number of options changed.
    const bool rebuild =
        count != optionCells_.size() ||
        (count > 0 && optionCells_.front()->property("panel").toInt() != static_cast<int>(*panelMode_));
    if (rebuild) {
        qDeleteAll(optionCells_);
        optionCells_.clear();
        if (count > 0) {
            const QSize itemSize = panelMode_ == OptionsPanel::transform ? QSize(64, 88) : QSize(64, 64);
            for (int i = 0; i < count; ++i) {
                CollageCell* cell = nullptr;
                if (panelMode_ == OptionsPanel::layout)
                    cell = new LayoutOptionCell(optionsRow_);
                else if (panelMode_ == OptionsPanel::ratio)
                    cell = new AspectRatioOptionCell(optionsRow_);
                else
                    cell = new TransformActionCell(optionsRow_);
                cell->setFixedSize(itemSize);
                cell->setProperty("panel", static_cast<int>(*panelMode_));
                cell->onTap = [this, i]() { didSelectOption(i); };
                optionsLayout_->addWidget(cell);
                // A cell added to a row already on show would appear only at the next turn of the
                // event loop, and the row below would be sized without it.
                cell->setVisible(true);
                optionCells_.append(cell);
            }
            optionsRow_->adjustSize();
        }
    }
    for (int i = 0; i < optionCells_.size(); ++i) {
        if (panelMode_ == OptionsPanel::layout) {
            static_cast<LayoutOptionCell*>(optionCells_[i])
                ->configure(viewModel_->layoutOptions()[i], viewModel_->selectedLayoutIndex() == i);
        } else if (panelMode_ == OptionsPanel::ratio) {
            static_cast<AspectRatioOptionCell*>(optionCells_[i])
                ->configure(viewModel_->aspectRatioOptions()[i], viewModel_->selectedAspectRatioIndex() == i);
        } else if (panelMode_ == OptionsPanel::transform) {
            static_cast<TransformActionCell*>(optionCells_[i])
                ->configure(viewModel_->transformActions()[i], false, i > 0);
        }
    }
}

void LayeredEditorViewController::didSelectOption(int index) {
    if (!panelMode_)
        return;
    switch (*panelMode_) {
    case OptionsPanel::layout:
        viewModel_->selectLayoutOption(index);
        reloadOptions();
        break;
    case OptionsPanel::ratio:
        viewModel_->selectAspectRatioOption(index);
        reloadOptions();
        break;
    case OptionsPanel::transform:
        viewModel_->performTransformAction(index);
        break;
    case OptionsPanel::feather:
        break;
    }
}

void LayeredEditorViewController::showPanel(std::optional<OptionsPanel> panel) {
    panelMode_ = panel;
    reloadOptions();
    const bool feather = panel == OptionsPanel::feather;
    optionsScrollArea_->setVisible(panel && !feather);
    featherOptionsView_->setVisible(feather);
    optionsPanelHeight_ = feather ? 130 : panel == OptionsPanel::transform ? 96 : 76;
    optionsScrollArea_->setFixedHeight(panel == OptionsPanel::transform ? 88 : 64);
    optionsPanelContainerView_->setStyleSheet(
        panel == OptionsPanel::transform
            ? QStringLiteral(
                  "#optionsPanelContainer { background: rgba(255,255,255,20); border-radius: 20px; }")
            : QStringLiteral("#optionsPanelContainer { background: transparent; border-radius: 20px; }"));
    if (feather)
        loadFeathersIntoSliders();
    optionsPanelContainerView_->setVisible(panel.has_value());
    chevronSymbol_ = panel ? QStringLiteral("chevron.up") : QStringLiteral("chevron.down");
    const QIcon chevron = Assets::icon(chevronSymbol_);
    expandChevronButton_->setIcon(chevron);
    expandChevronButton_->setText(chevron.isNull() ? (panel ? QStringLiteral("⌃") : QStringLiteral("⌄"))
                                                   : QString());
    layoutScreen(true);
}

void LayeredEditorViewController::loadFeathersIntoSliders() {
    const auto feathers = canvasView_->selectedPaneFeather();
    featherOptionsView_->horizontalRow()->setValue(feathers ? feathers->first : 25.0);
    featherOptionsView_->verticalRow()->setValue(feathers ? feathers->second : 25.0);
}

void LayeredEditorViewController::didTapExpandChevron() {
    viewModel_->closeActivePanel();
}

void LayeredEditorViewController::presentImportPicker(int limit) {
    PickerConfiguration configuration;
    configuration.selectionLimit = limit;
    QPointer<LayeredEditorViewController> self(this);
    PhotoPicker::present(this, configuration, [self](std::vector<PickerResult> results) {
        if (self && !results.empty())
            self->importItems(results);
    });
}

void LayeredEditorViewController::importItems(const std::vector<PickerResult>& results) {
    QPointer<LayeredEditorViewController> self(this);
    loadImagesInOrder(results, self, [self](std::vector<ImagePtr> images) {
        if (self && !images.empty())
            self->takeImportedImages(std::move(images));
    });
}

void LayeredEditorViewController::takeImportedImages(std::vector<ImagePtr> images) {
    viewModel_->appendImages(images);
    viewModel_->rebuildLayoutOptions();
}

void LayeredEditorViewController::dragEnterEvent(QDragEnterEvent* event) {
    if (DroppedFiles::mayCarryFiles(event->mimeData()))
        event->acceptProposedAction();
}

void LayeredEditorViewController::dragMoveEvent(QDragMoveEvent* event) {
    if (DroppedFiles::mayCarryFiles(event->mimeData()))
        event->acceptProposedAction();
}

void LayeredEditorViewController::dropEvent(QDropEvent* event) {
    const DroppedFiles dropped = DroppedFiles::from(event->mimeData());
    if (!dropped.isAcceptable()) {
        event->ignore();
        showAlert(DroppedFiles::refusalTitle(), dropped.refusalMessage());
        return;
    }
    const int limit = LayeredEditorViewModel::maximumImageCount;
    const int room = limit - static_cast<int>(viewModel_->images().size());
    if (room < 1) {
        event->ignore();
        showAlert(texts_.fullTitle, texts_.fullMessage.arg(limit));
        return;
    }
    event->acceptProposedAction();
    std::vector<PickerResult> results;
    for (const QString& path : dropped.photos.mid(0, room))
        results.push_back({ItemProvider::forFile(path)});
    importItems(results);
    if (dropped.photos.size() > room)
        showAlert(texts_.fullTitle, texts_.partlyFullMessage.arg(limit).arg(room));
}

void LayeredEditorViewController::showAlert(const QString& title, const QString& message) {
    auto* alert = new Alert(title, message);
    alert->addAction({QStringLiteral("OK"), AlertActionStyle::defaultStyle, {}});
    present(alert, true);
}

void LayeredEditorViewController::presentCropper() {
    const auto index = canvasView_->selectedIndex();
    if (!index)
        return;
    // The crop is cut from every pixel of the file, not from the reduced copy the pane shows.
    ImagePtr photo = Image::fullResolution(viewModel_->image(*index), &PhotoMemoryBudget::shared());
    if (!photo)
        return;
    pendingCropPaneIndex_ = index;
    auto* cropper = new CropViewController(photo);
    QPointer<LayeredEditorViewController> self(this);
    QPointer<CropViewController> guard(cropper);
    cropper->onConfirm = [self, guard, photo](std::optional<CropperState> state) {
        if (!self)
            return;
        const auto pending = self->pendingCropPaneIndex_;
        self->pendingCropPaneIndex_.reset();
        if (guard)
            guard->dismiss(true);
        if (state && pending) {
            if (ImagePtr cropped = croppedImage(*photo, *state))
                self->viewModel_->replaceImage(*pending, cropped);
        }
    };
    cropper->onCancel = [guard]() {
        if (guard)
            guard->dismiss(true);
    };
    cropper->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
    present(cropper, true);
}

void LayeredEditorViewController::showResetAlert() {
    auto* alert = new Alert(QStringLiteral("Reset All"), QStringLiteral("Are you sure you want to reset?"));
    alert->addAction({QStringLiteral("Cancel"), AlertActionStyle::cancel, {}});
    QPointer<LayeredEditorViewController> self(this);
    alert->addAction({QStringLiteral("Reset"), AlertActionStyle::destructive, [self]() {
                          if (self)
                              self->viewModel_->confirmReset();
                      }});
    present(alert, true);
}

void LayeredEditorViewController::showMinimumAlert() {
    showAlert(QStringLiteral("Minimum Photos Required"),
              texts_.minimumPhotosMessage.arg(LayeredEditorViewModel::minimumImageCount));
}

void LayeredEditorViewController::presentShareScreen() {
    ImagePtr image = canvasView_->flattenedImage();
    if (!image)
        return;
    auto* share = Storyboard::instantiate<RateShareController>(QStringLiteral("Main"),
                                                               QStringLiteral("RateShareController"));
    share->shareImage = image;
    share->fetchData = SavingtypeMethod::JPG;
    share->setModalPresentationStyle(ModalPresentationStyle::overCurrentContext);
    present(share, true);
}

void LayeredEditorViewController::didTapBack() {
    dismiss(true);
}

void LayeredEditorViewController::didTapLayers() {
    if (layersPanelView_->isOpen())
        layersPanelView_->dismiss(true);
    else
        layersPanelView_->open();
}

void LayeredEditorViewController::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Save)) {
        saveButtonTapped();
        return;
    }
    if (event->key() == Qt::Key_Escape) {
        if (layersPanelView_->isOpen())
            layersPanelView_->dismiss(true);
        else
            viewModel_->closeActivePanel();
        return;
    }
    ViewController::keyPressEvent(event);
}
