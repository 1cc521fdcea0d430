#include "collage/CollagePaneView.h"
#include "collage/SubjectDetection.h"
#include "support/TestSupport.h"

#include "CollageTestSupport.h"

#include <QFileInfo>
#include <QGraphicsScene>
#include <gtest/gtest.h>

namespace {

const QString kSamples = QStringLiteral(LUMIVEX_SAMPLES_DIR "/");

ImagePtr sample(const QString& name) {
    return Image::fromFile(kSamples + name);
}

struct Pane {
    QGraphicsScene scene{QRectF(0, 0, 400, 400)};
    CollagePaneView* pane = new CollagePaneView;
    explicit Pane(QSizeF size) {
        scene.addItem(pane);
        pane->setFrame(QRectF(QPointF(0, 0), size));
    }
    bool settle() {
        return testsupport::waitUntil([this] { return !pane->hasPendingWork(); }, 15000);
    }
};

// The crop window is centred on the subject, moved only as far as the picture's edges require.
void expectCentredOn(const QRectF& crop, const QRectF& subject) {
    const double wanted = subject.center().x();
    const double x = std::clamp(wanted - crop.width() / 2, 0.0, 1.0 - crop.width());
    EXPECT_NEAR(crop.left(), x, 1e-9);
    EXPECT_GE(wanted, crop.left());
    EXPECT_LE(wanted, crop.right());
}

TEST(SubjectCrop, FaceInARealPhotoIsCentredInATallPane) {
    const ImagePtr photo = sample(QStringLiteral("messi5.jpg"));
    if (!photo)
        FAIL() << "a bundled sample photo is missing";
    Pane pane(QSizeF(100, 300));
    pane.pane->setImage(photo);
    ASSERT_TRUE(pane.settle());
    ASSERT_TRUE(pane.pane->subjectBoundingBox().has_value());
    const QRectF crop = pane.pane->contentsRect();
    // The window has the pane's shape: a third as wide as high on a 548 × 342 picture.
    EXPECT_NEAR(crop.width() * 548 / (crop.height() * 342), 100.0 / 300.0, 1e-9);
    // The face, measured by hand at (245, 112) pixels, sits in the middle of the window.
    EXPECT_NEAR(crop.center().x(), 245.0 / 548.0, 0.04);
    expectCentredOn(crop, *pane.pane->subjectBoundingBox());
}

TEST(SubjectCrop, PersonNearTheEdgeMovesTheWindowOnlyToTheEdge) {
    const ImagePtr photo = sample(QStringLiteral("basketball1.png"));
    if (!photo)
        FAIL() << "a bundled sample photo is missing";
    Pane pane(QSizeF(120, 240));
    pane.pane->setImage(photo);
    ASSERT_TRUE(pane.settle());
    ASSERT_TRUE(pane.pane->subjectBoundingBox().has_value());
    const QRectF subject = *pane.pane->subjectBoundingBox();
    // The man on the left of the picture.
    EXPECT_LT(subject.center().x(), 0.35);
    EXPECT_GT(subject.height(), 0.4);
    expectCentredOn(pane.pane->contentsRect(), subject);
    EXPECT_DOUBLE_EQ(pane.pane->contentsRect().left(), 0.0);

    // A new shape (a ratio change) recomputes the window around the same subject.
    pane.pane->setFrame(QRectF(0, 0, 240, 120));
    EXPECT_DOUBLE_EQ(pane.pane->contentsRect().width(), 1.0);
}

TEST(SubjectCrop, ResultForAReplacedPhotoIsDropped) {
    const ImagePtr face = sample(QStringLiteral("messi5.jpg"));
    const ImagePtr fruit = sample(QStringLiteral("fruits.jpg"));
    ASSERT_TRUE(face && fruit) << "the sample photos are missing";
    collagetest::WorkerHold hold;
    auto faceResult = std::make_shared<std::optional<QRectF>>();
    Pane pane(QSizeF(100, 300));
    // The face's detection is held until the photo has been replaced, then finds its face.
    pane.pane->subjectDetector = [gate = hold.gate(), faceImage = face.get(),
                                  faceResult](const Image& photo) {
        if (&photo != faceImage)
            return SubjectDetection::detectSubject(photo);
        gate();
        *faceResult = SubjectDetection::detectSubject(photo);
        return *faceResult;
    };
    pane.pane->setImage(face);
    ASSERT_TRUE(hold.waitUntilHeld());
    pane.pane->setImage(fruit);
    ASSERT_TRUE(pane.settle());
    hold.release();
    ASSERT_TRUE(collagetest::drainWorkers());

    ASSERT_TRUE(faceResult->has_value()); // the late result was a real subject
    EXPECT_FALSE(pane.pane->subjectBoundingBox().has_value());
    EXPECT_EQ(pane.pane->contentsRect(), QRectF(0, 0, 1, 1));
}

} // namespace
