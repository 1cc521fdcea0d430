#include "ai/AIBlendingViewController.h"
#include "collage/CollageEditorViewController.h"
#include "collage/PhotoLoading.h"
#include "frames/GridViewController.h"
#include "mixer/PicMixerViewController.h"
#include "platform/Alert.h"
#include "platform/AppWindow.h"
#include "platform/NavigationController.h"
#include "platform/PhotoPicker.h"
#include "platform/UserDefaults.h"
#include "shell/AppStartup.h"
#include "shell/FeatureGridCell.h"
#include "shell/NewHomePageController.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>
#include <gtest/gtest.h>

namespace {

const QString kSamples = QStringLiteral(LUMIVEX_SAMPLES_DIR "/");

QStringList samplePhotos(int count) {
    static const QStringList names = {"baboon.jpg", "fruits.jpg",    "HappyFish.jpg", "home.jpg",
                                      "apple.jpg",  "butterfly.jpg", "board.jpg",     "building.jpg"};
    QStringList paths;
    for (int i = 0; i < count; ++i)
        paths << kSamples + names[i % names.size()];
    return paths;
}

class HomeScreenTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (const QString& path : samplePhotos(8))
            ASSERT_TRUE(QFile::exists(path)) << path.toStdString();
        defaults = std::make_unique<UserDefaults>(dir.filePath(QStringLiteral("defaults.ini")));
    }
    void TearDown() override { PhotoPicker::setTestSource({}); }

    NewHomePageController* showHome() {
        home = new NewHomePageController(*defaults);
        window.setRootViewController(home);
        window.makeKeyAndVisible();
        return home;
    }

    // The user picks these files (or cancels for nullopt) when the picker opens.
    void pickerAnswers(std::optional<QStringList> files) {
        PhotoPicker::setTestSource([files](const PickerConfiguration&) { return files; });
    }

    QString writeFile(const QString& name, const QByteArray& bytes) {
        const QString path = dir.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return path;
    }

    CollageEditorViewController* editor() const {
        return qobject_cast<CollageEditorViewController*>(home->presentedViewController());
    }

    QTemporaryDir dir;
    std::unique_ptr<UserDefaults> defaults;
    AppWindow window;
    NewHomePageController* home = nullptr;
};

TEST_F(HomeScreenTest, FirstShowWritesTheHomeFlag) {
    EXPECT_FALSE(defaults->boolForKey(QStringLiteral("HasHomeLauned")));
    showHome();
    EXPECT_TRUE(UserDefaults(defaults->path()).boolForKey(QStringLiteral("HasHomeLauned")));
    EXPECT_EQ(home->headerLabel()->text(), QStringLiteral("Lumivex"));
}

TEST_F(HomeScreenTest, TooFewLoadablePhotosGiveTheAlertAndNoEditor) {
    showHome();
    const QString empty = writeFile(QStringLiteral("empty.jpg"), {});
    const QString text = writeFile(QStringLiteral("notes.txt"), "hello");
    const QString photo = samplePhotos(1).front();
    for (const QStringList& picked :
         {QStringList{photo}, QStringList{photo, empty}, QStringList{text, photo}}) {
        SCOPED_TRACE(picked.join(QStringLiteral(", ")).toStdString());
        pickerAnswers(picked);
        QTest::mouseClick(home->featureCell(0), Qt::LeftButton);
        ASSERT_TRUE(testsupport::waitUntil([&] { return Alert::visibleAlert(&window) != nullptr; }));
        Alert* alert = Alert::visibleAlert(&window);
        EXPECT_EQ(alert->title(), QStringLiteral("Select More Photos"));
        EXPECT_EQ(alert->message(), QStringLiteral("Please choose at least 2 photos to create a lumivex."));
        ASSERT_EQ(alert->actions().size(), 1);
        EXPECT_EQ(alert->actions().front().title, QStringLiteral("OK"));
        EXPECT_EQ(editor(), nullptr);
        QTest::mouseClick(alert->buttonForAction(QStringLiteral("OK")), Qt::LeftButton);
        EXPECT_EQ(home->presentedViewController(), nullptr);
    }
}

TEST_F(HomeScreenTest, EightPhotosOpenTheEditorWithEightPaneLayouts) {
    showHome();
    const QStringList photos = samplePhotos(8);
    pickerAnswers(photos);
    QTest::mouseClick(home->featureCell(0), Qt::LeftButton);
    ASSERT_TRUE(PhotoPicker::lastConfiguration().has_value());
    EXPECT_EQ(PhotoPicker::lastConfiguration()->selectionLimit, 8);
    EXPECT_TRUE(PhotoPicker::lastConfiguration()->imagesOnly);
    EXPECT_EQ(home->pendingDestination(), EditorDestination::collage);

    ASSERT_TRUE(testsupport::waitUntil([&] { return editor() != nullptr; }, 10000));
    EXPECT_EQ(editor()->modalPresentationStyle(), ModalPresentationStyle::fullScreen);
    const CollageEditorViewModel& model = editor()->viewModel();
    ASSERT_EQ(model.images().size(), 8u);
    // Pane order is selection order: baboon (512 × 512) first, fruits (512 × 480) second.
    EXPECT_EQ(model.images()[0]->pixelSize(), QSize(512, 512));
    EXPECT_EQ(model.images()[1]->pixelSize(), QSize(512, 480));
    ASSERT_FALSE(model.layoutOptions().empty());
    for (CollageLayoutOption option : model.layoutOptions())
        EXPECT_EQ(paneCount(option), 8);
    EXPECT_EQ(Alert::visibleAlert(&window), nullptr);
}

TEST_F(HomeScreenTest, CancelledPickerOpensNothingAndPicMixerPhotosOpenTheMixer) {
    showHome();
    pickerAnswers(std::nullopt);
    home->didSelectFeature(0);
    testsupport::spin(100);
    EXPECT_EQ(home->presentedViewController(), nullptr);

    // The Pic Mixer card opens the mixer, full screen, on the picked photos.
    pickerAnswers(samplePhotos(3));
    QTest::mouseClick(home->featureCell(4), Qt::LeftButton);
    EXPECT_EQ(home->pendingDestination(), EditorDestination::picMixer);
    PicMixerViewController* mixer = nullptr;
    ASSERT_TRUE(testsupport::waitUntil(
        [&] {
            mixer = qobject_cast<PicMixerViewController*>(home->presentedViewController());
            return mixer && !mixer->isProcessing();
        },
        60000));
    EXPECT_EQ(mixer->modalPresentationStyle(), ModalPresentationStyle::fullScreen);
    EXPECT_EQ(mixer->viewModel().images().size(), 3u);
    mixer->dismiss(false);
    ASSERT_TRUE(testsupport::waitUntil([&] { return home->presentedViewController() == nullptr; }));
    // The Layout card opens the grid of classic frames over the home screen.
    AppStartup::registerScreens();
    home->didSelectFeature(2);
    auto* grid = qobject_cast<GridViewController*>(home->presentedViewController());
    ASSERT_NE(grid, nullptr);
    EXPECT_EQ(grid->modalPresentationStyle(), ModalPresentationStyle::overCurrentContext);
    grid->dismiss(false);
    ASSERT_TRUE(testsupport::waitUntil([&] { return home->presentedViewController() == nullptr; }));
    // The mirror editor is not built yet: its card does nothing.
    home->didSelectFeature(3);
    EXPECT_EQ(home->presentedViewController(), nullptr);

    // The AI Blend card opens the template screen inside a navigation stack without a bar.
    home->didSelectFeature(1);
    auto* navigation = qobject_cast<NavigationController*>(home->presentedViewController());
    ASSERT_NE(navigation, nullptr);
    EXPECT_TRUE(navigation->isNavigationBarHidden());
    EXPECT_NE(qobject_cast<AIBlendingViewController*>(navigation->topViewController()), nullptr);
    EXPECT_EQ(navigation->modalPresentationStyle(), ModalPresentationStyle::fullScreen);
}

// Two photos are the least a collage takes; the boundary counts both ways.
TEST(HomeModel, TwoPhotosAreEnoughAndOneIsNot) {
    HomeViewModel model;
    std::vector<int> ready;
    int refused = 0;
    model.onImagesReady = [&](std::vector<ImagePtr> images) { ready.push_back(int(images.size())); };
    model.onInsufficientSelection = [&] { ++refused; };
    const ImagePtr photo = Image::make(QImage(4, 4, QImage::Format_RGB32));
    for (int count : {0, 1, 2, 3, 8})
        model.handleLoadedImages(std::vector<ImagePtr>(count, photo));
    EXPECT_EQ(ready, std::vector<int>({2, 3, 8}));
    EXPECT_EQ(refused, 2);
    EXPECT_EQ(HomeViewModel::insufficientSelectionMessage(),
              QStringLiteral("Please choose at least 2 photos to create a lumivex."));
}

TEST(PhotoLoading, SelectionOrderSurvivesUnorderedLoadingAndUnreadableItemsDrop) {
    QTemporaryDir dir;
    // A large picture first: it takes far longer to decode than the small one after it.
    const QString big = dir.filePath(QStringLiteral("big.jpg"));
    QImage large(4000, 3000, QImage::Format_RGB32);
    for (int y = 0; y < large.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(large.scanLine(y));
        for (int x = 0; x < large.width(); ++x)
            line[x] = qRgb(x % 256, y % 256, (x ^ y) % 256);
    }
    ASSERT_TRUE(large.save(big, "JPEG", 95));
    const QString small = kSamples + QStringLiteral("LinuxLogo.jpg");
    const QString broken = dir.filePath(QStringLiteral("broken.png"));
    QFile(broken).open(QIODevice::WriteOnly);

    std::vector<PickerResult> results;
    for (const QString& path : {big, broken, small, dir.filePath(QStringLiteral("gone.jpg"))})
        results.push_back({ItemProvider::forFile(path)});
    results.push_back({nullptr});

    QObject owner;
    std::optional<std::vector<ImagePtr>> images;
    loadImagesInOrder(results, &owner, [&](std::vector<ImagePtr> loaded) { images = std::move(loaded); });
    EXPECT_FALSE(images.has_value());
    ASSERT_TRUE(testsupport::waitUntil([&] { return images.has_value(); }, 10000));
    ASSERT_EQ(images->size(), 2u);
    // The big one, maybe decoded at the size the editor shows, keeps its shape.
    const QSize first = (*images)[0]->pixelSize();
    EXPECT_EQ(first.width() * 3, first.height() * 4) << first.width() << "x" << first.height();
    EXPECT_GE(first.width(), 1000);
    EXPECT_EQ((*images)[1]->pixelSize(), QImage(small).size());

    // Nothing loadable still answers, with nothing.
    images.reset();
    loadImagesInOrder({{ItemProvider::forFile(broken)}}, &owner,
                      [&](std::vector<ImagePtr> loaded) { images = std::move(loaded); });
    ASSERT_TRUE(testsupport::waitUntil([&] { return images.has_value(); }));
    EXPECT_TRUE(images->empty());

    // An owner gone before the loads finish hears nothing.
    bool called = false;
    {
        QObject shortLived;
        loadImagesInOrder({{ItemProvider::forFile(big)}}, &shortLived,
                          [&](std::vector<ImagePtr>) { called = true; });
    }
    testsupport::spin(1500);
    EXPECT_FALSE(called);
}

class CarouselTest : public HomeScreenTest {
protected:
    QWidget* viewport() const { return home->carouselView()->viewport(); }
    int pageWidth() const { return home->carouselView()->width(); }

    void drag(int fromX, int toX) {
        const int y = viewport()->height() / 2;
        QTest::mousePress(viewport(), Qt::LeftButton, {}, QPoint(fromX, y));
        const int steps = 6;
        for (int i = 1; i <= steps; ++i) {
            QMouseEvent move(QEvent::MouseMove, QPointF(fromX + (toX - fromX) * i / steps, y),
                             viewport()->mapToGlobal(QPointF(fromX + (toX - fromX) * i / steps, y)),
                             Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(viewport(), &move);
        }
        // The hand stops the clock while it drags.
        EXPECT_EQ(home->carouselTimer(), nullptr);
        QTest::mouseRelease(viewport(), Qt::LeftButton, {}, QPoint(toX, y));
    }
};

TEST_F(CarouselTest, ClockAdvancesAndWrapsAroundThroughAllSlides) {
    showHome();
    ASSERT_NE(home->carouselTimer(), nullptr);
    EXPECT_TRUE(home->carouselTimer()->isActive());
    EXPECT_EQ(home->carouselTimer()->interval(), 2000);
    EXPECT_EQ(home->currentCarouselIndex(), 0);
    ASSERT_GT(pageWidth(), 0);

    // The real clock, sped up, drives the same step.
    home->carouselTimer()->setInterval(15);
    ASSERT_TRUE(testsupport::waitUntil([&] { return home->currentCarouselIndex() == 1; }));
    home->carouselTimer()->stop();
    EXPECT_EQ(home->carouselOffset(), pageWidth());
    home->nextImage();
    EXPECT_EQ(home->currentCarouselIndex(), 2);
    EXPECT_EQ(home->carouselOffset(), 2 * pageWidth());
    home->nextImage();
    EXPECT_EQ(home->currentCarouselIndex(), 0);
    EXPECT_EQ(home->carouselOffset(), 0);
}

TEST_F(CarouselTest, AfterAHandDragTheClockResumesFromTheSwipedSlide) {
    showHome();
    home->nextImage();
    home->nextImage();
    ASSERT_EQ(home->currentCarouselIndex(), 2);
    const int w = pageWidth();

    // Back one slide by hand.
    drag(w / 4, w / 4 + w / 2);
    EXPECT_EQ(home->currentCarouselIndex(), 1);
    EXPECT_EQ(home->carouselOffset(), w);
    ASSERT_NE(home->carouselTimer(), nullptr);
    EXPECT_TRUE(home->carouselTimer()->isActive());
    EXPECT_EQ(home->carouselTimer()->interval(), 2000);
    home->nextImage();
    EXPECT_EQ(home->currentCarouselIndex(), 2);

    // A short drag springs back to the same slide.
    drag(w / 2, w / 2 - w / 10);
    EXPECT_EQ(home->currentCarouselIndex(), 2);
    EXPECT_EQ(home->carouselOffset(), 2 * w);
    // Past the last slide there is nowhere to go.
    drag(w - 10, 10);
    EXPECT_EQ(home->currentCarouselIndex(), 2);

    // The wheel turns a page as a swipe would.
    QWheelEvent wheel(QPointF(10, 10), viewport()->mapToGlobal(QPointF(10, 10)), QPoint(), QPoint(0, 120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(viewport(), &wheel);
    EXPECT_EQ(home->currentCarouselIndex(), 1);
    ASSERT_NE(home->carouselTimer(), nullptr);
}

// A short quick swipe turns the page either way, as on a phone; the same swipe that rests on the glass
// before letting go springs back. Real time: the speed is measured between the moves.
TEST_F(CarouselTest, AQuickShortSwipeTurnsThePageButNotAfterAPause) {
    showHome();
    home->nextImage();
    ASSERT_EQ(home->currentCarouselIndex(), 1);
    const int w = pageWidth();
    const int y = viewport()->height() / 2;
    const auto swipe = [&](int fromX, int toX, int pauseMs) {
        QTest::mousePress(viewport(), Qt::LeftButton, {}, QPoint(fromX, y));
        // A first step starts the drag; the speed is then taken over the second, whatever the load.
        const int direction = toX > fromX ? 1 : -1;
        for (const int x : {fromX + direction * 12, toX}) {
            QTest::qWait(5);
            const QPointF at(x, y);
            QMouseEvent move(QEvent::MouseMove, at, viewport()->mapToGlobal(at), Qt::NoButton, Qt::LeftButton,
                             Qt::NoModifier);
            QApplication::sendEvent(viewport(), &move);
        }
        QTest::qWait(pauseMs);
        QTest::mouseRelease(viewport(), Qt::LeftButton, {}, QPoint(toX, y));
    };
    const int shortSwipe = w / 6; // under the fifth of a page that turns it when dragged slowly
    swipe(w / 2, w / 2 - shortSwipe, 0);
    EXPECT_EQ(home->currentCarouselIndex(), 2) << "forward";
    swipe(w / 2, w / 2 + shortSwipe, 0);
    EXPECT_EQ(home->currentCarouselIndex(), 1) << "back";
    swipe(w / 2, w / 2 + shortSwipe, 300);
    EXPECT_EQ(home->currentCarouselIndex(), 1) << "after a pause";
}

TEST_F(CarouselTest, LeavingTheScreenStopsTheClockForGood) {
    showHome();
    ASSERT_NE(home->carouselTimer(), nullptr);
    home->hide();
    EXPECT_EQ(home->carouselTimer(), nullptr);
    home->show();
    EXPECT_EQ(home->carouselTimer(), nullptr);
    testsupport::spin(50);
    EXPECT_EQ(home->currentCarouselIndex(), 0);
}

TEST_F(CarouselTest, ScreenIsHeaderCarouselAndTwoByThreeGrid) {
    showHome();
    const QRect carousel = home->carouselView()->geometry();
    EXPECT_EQ(carousel.left(), 20);
    EXPECT_EQ(carousel.width(), home->width() - 40);
    EXPECT_NEAR(carousel.height(), home->height() * 0.42, 1);
    const QSize grid = home->gridView()->size();
    for (int item = 0; item < NewHomePageController::kFeatureCount; ++item) {
        const QRect card = home->featureCell(item)->geometry();
        EXPECT_NEAR(card.width(), grid.width() / 2.0, 1) << item;
        EXPECT_NEAR(card.height(), grid.height() / 3.0, 1) << item;
        EXPECT_EQ(card.left() > 0, item % 2 == 1) << item;
    }
}

} // namespace
