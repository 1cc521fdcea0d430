#pragma once

#include "platform/ForegroundSegmenter.h"
#include "platform/Image.h"

#include <QImage>
#include <memory>

// Makes cut-outs: finds the picture's subjects with a segmenter and keeps only them. Holds nothing that
// changes, so one remover serves every job at once.
class BackgroundRemover {
public:
    // The segmenter the program chose for this run (a user's model, else GrabCut).
    BackgroundRemover();
    explicit BackgroundRemover(std::shared_ptr<const ForegroundSegmenter> segmenter);

    const ForegroundSegmenter& segmenter() const { return *segmenter_; }

    // The picture with everything but its subjects clear, same size, scale and orientation; null when
    // no subject was found with confidence or the picture cannot be read.
    ImagePtr removeBackground(const Image& image) const;

    // The cut-out of `image` through `mask` (8-bit, the picture's size or smaller in either axis): the
    // mask stretched to the picture on each axis on its own, softened by a blur of 0.8 pixels and then
    // shrunk by one pixel, so a soft edge stays inside the subject; the picture shown through it over
    // clear. Null for a missing bitmap or mask.
    static ImagePtr cutout(const Image& image, QImage mask);
    // The mask steps alone: stretch, blur, erode, at `size`.
    static QImage preparedMask(const QImage& mask, const QSize& size);
    // The same into `out` (Format_Grayscale8), whose pixels are reused when it already has `size`; `out`
    // may be `mask` itself. The steps alternate with a buffer the calling thread keeps for the next call.
    static void prepareMask(const QImage& mask, const QSize& size, QImage& out);

private:
    std::shared_ptr<const ForegroundSegmenter> segmenter_;
};
