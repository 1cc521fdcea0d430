#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QSizeF>
#include <QString>
#include <cstdint>
#include <memory>
#include <optional>

// How the stored pixels must be turned to be seen upright. The raw values are the phone's, so tables
// and saved state that hold them as integers keep their meaning.
enum class ImageOrientation : int {
    up = 0,
    down = 1,
    left = 2,
    right = 3,
    upMirrored = 4,
    downMirrored = 5,
    leftMirrored = 6,
    rightMirrored = 7,
};

// The EXIF orientation tag (1…8) for an orientation, and back; values outside 1…8 give nothing.
int exifOrientation(ImageOrientation orientation);
std::optional<ImageOrientation> orientationFromExif(int exifValue);

class Image;
using ImagePtr = std::shared_ptr<const Image>;
class PhotoMemoryBudget;

// How big a picture read from a file should come out.
struct DecodeOptions {
    // The box the picture must still cover, either way round: its longer side at least the box's longer
    // side, its shorter at least the shorter, both scaled alike. Empty for the full stored size.
    QSize coverSize;
    // Charged with the decoded pixels, and with a full-size step on the way for formats that cannot
    // decode reduced. Without one nothing is counted.
    PhotoMemoryBudget* budget = nullptr;
    // When the budget cannot hold the wanted size, the picture is decoded smaller, down to this fraction
    // of each wanted side; below it the picture is refused.
    double smallestFraction = 0.5;
    double scale = 1.0;
};

// Where a picture read from a file came from, so that a reduced one can go back for all its pixels.
struct ImageSource {
    QString path;
    QSize fullPixelSize; // as stored in the file, not turned
};

// An immutable bitmap with a scale (pixels per point) and an orientation flag. Shared by pointer; two
// images are the same image only when they are the same pointer.
//
// The stored bitmap is always Format_ARGB32_Premultiplied when it has alpha and Format_RGB32 otherwise,
// with a device pixel ratio of 1, so pixel code can rely on 32-bit pixels.
class Image {
public:
    // Pictures above this many pixels are refused before anything is allocated for them.
    static constexpr std::int64_t maxPixelCount = 200'000'000;

    // Null for a null bitmap or a scale that is not a positive finite number.
    static ImagePtr make(QImage bitmap, double scale = 1.0,
                         ImageOrientation orientation = ImageOrientation::up);

    // Decodes a picture file (JPEG, PNG, TIFF, WebP, BMP, GIF, and whatever else Qt reads) without
    // turning it: the EXIF orientation becomes the orientation flag. Null on any failure, with the
    // reason in `error` when given.
    static ImagePtr fromFile(const QString& path, double scale = 1.0, QString* error = nullptr);
    static ImagePtr fromData(const QByteArray& data, double scale = 1.0, QString* error = nullptr);

    // The same decode at a reduced size where `options` ask for one. JPEG is reduced inside the
    // decoder's inverse transform; PNG, WebP and SVG are read reduced by their readers; other formats
    // are decoded whole and then scaled. The pixel limit, truncation checks and orientation flag are
    // those of the full decode. A budget that cannot hold even the smallest allowed size refuses the
    // picture, saying how much the held photos take.
    static ImagePtr fromFile(const QString& path, const DecodeOptions& options, QString* error = nullptr);

    // The picture with every pixel of its file, read again when this one was decoded reduced; the
    // picture itself when it is already whole or did not come from a file. When the file cannot be read
    // any more, has changed, or `budget` cannot hold it whole, the largest that can be had is returned,
    // at worst the picture itself, with the reason in `error`. Keeps this picture's orientation and scale.
    static ImagePtr fullResolution(const ImagePtr& image, PhotoMemoryBudget* budget = nullptr,
                                   QString* error = nullptr);

    // The pixels as stored, not turned by the orientation.
    const QImage& bitmap() const { return bitmap_; }
    double scale() const { return scale_; }
    ImageOrientation orientation() const { return orientation_; }
    QSize pixelSize() const { return bitmap_.size(); }

    // The file this picture was read from, or null.
    const ImageSource* source() const;
    // Read from a file at fewer pixels than the file holds.
    bool isReduced() const;

    // Size in points: the upright pixel size divided by the scale.
    QSizeF size() const;

    // The pixels as they are drawn, orientation applied. Shares the stored bitmap when upright.
    QImage uprightBitmap() const;

    // The same pixels (shared, not copied) under another orientation and scale.
    ImagePtr withOrientation(ImageOrientation orientation, double scale) const;

    // Upright pixels as JPEG; quality 0…1 (clamped). Transparent areas are flattened onto white, which
    // is how such pictures look in the editor and most viewers. Empty on failure.
    QByteArray jpegData(double quality) const;

    // Upright pixels as PNG, alpha kept. Empty on failure.
    QByteArray pngData() const;

private:
    // Shared by every image over the same decoded pixels: where they came from and the budget's hold
    // on their bytes, given back when the last of those images goes.
    struct Provenance;

    Image(QImage bitmap, double scale, ImageOrientation orientation);

    QImage bitmap_;
    double scale_;
    ImageOrientation orientation_;
    std::shared_ptr<const Provenance> provenance_;
};
