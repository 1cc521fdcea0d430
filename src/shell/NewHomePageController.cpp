#include "shell/NewHomePageController.h"

#include "ai/AIBlendingViewController.h"
#include "collage/CollageEditorViewController.h"
#include "collage/CollageEditorViewModel.h"
#include "collage/PhotoLoading.h"
#include "mirror/MirrorVController.h"
#include "mixer/PicMixerViewController.h"
#include "platform/Alert.h"
#include "platform/Animations.h"
#include "platform/Assets.h"
#include "platform/Dispatch.h"
#include "platform/DroppedFiles.h"
#include "platform/ImageView.h"
#include "platform/Log.h"
#include "platform/NavigationController.h"
#include "platform/PhotoPicker.h"
#include "platform/Storyboard.h"
#include "platform/UserDefaults.h"
#include "shell/FeatureGridCell.h"
#include "shell/LaunchManager.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QLabel>
#include <QMouseEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QVariantAnimation>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace {

constexpr double kCarouselScrollDuration = 0.3;
// A drag this far, or a flick this fast, turns to the neighbouring slide; anything less springs back.
constexpr double kPageTurnFraction = 0.2;
constexpr double kFlickVelocity = 0.5; // points per millisecond
// One notch of an ordinary mouse wheel.
constexpr int kWheelNotch = 120;

struct FeatureCard {
    const char* imageName;
    const char* title;
};

constexpr std::array<FeatureCard, NewHomePageController::kFeatureCount> kFeatureCards{{
    {"ic_lumivex", "Collage"},
    {"ic_aiblending", "AI Blend"},
    {"ic_layoutcollage", "Layout"},
    {"ic_mirroreffect", "Mirror"},
    {"ic_photomixer", "Pic Mixer"},
    {"ic_moreapps", "More Apps"},
}};

qint64 monotonicMs() {
    static QElapsedTimer clock = [] {
        QElapsedTimer t;
        t.start();
        return t;
    }();
    return clock.elapsed();
}

} // namespace

NewHomePageController::NewHomePageController(UserDefaults& defaults, QWidget* parent)
    : ViewController(parent), defaults_(defaults),
      carouselImages_(
          {QStringLiteral("homeslide1"), QStringLiteral("homeslide2"), QStringLiteral("homeslide3")}) {
    setObjectName(QStringLiteral("newHomePage"));
    setAcceptDrops(true);
}

NewHomePageController::~NewHomePageController() = default;

QUrl NewHomePageController::storeURL() {
    return QUrl(QStringLiteral("https://lumivex.app/apps"));
}

FeatureGridCell* NewHomePageController::featureCell(int item) const {
    if (item < 0 || item >= kFeatureCount)
        return nullptr;
    return cards_[static_cast<std::size_t>(item)];
}

void NewHomePageController::viewDidLoad() {
    buildViews();
    startCarouselTimer();
    handleHomeLaunchFlag();
    bindViewModel();
}

void NewHomePageController::viewWillAppear(bool) {
    reloadGrid();
}

void NewHomePageController::viewWillDisappear(bool) {
    // Deliberately not restarted on the way back: the carousel stands still until it is dragged again.
    stopCarouselTimer();
}

void NewHomePageController::buildViews() {
    setAutoFillBackground(true);
    QPalette p = palette();
    p.setColor(QPalette::Window, QColor::fromRgbF(0.97f, 0.97f, 0.98f));
    p.setColor(QPalette::WindowText, Qt::black);
    setPalette(p);

    headerTitleLabel_ = new QLabel(QStringLiteral("Lumivex"), this);
    headerTitleLabel_->setObjectName(QStringLiteral("headerLabel"));
    headerTitleLabel_->setAlignment(Qt::AlignCenter);
    QFont font = headerTitleLabel_->font();
    font.setBold(true);
    font.setPixelSize(20);
    headerTitleLabel_->setFont(font);

    carouselCollectionView_ = new QScrollArea(this);
    carouselCollectionView_->setObjectName(QStringLiteral("carousel"));
    carouselCollectionView_->setFrameShape(QFrame::NoFrame);
    carouselCollectionView_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    carouselCollectionView_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    carouselCollectionView_->setFocusPolicy(Qt::NoFocus);
    carouselCollectionView_->setWidgetResizable(false);
    carouselStrip_ = new QWidget;
    for (const QString& name : carouselImages_) {
        auto* slide = new ImageView(carouselStrip_);
        slide->setContentMode(ContentMode::scaleAspectFill);
        slide->setCornerRadius(24);
        slide->setImage(Assets::image(name));
        slides_.append(slide);
    }
    carouselCollectionView_->setWidget(carouselStrip_);
    carouselCollectionView_->viewport()->installEventFilter(this);
    carouselCollectionView_->viewport()->setCursor(Qt::OpenHandCursor);

    gridCollectionView_ = new QWidget(this);
    gridCollectionView_->setObjectName(QStringLiteral("featureGrid"));
    for (int item = 0; item < kFeatureCount; ++item) {
        auto* cell = new FeatureGridCell(gridCollectionView_);
        connect(cell, &QAbstractButton::clicked, this, [this, item]() { didSelectFeature(item); });
        cards_[static_cast<std::size_t>(item)] = cell;
    }
    reloadGrid();
    layoutViews();
}

void NewHomePageController::reloadGrid() {
    for (int item = 0; item < kFeatureCount; ++item) {
        const FeatureCard& card = kFeatureCards[static_cast<std::size_t>(item)];
        cards_[static_cast<std::size_t>(item)]->configure(Assets::image(QLatin1String(card.imageName)),
                                                          QLatin1String(card.title));
    }
}

void NewHomePageController::layoutViews() {
    if (!headerTitleLabel_)
        return;
    const int w = width(), h = height();
    headerTitleLabel_->setGeometry(0, 10, w, 28);
    const int carouselTop = headerTitleLabel_->geometry().bottom() + 1 + 12;
    carouselCollectionView_->setGeometry(20, carouselTop, std::max(0, w - 40),
                                         static_cast<int>(std::lround(h * 0.42)));
    const int gridTop = carouselCollectionView_->geometry().bottom() + 1 + 12;
    gridCollectionView_->setGeometry(16, gridTop, std::max(0, w - 32), std::max(0, h - 10 - gridTop));

    // A slide is exactly the carousel's size, so a page is one slide.
    stopCarouselAnimation();
    const QSize page = carouselCollectionView_->size();
    for (int i = 0; i < slides_.size(); ++i)
        slides_[i]->setGeometry(i * page.width(), 0, page.width(), page.height());
    carouselStrip_->resize(page.width() * static_cast<int>(slides_.size()), page.height());
    setCarouselOffset(currentCarouselIndex_ * page.width());

    // Two columns of three, each card half the grid's width and a third of its height.
    const QSize grid = gridCollectionView_->size();
    for (int item = 0; item < kFeatureCount; ++item) {
        const int column = item % 2, row = item / 2;
        const int x0 = grid.width() * column / 2, x1 = grid.width() * (column + 1) / 2;
        const int y0 = grid.height() * row / 3, y1 = grid.height() * (row + 1) / 3;
        cards_[static_cast<std::size_t>(item)]->setGeometry(x0, y0, x1 - x0, y1 - y0);
    }
}

void NewHomePageController::resizeEvent(QResizeEvent* event) {
    ViewController::resizeEvent(event);
    layoutViews();
}

void NewHomePageController::handleHomeLaunchFlag() {
    const QString& key = LaunchManager::shared().hasHomeLauned;
    if (!defaults_.boolForKey(key)) {
        defaults_.setBool(true, key);
        defaults_.synchronize();
    }
}

void NewHomePageController::bindViewModel() {
    QPointer<NewHomePageController> self(this);
    viewModel_.onImagesReady = [self](std::vector<ImagePtr> images) {
        if (self)
            self->openEditor(std::move(images));
    };
    viewModel_.onInsufficientSelection = [self]() {
        if (self)
            self->showInsufficientSelectionAlert();
    };
}

// Carousel.

void NewHomePageController::startCarouselTimer() {
    stopCarouselTimer();
    timer_ = new QTimer(this);
    timer_->setInterval(static_cast<int>(kCarouselInterval * 1000));
    connect(timer_, &QTimer::timeout, this, &NewHomePageController::nextImage);
    timer_->start();
}

void NewHomePageController::stopCarouselTimer() {
    delete timer_;
    timer_ = nullptr;
}

int NewHomePageController::carouselOffset() const {
    return carouselCollectionView_ ? carouselCollectionView_->horizontalScrollBar()->value() : 0;
}

void NewHomePageController::setCarouselOffset(int offset) {
    if (carouselCollectionView_)
        carouselCollectionView_->horizontalScrollBar()->setValue(offset);
}

void NewHomePageController::stopCarouselAnimation() {
    if (carouselAnimation_)
        carouselAnimation_->stop(); // deletes it, and its completion does not run
}

void NewHomePageController::scrollCarouselTo(int index, bool animated, std::function<void()> completion) {
    if (!carouselCollectionView_ || index < 0 || index >= slides_.size())
        return;
    stopCarouselAnimation();
    const int from = carouselOffset();
    const int to = index * carouselCollectionView_->width();
    if (!animated) {
        setCarouselOffset(to);
        if (completion)
            completion();
        return;
    }
    QPointer<NewHomePageController> self(this);
    carouselAnimation_ = Animations::animate(
        carouselCollectionView_, kCarouselScrollDuration,
        [self, from, to](double progress) {
            if (self)
                self->setCarouselOffset(
                    static_cast<int>(std::lround(Animations::interpolate(from, to, progress))));
        },
        [completion](bool) {
            if (completion)
                completion();
        });
}

void NewHomePageController::nextImage() {
    if (carouselImages_.isEmpty())
        return;
    currentCarouselIndex_ = (currentCarouselIndex_ + 1) % static_cast<int>(carouselImages_.size());
    scrollCarouselTo(currentCarouselIndex_, true);
}

void NewHomePageController::scrollViewWillBeginDragging() {
    stopCarouselAnimation();
    stopCarouselTimer();
}

void NewHomePageController::scrollViewDidEndDragging(bool) {
    startCarouselTimer();
}

void NewHomePageController::scrollViewDidEndDecelerating() {
    const int width = carouselCollectionView_ ? carouselCollectionView_->width() : 0;
    if (width <= 0 || carouselImages_.isEmpty())
        return;
    currentCarouselIndex_ =
        std::clamp(carouselOffset() / width, 0, static_cast<int>(carouselImages_.size()) - 1);
}

void NewHomePageController::turnCarouselPage(int direction) {
    const int width = carouselCollectionView_->width();
    if (width <= 0 || slides_.isEmpty())
        return;
    const int page = static_cast<int>(std::lround(double(carouselOffset()) / width));
    const int target = std::clamp(page + direction, 0, static_cast<int>(slides_.size()) - 1);
    scrollViewWillBeginDragging();
    scrollViewDidEndDragging(true);
    QPointer<NewHomePageController> self(this);
    scrollCarouselTo(target, true, [self]() {
        if (self)
            self->scrollViewDidEndDecelerating();
    });
}

bool NewHomePageController::handleCarouselMouse(QEvent* event) {
    auto* mouse = static_cast<QMouseEvent*>(event);
    const int x = static_cast<int>(std::lround(mouse->globalPosition().x()));
    const int width = carouselCollectionView_->width();
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        if (mouse->button() != Qt::LeftButton)
            return false;
        pressing_ = true;
        dragging_ = false;
        pressX_ = lastMoveX_ = x;
        pressOffset_ = carouselOffset();
        lastMoveMs_ = monotonicMs();
        dragVelocity_ = 0.0;
        return true;
    case QEvent::MouseMove: {
        if (!pressing_)
            return false;
        if (!dragging_) {
            if (std::abs(x - pressX_) < QApplication::startDragDistance())
                return true;
            dragging_ = true;
            pressOffset_ = carouselOffset();
            carouselCollectionView_->viewport()->setCursor(Qt::ClosedHandCursor);
            scrollViewWillBeginDragging();
        }
        const qint64 now = monotonicMs();
        if (now > lastMoveMs_)
            dragVelocity_ = double(lastMoveX_ - x) / double(now - lastMoveMs_);
        lastMoveX_ = x;
        lastMoveMs_ = now;
        const int maximum = carouselCollectionView_->horizontalScrollBar()->maximum();
        setCarouselOffset(std::clamp(pressOffset_ - (x - pressX_), 0, maximum));
        return true;
    }
    case QEvent::MouseButtonRelease: {
        if (mouse->button() != Qt::LeftButton || !pressing_)
            return false;
        pressing_ = false;
        if (!dragging_)
            return true;
        dragging_ = false;
        carouselCollectionView_->viewport()->setCursor(Qt::OpenHandCursor);
        // A pause before letting go is not a flick.
        if (monotonicMs() - lastMoveMs_ > 100)
            dragVelocity_ = 0.0;
        const int moved = carouselOffset() - pressOffset_;
        const int startPage = width > 0 ? static_cast<int>(std::lround(double(pressOffset_) / width)) : 0;
        int target = startPage;
        if (moved > width * kPageTurnFraction || (moved > 0 && dragVelocity_ > kFlickVelocity))
            ++target;
        else if (moved < -width * kPageTurnFraction || (moved < 0 && dragVelocity_ < -kFlickVelocity))
            --target;
        target = std::clamp(target, 0, std::max(0, static_cast<int>(slides_.size()) - 1));
        scrollViewDidEndDragging(true);
        QPointer<NewHomePageController> self(this);
        scrollCarouselTo(target, true, [self]() {
            if (self)
                self->scrollViewDidEndDecelerating();
        });
        return true;
    }
    default:
        return false;
    }
}

bool NewHomePageController::eventFilter(QObject* watched, QEvent* event) {
    if (carouselCollectionView_ && watched == carouselCollectionView_->viewport()) {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseMove:
        case QEvent::MouseButtonRelease:
            return handleCarouselMouse(event);
        case QEvent::Wheel: {
            const QPoint delta = static_cast<QWheelEvent*>(event)->angleDelta();
            const int amount = std::abs(delta.x()) > std::abs(delta.y()) ? delta.x() : delta.y();
            // Wheel down or left means onwards, as a swipe to the left would.
            wheelRemainder_ -= amount;
            if (std::abs(wheelRemainder_) >= kWheelNotch) {
                turnCarouselPage(wheelRemainder_ > 0 ? 1 : -1);
                wheelRemainder_ = 0;
            }
            return true;
        }
        default:
            break;
        }
    }
    return ViewController::eventFilter(watched, event);
}

// Feature cards and the editors they lead to.

void NewHomePageController::didSelectFeature(int item) {
    switch (item) {
    case 0:
        pendingDestination_ = EditorDestination::collage;
        presentPhotoPicker();
        break;
    case 1: {
        auto* navigation = new NavigationController(new AIBlendingViewController);
        navigation->setNavigationBarHidden(true);
        navigation->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
        present(navigation, true);
        break;
    }
    case 2: {
        ViewController* grid =
            Storyboard::instantiate(QStringLiteral("Main"), QStringLiteral("GridViewController"));
        grid->setModalPresentationStyle(ModalPresentationStyle::overCurrentContext);
        present(grid, true);
        break;
    }
    case 3:
        presentMirrorPicker();
        break;
    case 4:
        pendingDestination_ = EditorDestination::picMixer;
        presentPhotoPicker();
        break;
    case 5:
        QDesktopServices::openUrl(storeURL());
        break;
    default:
        break;
    }
}

// The mirror editor takes one photo from the library, fitted into a square as wide as this screen.
void NewHomePageController::presentMirrorPicker() {
    QPointer<NewHomePageController> self(this);
    PhotoPicker::present(this, {1, true}, [self](std::vector<PickerResult> results) {
        const std::shared_ptr<ItemProvider> provider =
            results.empty() ? nullptr : results.front().itemProvider;
        if (!self || !provider)
            return;
        if (!provider->canLoadImage()) {
            printLine(
                ("The mirror editor takes a photo; " + provider->filePath() + " is not one.").toStdString());
            return;
        }
        provider->loadImage([self](ImagePtr image, QString error) {
            Dispatch::main().async([self, image = std::move(image), error] {
                if (!self)
                    return;
                if (!image) {
                    printLine(
                        ("The photo could not be opened for the mirror editor: " + error).toStdString());
                    return;
                }
                auto* mirror = Storyboard::instantiate<MirrorVController>(
                    QStringLiteral("Main"), QStringLiteral("MirrorVController"));
                mirror->setModalPresentationStyle(ModalPresentationStyle::overCurrentContext);
                mirror->selectedImage = MirrorVController::scaledToFit(image, self->width());
                self->present(mirror, true);
            });
        });
    });
}

void NewHomePageController::presentPhotoPicker() {
    PickerConfiguration configuration;
    configuration.selectionLimit = HomeViewModel::maximumImageCount;
    configuration.imagesOnly = true;
    QPointer<NewHomePageController> self(this);
    PhotoPicker::present(this, configuration, [self](std::vector<PickerResult> results) {
        if (self)
            self->takePickedItems(results);
    });
}

void NewHomePageController::takePickedItems(const std::vector<PickerResult>& results) {
    if (results.empty())
        return;
    QPointer<NewHomePageController> self(this);
    loadImagesInOrder(results, self, [self](std::vector<ImagePtr> images) {
        if (self)
            self->viewModel_.handleLoadedImages(std::move(images));
    });
}

void NewHomePageController::openPhotos(const QStringList& files) {
    pendingDestination_ = EditorDestination::collage;
    std::vector<PickerResult> results;
    for (const QString& file : files) {
        if (static_cast<int>(results.size()) >= HomeViewModel::maximumImageCount)
            break;
        results.push_back({ItemProvider::forFile(file)});
    }
    takePickedItems(results);
}

void NewHomePageController::openEditor(std::vector<ImagePtr> images) {
    switch (pendingDestination_) {
    case EditorDestination::collage: {
        auto* editor =
            new CollageEditorViewController(std::make_unique<CollageEditorViewModel>(std::move(images)));
        editor->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
        present(editor, true);
        break;
    }
    case EditorDestination::picMixer: {
        auto* mixer = new PicMixerViewController(std::make_unique<PicMixerViewModel>(std::move(images)));
        mixer->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
        present(mixer, true);
        break;
    }
    }
}

void NewHomePageController::dragEnterEvent(QDragEnterEvent* event) {
    if (DroppedFiles::mayCarryFiles(event->mimeData()))
        event->acceptProposedAction();
}

void NewHomePageController::dragMoveEvent(QDragMoveEvent* event) {
    if (DroppedFiles::mayCarryFiles(event->mimeData()))
        event->acceptProposedAction();
}

void NewHomePageController::dropEvent(QDropEvent* event) {
    const DroppedFiles dropped = DroppedFiles::from(event->mimeData());
    if (!dropped.isAcceptable()) {
        event->ignore();
        showRefusedDropAlert(dropped.refusalMessage());
        return;
    }
    event->acceptProposedAction();
    openPhotos(dropped.photos);
}

void NewHomePageController::showRefusedDropAlert(const QString& message) {
    auto* alert = new Alert(DroppedFiles::refusalTitle(), message);
    alert->addAction({QStringLiteral("OK"), AlertActionStyle::defaultStyle, {}});
    present(alert, true);
}

void NewHomePageController::showInsufficientSelectionAlert() {
    auto* alert =
        new Alert(HomeViewModel::insufficientSelectionTitle(), HomeViewModel::insufficientSelectionMessage());
    alert->addAction({QStringLiteral("OK"), AlertActionStyle::defaultStyle, {}});
    present(alert, true);
}
