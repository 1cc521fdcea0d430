#include "frames/CollageViewController.h"
#include "filters/LookCubeCache.h"
#include "frames/BackgroundColorList.h"
#include "frames/FrameAreaView.h"
#include "frames/FrameCellItem.h"
#include "frames/GridViewController.h"
#include "platform/Alert.h"
#include "platform/AppWindow.h"
#include "platform/PhotoPicker.h"
#include "platform/Screen.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QPushButton>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

QString sample(const QString& name) {
    return QDir(QStringLiteral(LUMIVEX_SAMPLES_DIR)).filePath(name);
}

const QStringList kFour{sample(QStringLiteral("fruits.jpg")), sample(QStringLiteral("baboon.jpg")),
                        sample(QStringLiteral("building.jpg")), sample(QStringLiteral("apple.jpg"))};

class ClassicCollage : public ::testing::Test {
protected:
    void SetUp() override {
        Screen::main().setScale(3);
        window.resize(390, 844);
        window.setRootViewController(root = new ViewController);
        window.makeKeyAndVisible();
    }
    void TearDown() override { PhotoPicker::setTestSource({}); }

    // Opens the editor for `frame` with the picker answering `files` (nothing: a cancel).
    CollageViewController* open(int frame, std::optional<QStringList> files) {
        answer(std::move(files));
        editor = new CollageViewController;
        editor->currentindex = frame;
        editor->tagValue = FrameGeometry::cellCount(frame);
        editor->maingridarray = GridViewController::previewsForFrame(frame);
        editor->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
        root->present(editor, false);
        return editor;
    }
    void answer(std::optional<QStringList> files) {
        PhotoPicker::setTestSource([files](const PickerConfiguration&) { return files; });
    }
    bool laidOut() {
        return editor && editor->mainview()->cell(0)->isVisible() && !editor->mutableImages.empty();
    }
    // Every shown cell shows its own photo (or a look made from it); the hidden ones hold nothing new.
    void expectEachCellShowsItsOwnPhoto() {
        for (int i = 0; i < int(editor->mutableImages.size()); ++i) {
            const ImagePtr shown = editor->mainview()->cell(i)->image();
            if (editor->lookOfCell(i)) {
                EXPECT_EQ(shown->pixelSize(), editor->mutableImages[std::size_t(i)]->pixelSize()) << i;
            } else {
                EXPECT_EQ(shown, editor->mutableImages[std::size_t(i)]) << i;
            }
            for (int j = 0; j < int(editor->mutableImages.size()); ++j) {
                if (j != i) {
                    EXPECT_NE(shown, editor->mutableImages[std::size_t(j)]) << i << " shows " << j;
                }
            }
        }
    }
    QPoint cellCentre(int i) { return editor->mainview()->cell(i)->frame().center().toPoint(); }

    AppWindow window;
    ViewController* root = nullptr;
    QPointer<CollageViewController> editor;
    QTemporaryDir dir;
};

TEST_F(ClassicCollage, FourPhotosFillTheCellsAndTheTrayOffersTheOtherFramesOfFour) {
    open(12, kFour);
    ASSERT_TRUE(testsupport::waitUntil([&] { return laidOut(); }));
    ASSERT_EQ(editor->mutableImages.size(), 4u);
    expectEachCellShowsItsOwnPhoto();
    EXPECT_FALSE(editor->mainview()->cell(4)->isVisible());
    EXPECT_EQ(editor->mainview()->cell(4)->image(), nullptr);
    EXPECT_EQ(editor->currentImage, editor->mutableImages[0]);

    QList<int> tags;
    for (QPushButton* button : editor->frameButtons())
        tags << button->property("tag").toInt();
    ASSERT_EQ(tags, (QList<int>{12, 13, 14, 15, 16, 17}));

    QTest::mouseClick(editor->frameButtons()[5], Qt::LeftButton);
    ASSERT_TRUE(testsupport::waitUntil([&] {
        return editor->mainview()->cell(0)->zoomScale() == 3.0; // frame 17's first cell
    }));
    EXPECT_EQ(editor->index, 17);
    const QList<QRectF> expected = FrameGeometry::cellRects(17, editor->mainview()->areaSize(), 5, 5);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(editor->mainview()->cell(i)->frame(), expected[i]) << i;
        EXPECT_EQ(editor->mainview()->cell(i)->zoomScale(), FrameGeometry::zoomScale(17, i)) << i;
    }
    expectEachCellShowsItsOwnPhoto();
    // A frame of another cell count is never taken from the tray.
    editor->buttonTappedWithSender(3);
    testsupport::spin(20);
    EXPECT_EQ(editor->index, 17);
}

// Screens of 812 points and taller have room above the frame for the notch and keep the frame higher.
TEST_F(ClassicCollage, TheFrameSitsHigherFromScreensOf812PointsUp) {
    const QSizeF phone = Screen::main().size();
    for (const auto& [height, top] : {std::pair{812, 120}, std::pair{811, 154}}) {
        Screen::main().setSize(QSizeF(375, height));
        window.resize(375, height);
        open(0, QStringList{kFour[0], kFour[1]});
        ASSERT_TRUE(testsupport::waitUntil([&] { return laidOut(); })) << height;
        EXPECT_EQ(editor->mainview()->geometry().top(), top) << height;
        editor->dismiss(false);
        ASSERT_TRUE(testsupport::waitUntil([&] { return root->presentedViewController() == nullptr; }));
    }
    Screen::main().setSize(phone);
}

TEST_F(ClassicCollage, ALookStaysOnItsCellThroughAFrameChangeAndLooksDoNotAddUp) {
    open(12, kFour);
    ASSERT_TRUE(testsupport::waitUntil([&] { return laidOut(); }));
    QTest::mouseClick(editor->mainview()->viewport(), Qt::LeftButton, {}, cellCentre(2));
    EXPECT_EQ(editor->commontag, 2);
    EXPECT_EQ(editor->currentImage, editor->mutableImages[2]);

    const ImagePtr source = editor->mutableImages[2];
    LookCubeCache cache;
    editor->FilterButtonTapped(3);
    editor->FilterButtonTapped(16);
    EXPECT_EQ(editor->lookOfCell(2), 16);
    const ImagePtr direct = applyLook(cache, filterTable()[16].lookupImage, source);
    const QImage shown = editor->mainview()->cell(2)->image()->bitmap();
    EXPECT_EQ(shown, direct->bitmap());
    EXPECT_NE(shown, source->bitmap());
    EXPECT_EQ(editor->mutableImages[2], source);

    editor->buttonTappedWithSender(14);
    ASSERT_TRUE(testsupport::waitUntil([&] { return editor->mainview()->cell(0)->frame().width() > 300; }));
    EXPECT_EQ(editor->mainview()->cell(2)->image()->bitmap(), direct->bitmap());
    expectEachCellShowsItsOwnPhoto();
}

TEST_F(ClassicCollage, SpacingMovesCellsButKeepsZoomCornersAndBackgroundReachTheSnapshot) {
    open(13, kFour);
    ASSERT_TRUE(testsupport::waitUntil([&] { return laidOut(); }));
    FrameCellItem* cell = editor->mainview()->cell(1);
    cell->panBy(QPointF(-40, -10));
    const QPointF offset = cell->contentOffset();
    editor->spacingSlider()->setValue(20);
    const QList<QRectF> expected = FrameGeometry::cellRects(13, editor->mainview()->areaSize(), 20, 20);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(editor->mainview()->cell(i)->frame(), expected[i]) << i;
    EXPECT_EQ(cell->zoomScale(), 2.0);
    EXPECT_EQ(cell->contentOffset(), offset);

    editor->cornerSlider()->setValue(17);
    for (int i = 0; i < FrameGeometry::maxCells; ++i)
        EXPECT_EQ(editor->mainview()->cell(i)->cornerRadius(), 17.0) << i;

    QTest::mouseClick(editor->colorButtons()[36], Qt::LeftButton);
    EXPECT_EQ(editor->mainview()->backgroundColor(), backgroundColorList()[36]);
    EXPECT_EQ(editor->colorButtons()[36]->width(), 56);
    EXPECT_EQ(editor->colorButtons()[35]->width(), 35);
    const ImagePtr snapshot = editor->mainview()->snapshot();
    ASSERT_TRUE(snapshot);
    EXPECT_EQ(snapshot->pixelSize(), (editor->mainview()->areaSize() * 3).toSize());
    // In the outer margin the ground shows; a rounded corner shows it too.
    const QColor ground = backgroundColorList()[36].toQColor();
    for (const QPoint& point :
         {QPoint(10 * 3, 200 * 3), QPoint(int(expected[0].left() * 3) + 2, int(expected[0].top() * 3) + 2)}) {
        const QColor pixel = snapshot->bitmap().pixelColor(point);
        EXPECT_NEAR(pixel.red(), ground.red(), 2);
        EXPECT_NEAR(pixel.green(), ground.green(), 2);
        EXPECT_NEAR(pixel.blue(), ground.blue(), 2);
    }
}

TEST_F(ClassicCollage, ReplacingAPhotoChangesOnlyTheChosenCellAndDropsItsLook) {
    open(12, kFour);
    ASSERT_TRUE(testsupport::waitUntil([&] { return laidOut(); }));
    editor->imageTapped1(3);
    editor->FilterButtonTapped(2);
    const std::vector<ImagePtr> before = editor->mutableImages;
    answer(QStringList{sample(QStringLiteral("starry_night.jpg"))});
    editor->didSelectTool(CollageViewController::galleryTool);
    EXPECT_TRUE(editor->isGallery);
    ASSERT_TRUE(testsupport::waitUntil([&] { return editor->mutableImages[3] != before[3]; }));
    EXPECT_EQ(editor->mainview()->cell(3)->image(), editor->mutableImages[3]);
    EXPECT_EQ(editor->currentImage, editor->mutableImages[3]);
    EXPECT_FALSE(editor->lookOfCell(3));
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(editor->mutableImages[std::size_t(i)], before[std::size_t(i)]);
    expectEachCellShowsItsOwnPhoto();
}

// Too few photos, an unreadable one, one too big to decode: the user is told and asked again, no cell
// is filled. A 1 × 1 photo and a 20000-pixel strip are real photos and are laid out.
TEST_F(ClassicCollage, BadSelectionsAreRefusedWithTheCountMessageAndOddSizesAreLaidOut) {
    const QString garbage = dir.filePath(QStringLiteral("broken.jpg"));
    QFile broken(garbage);
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("this is not a picture");
    broken.close();
    // A small JPEG whose header claims 20000 × 20000 pixels.
    const QString huge = dir.filePath(QStringLiteral("huge.jpg"));
    {
        QImage small(16, 16, QImage::Format_RGB32);
        small.fill(Qt::red);
        ASSERT_TRUE(small.save(huge, "JPEG"));
        QFile file(huge);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        QByteArray bytes = file.readAll();
        const int sof = int(bytes.indexOf("\xFF\xC0"));
        ASSERT_GT(sof, 0);
        for (int at : {sof + 5, sof + 7}) {
            bytes[at] = char(20000 >> 8);
            bytes[at + 1] = char(20000 & 0xff);
        }
        file.seek(0);
        file.write(bytes);
    }
    const QString dot = dir.filePath(QStringLiteral("dot.png"));
    const QString strip = dir.filePath(QStringLiteral("strip.png"));
    QImage(1, 1, QImage::Format_RGB32).save(dot);
    QImage wide(20000, 2, QImage::Format_RGB32);
    wide.fill(Qt::darkGreen);
    ASSERT_TRUE(wide.save(strip));

    // The picker opens again once the message is read; `next` is what the user picks then.
    auto expectRefused = [&](const QStringList& next) {
        Alert* alert = nullptr;
        EXPECT_TRUE(
            testsupport::waitUntil([&] { return (alert = Alert::visibleAlert(&window)) != nullptr; }));
        if (!alert)
            return;
        EXPECT_EQ(alert->title(), QStringLiteral("Information"));
        EXPECT_EQ(alert->message(), QStringLiteral("Please select 4 photo for this frame"));
        EXPECT_TRUE(editor->mutableImages.empty());
        for (int i = 0; i < FrameGeometry::maxCells; ++i)
            EXPECT_EQ(editor->mainview()->cell(i)->image(), nullptr);
        answer(next);
        alert->triggerAction(QStringLiteral("OK"));
    };
    open(12, kFour.mid(0, 3));
    expectRefused({kFour[0], kFour[1], garbage, kFour[2]});
    EXPECT_EQ(PhotoPicker::lastConfiguration()->selectionLimit, 4);
    expectRefused({kFour[0], huge, kFour[1], kFour[2]});
    expectRefused({dot, strip, kFour[0], kFour[1]});
    ASSERT_TRUE(testsupport::waitUntil([&] { return laidOut(); }));
    expectEachCellShowsItsOwnPhoto();
    editor->spacingSlider()->setValue(30);
    for (int i = 0; i < 4; ++i)
        editor->mainview()->cell(i)->zoomBy(6, QPointF(10, 10));
    const ImagePtr snapshot = editor->mainview()->snapshot();
    ASSERT_TRUE(snapshot);
    EXPECT_FALSE(snapshot->bitmap().isNull());
}

TEST_F(ClassicCollage, CancellingTheFirstPickerLeavesTheScreen) {
    open(0, std::nullopt);
    EXPECT_TRUE(testsupport::waitUntil([&] { return editor.isNull(); }));
}

TEST_F(ClassicCollage, HiddenCellsKeepTheirPicturesForAFrameThatNeedsThemAgain) {
    FrameAreaView area;
    area.resize(390, 422);
    std::vector<ImagePtr> photos;
    for (const QString& file : kFour)
        photos.push_back(Image::fromFile(file));
    for (int i = 0; i < 4; ++i)
        area.cell(i)->setImage(photos[std::size_t(i)]);
    area.layoutFrame(12);
    area.layoutFrame(0);
    EXPECT_FALSE(area.cell(2)->isVisible());
    EXPECT_EQ(area.cell(2)->image(), photos[2]);
    area.layoutFrame(12);
    EXPECT_TRUE(area.cell(3)->isVisible());
    EXPECT_EQ(area.cell(3)->image(), photos[3]);
    area.layoutFrame(40);
    for (int i = 0; i < FrameGeometry::maxCells; ++i)
        EXPECT_FALSE(area.cell(i)->isVisible());
}

} // namespace
