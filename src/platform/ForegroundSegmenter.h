#pragma once

#include <QImage>
#include <QString>
#include <memory>
#include <optional>

// Separates the subjects of a picture from its background: the foreground instance mask of the phone's
// Vision. The answer is a one-channel 8-bit mask (Format_Grayscale8, 255 subject, 0 background) of the
// upright picture, at its size or smaller with the same shape; every subject found is in it at once,
// none is chosen. Nothing when no subject could be found with confidence or the picture cannot be read.
//
// A segmenter holds no state that changes while it works: one may serve any number of threads at once.
class ForegroundSegmenter {
public:
    virtual ~ForegroundSegmenter() = default;
    // `upright` is a 32-bit picture as it is seen (orientation already applied).
    virtual std::optional<QImage> foregroundMask(const QImage& upright) const = 0;
    // A short name for the log.
    virtual QString name() const = 0;
};

// The classical segmenter: subjects are found as people and faces together (each face standing for the
// body below it), or else as the area that stands out from the picture's border (see SubjectPriors);
// GrabCut then segments them on a small working copy, and the edge is refined at full size with the
// picture's own colours, only along the edge.
class GrabCutSegmenter : public ForegroundSegmenter {
public:
    // The working copy's longer side; GrabCut's cost grows fast with the pixel count.
    static constexpr int workingSide = 320;
    // Started from labels drawn around the subjects rather than from a rectangle, GrabCut is close to its
    // answer early: a third iteration moved the cut-outs of our test photos by less than their spread
    // from one random start to another, at half again the cost of two.
    static constexpr int iterations = 2;

    std::optional<QImage> foregroundMask(const QImage& upright) const override;
    QString name() const override { return QStringLiteral("GrabCut"); }
};

namespace ForegroundSegmentation {

// Where a user's own segmentation models are looked for: the environment variable LUMIVEX_MODELS_DIR when
// set, else the "models" folder in the program's data folder.
static constexpr const char* modelsDirVariable = "LUMIVEX_MODELS_DIR";
QString modelsDirectory();

// The segmenter for this run: a model from the models folder (the first *.onnx by name) through OpenCV's
// dnn module when one is there and loads, otherwise GrabCut. Says on the log which one it chose.
std::shared_ptr<const ForegroundSegmenter> makeSegmenter();

} // namespace ForegroundSegmentation
