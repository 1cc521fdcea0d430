#include "platform/Vision.h"

#include <QImage>
#include <cmath>
#include <gtest/gtest.h>

namespace {

const QString photoDir = QStringLiteral(LUMIVEX_SAMPLES_DIR "/");

// A sample enlarged to a camera-sized frame whose sides are no multiple of the working size, so the
// shrinking takes both of its steps and trims an edge.
QImage cameraSized(const QString& name, QSize size) {
    const QImage source(photoDir + name);
    return source.isNull() ? QImage()
                           : source.convertToFormat(QImage::Format_RGB32)
                                 .scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

double distance(QPointF a, QPointF b) {
    return std::hypot(a.x() - b.x(), a.y() - b.y());
}

// The subject is where it is in the photo at a small size, whatever the whole factor of the shrinking.
TEST(VisionLargePhoto, SubjectsStayPutOnACameraSizedFrame) {
    for (const QSize size : {QSize(3501, 2627), QSize(4003, 3001), QSize(1283, 962)}) {
        const QImage messi = cameraSized("messi5.jpg", size);
        const QImage basketball = cameraSized("basketball1.png", size);
        ASSERT_FALSE(messi.isNull() || basketball.isNull());

        const auto faces = VisionRequestHandler(messi, ImageOrientation::up).detectFaceRectangles();
        const auto smallFaces =
            VisionRequestHandler(cameraSized("messi5.jpg", QSize(600, 450)), ImageOrientation::up)
                .detectFaceRectangles();
        ASSERT_TRUE(faces && smallFaces);
        ASSERT_FALSE(faces->empty()) << size.width();
        ASSERT_FALSE(smallFaces->empty()) << size.width();
        EXPECT_LT(distance(Vision::largestBox(*faces)->center(), Vision::largestBox(*smallFaces)->center()),
                  0.02)
            << size.width();

        const auto people = VisionRequestHandler(basketball, ImageOrientation::up).detectHumanRectangles();
        ASSERT_TRUE(people);
        // The man with the ball: left of centre, most of the height, feet near the bottom edge (the box
        // leaves a margin under them).
        ASSERT_FALSE(people->empty()) << size.width();
        const QRectF person = *Vision::largestBox(*people);
        EXPECT_LT(person.center().x(), 0.35) << size.width();
        EXPECT_GT(person.height(), 0.5) << size.width();
        EXPECT_LT(person.top(), 0.2) << size.width();
    }
}

// Long thin pictures shrink along their longer side without losing the shorter one.
TEST(VisionLargePhoto, PanoramasShrinkWithoutCollapsing) {
    QImage strip(7000, 90, QImage::Format_RGB32);
    strip.fill(Qt::gray);
    const VisionRequestHandler handler(strip, ImageOrientation::right);
    const auto faces = handler.detectFaceRectangles();
    const auto people = handler.detectHumanRectangles();
    ASSERT_TRUE(faces && people);
    EXPECT_TRUE(faces->empty());
    EXPECT_TRUE(people->empty());
}

} // namespace
