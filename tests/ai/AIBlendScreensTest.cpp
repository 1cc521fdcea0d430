#include "ai/AIBlendProcessingViewController.h"
#include "ai/AIBlendResultViewController.h"
#include "ai/AIBlendViews.h"
#include "ai/AIBlendingViewController.h"
#include "platform/Alert.h"
#include "platform/Animations.h"
#include "platform/AppWindow.h"
#include "platform/Assets.h"
#include "platform/ImageView.h"
#include "platform/NavigationController.h"
#include "platform/PhotoPicker.h"
#include "support/TestSupport.h"

#include <QScrollArea>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <atomic>
#include <gtest/gtest.h>
#include <httplib.h>
#include <thread>

namespace {

QImage solid(int width, int height, QColor color) {
    QImage bitmap(width, height, QImage::Format_RGB32);
    bitmap.fill(color);
    return bitmap;
}

class BlendFlow : public ::testing::Test {
protected:
    void SetUp() override {
        // Stock pictures of our own, so the screens do not depend on generated artwork.
        ASSERT_TRUE(solid(30, 40, Qt::darkCyan).save(temp.filePath("malethumb_1.png")));
        ASSERT_TRUE(solid(30, 40, Qt::darkRed).save(temp.filePath("femalethumb_1.png")));
        photoPath = temp.filePath("photo.png");
        ASSERT_TRUE(solid(64, 48, Qt::yellow).save(photoPath));
        Assets::setSearchPaths({temp.path()});

        port = server.bind_to_any_port("127.0.0.1");
        // One request per connection, so stopping never waits for an idle keep-alive.
        server.set_keep_alive_max_count(1);
        serverThread = std::thread([this] { server.listen_after_bind(); });
        while (!server.is_running())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        service = std::make_unique<FaceSwapService>(QStringLiteral("http://127.0.0.1:%1").arg(port));

        window.resize(390, 844);
        window.setRootViewController(home = new ViewController);
        window.makeKeyAndVisible();
        blending = new AIBlendingViewController;
        blending->faceSwapService = service.get();
        navigation = new NavigationController(blending);
        navigation->setNavigationBarHidden(true);
        navigation->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
        home->present(navigation, false);
    }
    void TearDown() override {
        PhotoPicker::setTestSource({});
        Assets::resetSearchPaths();
        server.stop();
        serverThread.join();
    }
    void pickPhotoFor(int item) {
        const QString path = photoPath;
        PhotoPicker::setTestSource([path](const PickerConfiguration&) { return QStringList{path}; });
        blending->didSelectItem(item);
    }

    QTemporaryDir temp;
    QString photoPath;
    httplib::Server server;
    int port = 0;
    std::thread serverThread;
    std::unique_ptr<FaceSwapService> service;
    AppWindow window;
    ViewController* home = nullptr;
    QPointer<AIBlendingViewController> blending;
    QPointer<NavigationController> navigation;
};

TEST_F(BlendFlow, CancellingThePickerClearsThePendingTemplate) {
    PhotoPicker::setTestSource([](const PickerConfiguration&) { return std::nullopt; });
    blending->didSelectItem(0);
    ASSERT_TRUE(blending->pendingTemplateImage());
    EXPECT_EQ(PhotoPicker::lastConfiguration()->selectionLimit, 1);
    EXPECT_TRUE(testsupport::waitUntil([&] { return !blending->pendingTemplateImage(); }));

    // A stock picture that is missing opens nothing and leaves nothing pending.
    blending->didSelectItem(5);
    testsupport::spin(50);
    EXPECT_FALSE(blending->pendingTemplateImage());
    EXPECT_EQ(navigation->viewControllers().size(), 1);
}

TEST_F(BlendFlow, TabsSwitchTheCatalogueAndTheSameTabKeepsTheScroll) {
    blending->loadViewIfNeeded();
    const ImagePtr maleFirst = blending->cells().front()->image();
    ASSERT_TRUE(maleFirst);
    blending->thumbnailCollectionView()->verticalScrollBar()->setValue(200);
    const int offset = blending->thumbnailCollectionView()->verticalScrollBar()->value();
    QTest::mouseClick(blending->maleButton(), Qt::LeftButton);
    EXPECT_EQ(blending->thumbnailCollectionView()->verticalScrollBar()->value(), offset);

    QTest::mouseClick(blending->femaleButton(), Qt::LeftButton);
    EXPECT_EQ(blending->selectedGender(), Gender::female);
    EXPECT_TRUE(blending->femaleButton()->isActive());
    EXPECT_FALSE(blending->maleButton()->isActive());
    EXPECT_NE(blending->cells().front()->image(), maleFirst);
    EXPECT_EQ(blending->thumbnailCollectionView()->verticalScrollBar()->value(), 0);
}

TEST_F(BlendFlow, FailurePopsToTheTemplatesAndShowsTheServiceWords) {
    server.Post("/swap", [](const httplib::Request&, httplib::Response& res) {
        res.status = 422;
        res.set_content("No face found in the source photo", "text/plain");
    });
    pickPhotoFor(0);
    ASSERT_TRUE(testsupport::waitUntil([&] { return Alert::visibleAlert(&window) != nullptr; }));
    Alert* alert = Alert::visibleAlert(&window);
    EXPECT_EQ(alert->title(), "Blend Failed");
    EXPECT_EQ(alert->message(), "No face found in the source photo");
    ASSERT_EQ(alert->actions().size(), 1);
    EXPECT_EQ(alert->actions().front().title, "OK");
    EXPECT_TRUE(testsupport::waitUntil([&] { return navigation->viewControllers().size() == 1; }));
    EXPECT_EQ(navigation->topViewController(), blending.data());
    EXPECT_FALSE(blending->pendingTemplateImage());
}

TEST_F(BlendFlow, FinishedPictureReplacesTheProcessingScreen) {
    const std::string jpeg = Image::make(solid(20, 10, Qt::blue))->jpegData(1.0).toStdString();
    std::atomic<int> fetches{0};
    server.Post("/swap", [](const httplib::Request& req, httplib::Response& res) {
        res.set_content(req.has_file("source") && req.has_file("target") ? R"({"task_id":"t1"})" : "{}",
                        "application/json");
    });
    server.Get("/result/t1", [&](const httplib::Request&, httplib::Response& res) {
        ++fetches;
        res.set_content(jpeg, "image/jpeg");
    });
    pickPhotoFor(0);
    ASSERT_TRUE(testsupport::waitUntil([&] { return fetches.load() == 1; }));
    auto* processing = qobject_cast<AIBlendProcessingViewController*>(navigation->topViewController());
    ASSERT_NE(processing, nullptr);
    EXPECT_EQ(processing->sourceImage()->pixelSize(), QSize(64, 48)); // the photo at its own size

    ASSERT_TRUE(testsupport::waitUntil(
        [&] { return qobject_cast<AIBlendResultViewController*>(navigation->topViewController()); }, 3000));
    const auto controllers = navigation->viewControllers();
    ASSERT_EQ(controllers.size(), 2);
    EXPECT_EQ(controllers[0], blending.data());
    auto* result = qobject_cast<AIBlendResultViewController*>(controllers[1]);
    EXPECT_EQ(result->resultImage()->pixelSize(), QSize(20, 10));
    EXPECT_EQ(result->originalImage()->pixelSize(), QSize(64, 48));
}

TEST_F(BlendFlow, LeavingDuringAPollFiresNothing) {
    std::atomic<int> fetches{0};
    std::atomic<bool> done{false};
    const QByteArray jpeg = Image::make(solid(8, 8, Qt::blue))->jpegData(0.9);
    server.Post("/swap", [](const httplib::Request&, httplib::Response& res) {
        res.set_content(R"({"task_id":"slow"})", "application/json");
    });
    server.Get("/result/slow", [&](const httplib::Request&, httplib::Response& res) {
        ++fetches;
        if (done) {
            res.set_content(jpeg.toStdString(), "image/jpeg");
            return;
        }
        res.status = 404;
    });
    pickPhotoFor(0);
    ASSERT_TRUE(testsupport::waitUntil([&] { return fetches.load() >= 1; }));
    QPointer<ViewController> processing = navigation->topViewController();
    ASSERT_TRUE(qobject_cast<AIBlendProcessingViewController*>(processing.data()));
    navigation->popViewController(false);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_TRUE(processing.isNull());

    // The poll goes on without a screen and then finishes; nobody is told.
    const int before = fetches.load();
    done = true;
    ASSERT_TRUE(testsupport::waitUntil([&] { return fetches.load() > before; }, 3000));
    testsupport::spin(1200);
    EXPECT_EQ(Alert::visibleAlert(&window), nullptr);
    EXPECT_EQ(navigation->viewControllers().size(), 1);
    EXPECT_EQ(qobject_cast<AIBlendResultViewController*>(navigation->topViewController()), nullptr);
}

TEST(BlendResult, CardTakesThePictureShapeWithinItsGuide) {
    const QRectF guide(20, 64, 350, 600);
    EXPECT_EQ(AIBlendResultViewController::cardRect(guide, QSizeF(0, 300)).size(), QSizeF(350, 350));
    EXPECT_EQ(AIBlendResultViewController::cardRect(guide, QSizeF(200, 100)), QRectF(20, 276.5, 350, 175));
    // A tall picture yields to the guide instead of overflowing it.
    EXPECT_EQ(AIBlendResultViewController::cardRect(guide, QSizeF(100, 1000)), guide);
}

TEST(BlendResult, ZeroWidthResultGetsASquareCardAndCompareHoldsThePhoto) {
    AppWindow window;
    window.resize(390, 844);
    auto* result = new AIBlendResultViewController(nullptr, Image::make(solid(10, 10, Qt::red)));
    window.setRootViewController(result);
    window.makeKeyAndVisible();
    ASSERT_TRUE(testsupport::waitUntil(
        [&] { return result->imageCardView() && result->imageCardView()->width() > 0; }));
    EXPECT_EQ(result->imageCardView()->width(), result->imageCardView()->height());
    EXPECT_EQ(result->imageCardView()->width(), 390 - 40);

    QTest::mousePress(result->compareButton(), Qt::LeftButton);
    EXPECT_EQ(result->resultImageView()->image(), result->originalImage());
    // Released far outside the button: the blend still comes back.
    QTest::mouseRelease(result->compareButton(), Qt::LeftButton, {}, QPoint(-50, -50));
    EXPECT_TRUE(testsupport::waitUntil(
        [&] { return result->resultImageView()->image() == result->resultImage(); }, 1000));
}

TEST_F(BlendFlow, TemplatesAreTwoSquareColumnsAcrossTheScreen) {
    QCoreApplication::processEvents();
    const QList<AIBlendingThumbnailCell*>& cells = blending->cells();
    ASSERT_GE(cells.size(), 4);
    const int viewport = blending->thumbnailCollectionView()->viewport()->width();
    EXPECT_GT(viewport, 340);
    const int side = (viewport - 48) / 2;
    for (int item : {0, 1, 2, 3}) {
        EXPECT_EQ(cells[item]->size(), QSize(side, side)) << item;
    }
    EXPECT_EQ(cells[1]->x() - cells[0]->x(), side + 16);
    EXPECT_EQ(cells[2]->y() - cells[0]->y(), side + 16);
}

// Held longer than the highlight's fade, then let go: the fade that ended is gone, and the button must
// not reach for it (it used to, and crashed on the next press or click).
TEST(BlendResult, HoldingCompareThroughItsFadeThenApplyingIsSafe) {
    const bool wasInstant = Animations::isInstant();
    Animations::setInstant(false);
    GradientPillButton button(QStringLiteral("Compare"));
    button.resize(160, 50);
    button.show();
    for (int round = 0; round < 2; ++round) {
        QTest::mousePress(&button, Qt::LeftButton);
        ASSERT_TRUE(testsupport::waitUntil([&] { return button.gradientOpacity() <= 0.8 + 1e-9; }, 2000));
        testsupport::spin(60);
        QTest::mouseRelease(&button, Qt::LeftButton);
        EXPECT_TRUE(testsupport::waitUntil([&] { return button.gradientOpacity() >= 1.0 - 1e-9; }, 2000));
    }
    // A release during the fade-out of the press turns it around from where it stands.
    QTest::mousePress(&button, Qt::LeftButton);
    testsupport::spin(40);
    QTest::mouseRelease(&button, Qt::LeftButton);
    EXPECT_TRUE(testsupport::waitUntil([&] { return button.gradientOpacity() >= 1.0 - 1e-9; }, 2000));
    Animations::setInstant(wasInstant);
}

} // namespace
