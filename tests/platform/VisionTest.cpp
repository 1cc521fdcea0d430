#include "platform/Vision.h"

#include <QTemporaryDir>
#include <QTransform>
#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <thread>

namespace {

// Real photographs shipped with OpenCV's documentation.
const QString photoDir = QStringLiteral(LUMIVEX_SAMPLES_DIR "/");

#define REQUIRE_PHOTO(image, name)                                                                           \
    const ImagePtr image = Image::fromFile(photoDir + (name));                                               \
    if (!image)                                                                                              \
        FAIL() << "missing photo " << qPrintable(name);

// A point given in top-left pixel coordinates of the upright picture, as measured by eye, in the
// detector's normalised bottom-left space.
QPointF measured(double x, double y, QSize size) {
    return {x / size.width(), 1.0 - y / size.height()};
}

bool anyContains(const std::vector<VisionObservation>& found, QPointF point) {
    return std::any_of(found.begin(), found.end(),
                       [&](const VisionObservation& o) { return o.boundingBox.contains(point); });
}

// Same boxes in the same order, to within a working pixel.
void expectSameBoxes(const std::vector<VisionObservation>& actual,
                     const std::vector<VisionObservation>& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i) {
        const QRectF a = actual[i].boundingBox, e = expected[i].boundingBox;
        EXPECT_LT(std::max({std::abs(a.left() - e.left()), std::abs(a.top() - e.top()),
                            std::abs(a.right() - e.right()), std::abs(a.bottom() - e.bottom())}),
                  0.01)
            << i;
    }
}

VisionObservation box(double x, double y, double w, double h) {
    return {QRectF(x, y, w, h), 1.0};
}

TEST(Vision, FindsFacesWhereTheyAreWithTheOriginAtTheBottomLeft) {
    struct Case {
        QString name;
        QPointF faceCentre; // pixels, top-left origin
    };
    for (const Case& c : {Case{"basketball1.png", {88, 112}}, Case{"messi5.jpg", {245, 112}}}) {
        REQUIRE_PHOTO(image, c.name);
        const auto faces = VisionRequestHandler(*image).detectFaceRectangles();
        ASSERT_TRUE(faces) << qPrintable(c.name);
        ASSERT_FALSE(faces->empty()) << qPrintable(c.name);
        const QPointF centre = measured(c.faceCentre.x(), c.faceCentre.y(), image->pixelSize());
        // Nothing else in these photos may pass for a face bigger than the real one.
        EXPECT_TRUE(Vision::largestBox(*faces)->contains(centre)) << qPrintable(c.name);
        for (const auto& face : *faces)
            EXPECT_TRUE(QRectF(0, 0, 1, 1).contains(face.boundingBox) && face.confidence > 0 &&
                        face.confidence <= 1);
    }
}

TEST(Vision, FindsAStandingPersonAndNobodyInPicturesWithoutPeople) {
    {
        REQUIRE_PHOTO(image, "basketball1.png");
        const auto people = VisionRequestHandler(*image).detectHumanRectangles();
        ASSERT_TRUE(people);
        ASSERT_FALSE(people->empty());
        // The man with the ball stands on the left, head near the top, feet at the bottom edge.
        const QRectF largest = *Vision::largestBox(*people);
        EXPECT_TRUE(largest.contains(measured(95, 280, image->pixelSize())));
        EXPECT_GT(largest.height(), 0.5);
        EXPECT_LT(largest.center().x(), 0.35);
        EXPECT_GT(people->front().confidence, 0.5);
    }
    // Fruit, a building among trees, a circuit board and a painting: textures that fool weaker settings.
    for (const QString name : {"fruits.jpg", "building.jpg", "board.jpg", "starry_night.jpg"}) {
        REQUIRE_PHOTO(image, name);
        const VisionRequestHandler handler(*image);
        const auto people = handler.detectHumanRectangles();
        const auto faces = handler.detectFaceRectangles();
        ASSERT_TRUE(people && faces) << qPrintable(name);
        EXPECT_TRUE(people->empty()) << qPrintable(name);
        EXPECT_TRUE(faces->empty()) << qPrintable(name);
    }
}

// Stored pixels that a given orientation turns into `upright`, found among the eight turns of it.
QImage storedFor(const QImage& upright, ImageOrientation orientation) {
    for (int quarter = 0; quarter < 4; ++quarter)
        for (bool mirrored : {false, true}) {
            const QImage candidate =
                upright.transformed(QTransform().rotate(90 * quarter)).mirrored(mirrored, false);
            if (Image::make(candidate, 1.0, orientation)->uprightBitmap() == upright)
                return candidate;
        }
    return {};
}

TEST(Vision, BoxesAreInTheUprightPictureWhateverTheOrientation) {
    REQUIRE_PHOTO(image, "basketball1.png");
    // The left half keeps the man and his face and halves the cost of each pass.
    const QImage upright = image->bitmap().copy(0, 0, 320, 480);
    const VisionRequestHandler reference(upright, ImageOrientation::up);
    const auto faces = reference.detectFaceRectangles();
    const auto people = reference.detectHumanRectangles();
    ASSERT_TRUE(faces && people);
    ASSERT_FALSE(faces->empty());
    ASSERT_FALSE(people->empty());

    for (int raw = 1; raw < 8; ++raw) {
        const auto orientation = static_cast<ImageOrientation>(raw);
        const QImage stored = storedFor(upright, orientation);
        ASSERT_FALSE(stored.isNull()) << raw;
        ASSERT_NE(stored, upright) << raw;
        const VisionRequestHandler handler(*Image::make(stored, 1.0, orientation));
        const auto turnedFaces = handler.detectFaceRectangles();
        ASSERT_TRUE(turnedFaces) << raw;
        expectSameBoxes(*turnedFaces, *faces);
        if (orientation == ImageOrientation::right) {
            const auto turnedPeople = handler.detectHumanRectangles();
            ASSERT_TRUE(turnedPeople);
            expectSameBoxes(*turnedPeople, *people);
        }
    }

    // A big sideways photo: downscaling and turning together must still land on the same face.
    const QImage large = image->bitmap().scaled(1600, 1200, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const auto largeFaces =
        VisionRequestHandler(storedFor(large, ImageOrientation::right), ImageOrientation::right)
            .detectFaceRectangles();
    ASSERT_TRUE(largeFaces);
    EXPECT_TRUE(anyContains(*largeFaces, measured(88, 112, image->pixelSize())));
}

TEST(Vision, HandlersOnSeveralThreadsAgree) {
    REQUIRE_PHOTO(image, "basketball1.png");
    const QImage crop = image->bitmap().copy(0, 40, 240, 200);
    const auto expected = VisionRequestHandler(crop, ImageOrientation::up).detectFaceRectangles();
    ASSERT_TRUE(expected);
    ASSERT_FALSE(expected->empty());
    std::array<std::optional<std::vector<VisionObservation>>, 3> results;
    std::vector<std::thread> threads;
    for (auto& result : results)
        threads.emplace_back(
            [&] { result = VisionRequestHandler(crop, ImageOrientation::up).detectFaceRectangles(); });
    for (auto& thread : threads)
        thread.join();
    for (const auto& result : results) {
        ASSERT_TRUE(result);
        expectSameBoxes(*result, *expected);
    }
}

TEST(Vision, DegeneratePicturesGiveNoBoxesWithoutCrashing) {
    const VisionRequestHandler empty(QImage(), ImageOrientation::up);
    EXPECT_FALSE(empty.detectHumanRectangles());
    EXPECT_FALSE(empty.detectFaceRectangles());

    QImage dot(1, 1, QImage::Format_RGB32);
    dot.fill(Qt::white);
    const VisionRequestHandler tiny(*Image::make(dot, 1.0, ImageOrientation::left));
    ASSERT_TRUE(tiny.detectHumanRectangles());
    EXPECT_TRUE(tiny.detectHumanRectangles()->empty());
    ASSERT_TRUE(tiny.detectFaceRectangles());
    EXPECT_TRUE(tiny.detectFaceRectangles()->empty());

    // A panorama strip shrinks below the height of the people window; the detector would read out of bounds.
    QImage strip(2000, 150, QImage::Format_ARGB32_Premultiplied);
    strip.fill(Qt::darkGray);
    for (const auto orientation : {ImageOrientation::up, ImageOrientation::right}) {
        const auto people = VisionRequestHandler(strip, orientation).detectHumanRectangles();
        ASSERT_TRUE(people);
        EXPECT_TRUE(people->empty());
    }
}

TEST(Vision, AMissingFaceModelFailsOnlyTheFaceRequest) {
    QImage plain(200, 300, QImage::Format_RGB32);
    plain.fill(Qt::gray);
    QTemporaryDir emptyDataDir;
    ASSERT_TRUE(emptyDataDir.isValid());
    const QByteArray saved = qgetenv(VisionRequestHandler::dataDirVariable);
    const bool wasSet = qEnvironmentVariableIsSet(VisionRequestHandler::dataDirVariable);

    qputenv(VisionRequestHandler::dataDirVariable, emptyDataDir.path().toUtf8());
    const VisionRequestHandler handler(plain, ImageOrientation::up);
    EXPECT_FALSE(handler.detectFaceRectangles());
    EXPECT_TRUE(handler.detectHumanRectangles());

    if (wasSet)
        qputenv(VisionRequestHandler::dataDirVariable, saved);
    else
        qunsetenv(VisionRequestHandler::dataDirVariable);
    // The model this thread gave up on is read again once it can be found.
    EXPECT_TRUE(handler.detectFaceRectangles());
}

TEST(Vision, LargestBoxComparesAreasAndKeepsTheEarlierOnTies) {
    EXPECT_FALSE(Vision::largestBox({}));
    // Widest and tallest are not largest.
    EXPECT_EQ(Vision::largestBox({box(0, 0, 0.9, 0.1), box(0.1, 0.1, 0.4, 0.4), box(0, 0, 0.1, 0.95)}),
              QRectF(0.1, 0.1, 0.4, 0.4));
    // Equal areas in different shapes and places: the first one found stays.
    EXPECT_EQ(Vision::largestBox({box(0.5, 0.5, 0.25, 0.5), box(0.1, 0.1, 0.5, 0.25), box(0, 0, 0.125, 1)}),
              QRectF(0.5, 0.5, 0.25, 0.5));
    EXPECT_EQ(Vision::largestBox({box(0.2, 0.2, 0, 0), box(0.3, 0.3, 0, 0)}), QRectF(0.2, 0.2, 0, 0));
}

} // namespace
