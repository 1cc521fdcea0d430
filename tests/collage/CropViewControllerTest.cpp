#include "collage/CropViewController.h"
#include "collage/CropCanvasView.h"
#include "collage/CropGeometry.h"
#include "collage/CropperState.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QTest>
#include <algorithm>
#include <cmath>

namespace {

const QRgb red = qRgb(255, 0, 0);
const QRgb green = qRgb(0, 255, 0);
const QRgb blue = qRgb(0, 0, 255);
const QRgb yellow = qRgb(255, 255, 0);

// Red top left, green top right, blue bottom left, yellow bottom right.
QImage quadrants(int width, int height) {
    QImage bitmap(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const bool right = x >= width / 2, bottom = y >= height / 2;
            bitmap.setPixel(x, y, bottom ? (right ? yellow : blue) : (right ? green : red));
        }
    return bitmap;
}

// Colours at the four corners of a bitmap, clockwise from the top left.
std::vector<QRgb> corners(const QImage& bitmap) {
    const int r = bitmap.width() - 1, b = bitmap.height() - 1;
    return {bitmap.pixel(0, 0) | 0xff000000u, bitmap.pixel(r, 0) | 0xff000000u,
            bitmap.pixel(r, b) | 0xff000000u, bitmap.pixel(0, b) | 0xff000000u};
}

bool isSolid(const QImage& bitmap, QRgb colour) {
    for (int y = 0; y < bitmap.height(); ++y)
        for (int x = 0; x < bitmap.width(); ++x)
            if ((bitmap.pixel(x, y) | 0xff000000u) != colour)
                return false;
    return true;
}

struct CropFixture {
    ImagePtr image = Image::make(quadrants(400, 300));
    CropViewController screen{image};
    std::vector<std::optional<CropperState>> confirmed;
    int cancels = 0;

    CropFixture() {
        screen.onConfirm = [this](std::optional<CropperState> state) { confirmed.push_back(state); };
        screen.onCancel = [this]() { ++cancels; };
        screen.resize(600, 700);
        screen.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&screen));
    }

    CropCanvasView* canvas() const { return screen.canvasView(); }

    // Drags from a point of the picture (in its pixels) by `by` screen points.
    void drag(QPointF pictureFrom, QPoint by) {
        const QPoint from = canvas()->toView(pictureFrom).toPoint();
        QTest::mousePress(canvas(), Qt::LeftButton, {}, from);
        QTest::mouseMove(canvas(), from + by / 2);
        QTest::mouseMove(canvas(), from + by);
        QTest::mouseRelease(canvas(), Qt::LeftButton, {}, from + by);
    }
};

} // namespace

TEST(CroppedImageTest, CutsUprightPixelsOfTheExactSize) {
    const ImagePtr image = Image::make(quadrants(40, 20), 2.0);

    const ImagePtr middle = croppedImage(*image, {0, QRect(10, 5, 20, 10)});
    ASSERT_TRUE(middle);
    EXPECT_EQ(middle->pixelSize(), QSize(20, 10));
    EXPECT_DOUBLE_EQ(middle->scale(), 2.0);
    EXPECT_EQ(corners(middle->bitmap()), (std::vector<QRgb>{red, green, yellow, blue}));

    // A clockwise quarter turn: the left column becomes the top row.
    const ImagePtr turned = croppedImage(*image, {1, QRect(0, 0, 20, 40)});
    ASSERT_TRUE(turned);
    EXPECT_EQ(turned->pixelSize(), QSize(20, 40));
    EXPECT_EQ(turned->orientation(), ImageOrientation::up);
    EXPECT_EQ(corners(turned->bitmap()), (std::vector<QRgb>{blue, red, green, yellow}));
    const ImagePtr turnedRight = croppedImage(*image, {1, QRect(10, 0, 10, 20)});
    ASSERT_TRUE(turnedRight);
    EXPECT_EQ(turnedRight->pixelSize(), QSize(10, 20));
    EXPECT_TRUE(isSolid(turnedRight->bitmap(), red));

    const ImagePtr half = croppedImage(*image, {2, QRect(0, 0, 40, 20)});
    EXPECT_EQ(corners(half->bitmap()), (std::vector<QRgb>{yellow, blue, red, green}));
    const ImagePtr back = croppedImage(*image, {-1, QRect(0, 0, 20, 40)});
    EXPECT_EQ(corners(back->bitmap()), (std::vector<QRgb>{green, yellow, blue, red}));
}

TEST(CroppedImageTest, HonoursTheOrientationFlagAndClipsToThePicture) {
    // Stored upside down: the upright picture starts with yellow.
    const ImagePtr flipped = Image::make(quadrants(40, 20), 1.0, ImageOrientation::down);
    const ImagePtr whole = croppedImage(*flipped, {0, QRect(0, 0, 40, 20)});
    EXPECT_EQ(corners(whole->bitmap()), (std::vector<QRgb>{yellow, blue, red, green}));

    const ImagePtr image = Image::make(quadrants(40, 20));
    const ImagePtr overhanging = croppedImage(*image, {0, QRect(30, 10, 50, 50)});
    ASSERT_TRUE(overhanging);
    EXPECT_EQ(overhanging->pixelSize(), QSize(10, 10));
    EXPECT_TRUE(isSolid(overhanging->bitmap(), yellow));
    EXPECT_FALSE(croppedImage(*image, {0, QRect(40, 0, 10, 10)}));
    EXPECT_FALSE(croppedImage(*image, {0, QRect()}));
}

TEST(CropGeometryTest, FreeEdgesStopAtTheirOwnSideOfAWidePicture) {
    // Wider than tall and off the origin at different distances, so a horizontal limit taken from the
    // vertical one (or the other way) shows.
    const QRectF bounds(10, 20, 400, 300);
    const QRectF start(100, 50, 100, 100);
    const QRectF pulled = CropGeometry::resized(start, CropHandle::bottomRight, {900, 900}, bounds, 0.0, 10);
    EXPECT_EQ(pulled, QRectF(100, 50, 310, 270));
    const QRectF pushed = CropGeometry::resized(start, CropHandle::topLeft, {-900, -900}, bounds, 0.0, 10);
    EXPECT_EQ(pushed, QRectF(10, 20, 190, 130));
}

TEST(CropGeometryTest, FixedShapeCornerFollowsThePointerAlongTheDiagonal) {
    const QRectF bounds(0, 0, 400, 300);
    const QRectF start(100, 100, 120, 90); // 4:3
    // Pulled only sideways, the corner still grows both sides in shape.
    const QRectF wider =
        CropGeometry::resized(start, CropHandle::bottomRight, {40, 0}, bounds, 4.0 / 3.0, 10);
    EXPECT_GT(wider.width(), start.width());
    EXPECT_NEAR(wider.width() / wider.height(), 4.0 / 3.0, 1e-9);
    EXPECT_EQ(wider.topLeft(), start.topLeft());
    // Pushed past the anchor, it stops at the minimum.
    const QRectF tiny = CropGeometry::resized(start, CropHandle::topLeft, {500, 500}, bounds, 4.0 / 3.0, 30);
    EXPECT_NEAR(tiny.height(), 30, 1e-9);
    EXPECT_NEAR(tiny.width(), 40, 1e-9);
    EXPECT_EQ(tiny.bottomRight(), start.bottomRight());
    // A fixed edge grows about the middle and slides back inside.
    const QRectF edge =
        CropGeometry::resized(QRectF(0, 0, 120, 90), CropHandle::right, {120, 0}, bounds, 4.0 / 3.0, 10);
    EXPECT_EQ(edge, QRectF(0, 0, 240, 180));
    EXPECT_EQ(CropGeometry::fittedRect(bounds, 1.0, QPointF(390, 10)), QRectF(100, 0, 300, 300));
}

TEST(CropViewControllerTest, FixedShapeHoldsWhileACornerIsDragged) {
    CropFixture f;
    f.screen.setAspectRatio(CropAspectRatio::square);
    EXPECT_EQ(f.screen.state().cropRect, QRect(50, 0, 300, 300));
    EXPECT_TRUE(f.screen.aspectButton(CropAspectRatio::square)->isChecked());

    f.drag(QPointF(350, 300), QPoint(-60, -20));
    QRect crop = f.screen.state().cropRect;
    EXPECT_LT(crop.width(), 300);
    EXPECT_LE(std::abs(crop.width() - crop.height()), 1);
    EXPECT_EQ(crop.topLeft(), QPoint(50, 0));

    // Pulled far out, it grows only as far as the picture allows.
    f.drag(QPointF(crop.right() + 1, crop.bottom() + 1), QPoint(400, 400));
    crop = f.screen.state().cropRect;
    EXPECT_EQ(crop, QRect(50, 0, 300, 300));

    // 3:4 from the top left corner.
    f.screen.setAspectRatio(CropAspectRatio::portrait3x4);
    crop = f.screen.state().cropRect;
    f.drag(QPointF(crop.topLeft()), QPoint(30, 5));
    crop = f.screen.state().cropRect;
    EXPECT_NEAR(double(crop.width()) / crop.height(), 0.75, 0.01);
}

TEST(CropViewControllerTest, TheRectangleCannotLeaveThePictureOrCollapse) {
    CropFixture f;
    const QRect all(0, 0, 400, 300);
    EXPECT_EQ(f.screen.state().cropRect, all);

    // Made smaller from the top left, then thrown far to the bottom right: it stops at the edge.
    f.drag(QPointF(0, 0), QPoint(100, 80));
    const QRect smaller = f.screen.state().cropRect;
    ASSERT_LT(smaller.width(), 400);
    f.drag(QPointF(smaller.center()), QPoint(900, 900));
    QRect crop = f.screen.state().cropRect;
    EXPECT_EQ(crop.size(), smaller.size());
    EXPECT_EQ(crop.bottomRight(), all.bottomRight());

    // An edge dragged out of the picture stops at its border.
    f.drag(QPointF(crop.left(), crop.center().y()), QPoint(-900, 0));
    crop = f.screen.state().cropRect;
    EXPECT_EQ(crop.left(), 0);

    // The right edge dragged past the left one leaves the minimum width.
    f.drag(QPointF(crop.right() + 1, crop.center().y()), QPoint(-2000, 0));
    crop = f.screen.state().cropRect;
    EXPECT_EQ(crop.left(), 0);
    EXPECT_GE(crop.width(), std::floor(f.canvas()->minimumSide()));
    EXPECT_GT(crop.width(), 10);

    // Arrow keys nudge but never out.
    f.canvas()->setFocus();
    QTest::keyClick(f.canvas(), Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(f.screen.state().cropRect.left(), 0);
    QTest::keyClick(f.canvas(), Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_GT(f.screen.state().cropRect.left(), 0);
}

TEST(CropViewControllerTest, TurningCarriesTheRectangleAndTheShape) {
    const ImagePtr image = Image::make(quadrants(400, 300));
    // The red quarter, held at 4:3.
    CropViewController screen(image, CropperState{0, QRect(0, 0, 200, 150), CropAspectRatio::landscape4x3});
    screen.loadViewIfNeeded();
    const CropperState before = screen.state();
    ASSERT_TRUE(isSolid(croppedImage(*image, before)->bitmap(), red));

    screen.rotateRight();
    const CropperState after = screen.state();
    EXPECT_EQ(after.rotationQuarterTurns, 1);
    EXPECT_EQ(screen.pictureSize(), QSize(300, 400));
    EXPECT_EQ(after.cropRect, QRect(150, 0, 150, 200));
    EXPECT_EQ(after.aspectRatio, CropAspectRatio::portrait3x4);
    EXPECT_TRUE(isSolid(croppedImage(*image, after)->bitmap(), red)) << "the same part stays chosen";
    EXPECT_EQ(screen.canvasView()->pictureSize(), QSize(300, 400));

    screen.rotateLeft();
    screen.rotateLeft();
    EXPECT_EQ(screen.state().rotationQuarterTurns, 3);
    EXPECT_TRUE(isSolid(croppedImage(*image, screen.state())->bitmap(), red));

    QTest::mouseClick(screen.resetButton(), Qt::LeftButton);
    EXPECT_EQ(screen.state(), (CropperState{0, QRect(0, 0, 400, 300), CropAspectRatio::free}));
}

// A state that was turned past a whole turn, either way, opens at the same quarter.
TEST(CropViewControllerTest, AStateTurnedBackOrRoundAgainOpensAtItsQuarter) {
    const ImagePtr image = Image::make(quadrants(400, 300));
    for (const auto& [given, quarter] : {std::pair{-1, 3}, std::pair{-6, 2}, std::pair{5, 1}}) {
        CropViewController screen(image, CropperState{given, QRect(0, 0, 100, 100), CropAspectRatio::free});
        screen.loadViewIfNeeded();
        EXPECT_EQ(screen.state().rotationQuarterTurns, quarter) << given;
        EXPECT_EQ(screen.pictureSize(), quarter % 2 ? QSize(300, 400) : QSize(400, 300)) << given;
    }
}

TEST(CropViewControllerTest, DoneGivesAStateAndCancelGivesNone) {
    CropFixture f;
    f.screen.rotateLeft();
    QTest::mouseClick(f.screen.doneButton(), Qt::LeftButton);
    ASSERT_EQ(f.confirmed.size(), 1u);
    ASSERT_TRUE(f.confirmed[0]);
    EXPECT_EQ(f.confirmed[0]->rotationQuarterTurns, 3);
    EXPECT_EQ(f.confirmed[0]->cropRect, QRect(0, 0, 300, 400));

    QTest::mouseClick(f.screen.cancelButton(), Qt::LeftButton);
    EXPECT_EQ(f.cancels, 1);
    EXPECT_EQ(f.confirmed.size(), 1u);

    // Keys reach the screen from the canvas, which has the focus.
    f.canvas()->setFocus();
    QTest::keyClick(f.canvas(), Qt::Key_Escape);
    EXPECT_EQ(f.cancels, 2);
    QTest::keyClick(f.canvas(), Qt::Key_Return);
    EXPECT_EQ(f.confirmed.size(), 2u);
    EXPECT_EQ(f.cancels, 2);

    // Opened again from a saved state, it shows that state.
    CropViewController again(f.image, CropperState{1, QRect(10, 20, 100, 200), CropAspectRatio::free});
    EXPECT_EQ(again.state(), (CropperState{1, QRect(10, 20, 100, 200), CropAspectRatio::free}));
    CropViewController empty(nullptr);
    std::optional<std::optional<CropperState>> result;
    empty.onConfirm = [&](std::optional<CropperState> state) { result = state; };
    empty.confirm();
    ASSERT_TRUE(result);
    EXPECT_FALSE(*result);
}

TEST(CropViewControllerTest, BottomBarFitsAPhoneWidthWithoutClippingItsTitles) {
    // A big photo: its size figure is as long as it gets. The screen fills a phone-wide window.
    QImage big(8000, 6000, QImage::Format_RGB32);
    big.fill(Qt::darkCyan);
    QWidget window;
    window.setFixedSize(390, 844);
    auto* screen = new CropViewController(Image::make(big), std::nullopt, &window);
    screen->setGeometry(window.rect());
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    const std::vector<QAbstractButton*> bar = {screen->cancelButton(), screen->rotateButton(),
                                               screen->resetButton(), screen->doneButton()};
    for (std::size_t i = 0; i < bar.size(); ++i) {
        QAbstractButton* button = bar[i];
        const std::string title = button->text().toStdString();
        EXPECT_GE(button->width(), button->sizeHint().width()) << title;
        EXPECT_TRUE(screen->rect().contains(button->geometry())) << title;
        if (i > 0) { // left to right, apart
            EXPECT_LE(bar[i - 1]->geometry().right(), button->geometry().left()) << title;
        }
    }
    for (QAbstractButton* chip : screen->findChildren<QAbstractButton*>()) {
        if (std::find(bar.begin(), bar.end(), chip) == bar.end()) {
            EXPECT_TRUE(screen->rect().contains(chip->geometry())) << chip->text().toStdString();
        }
    }
}
