#pragma once

#include "platform/Image.h"

#include <QImage>
#include <QString>
#include <vector>

// Real photos with the outline of their subjects traced by hand (tests/data/cutouts/*.json: the photo's
// name, its size and polygons in its pixels), and composites made from them: a traced subject with a
// softened edge laid over another bundled photo.
namespace CutoutSamples {

struct Sample {
    QString name;
    ImagePtr picture;
    QImage truth; // Format_Grayscale8, 255 inside the traced outline
};

std::vector<Sample> tracedPhotos();
// Every traced subject over every bundled photo that is not itself traced.
std::vector<Sample> composites();

// The cut-out's alpha as a mask of the same size (Format_Grayscale8).
QImage alphaOf(const Image& cutout);
// Intersection over union of two masks thresholded at half.
double intersectionOverUnion(const QImage& mask, const QImage& truth);

} // namespace CutoutSamples
