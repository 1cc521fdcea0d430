#pragma once

#include "platform/PdfRenderer.h"

#include <QRectF>
#include <QSizeF>
#include <QString>
#include <optional>
#include <vector>

// The four one-page PDFs the PDF sheets make, as geometry: page size, where the picture goes, the
// crop marks and the note. All in points, origin at the top left of the page.
enum class PdfPageKind { plain, notes, cropMarks, cropMarksWithNote };

struct PdfPageLayout {
    QSizeF page;
    QRectF picture;
    std::vector<QRectF> cropMarks; // in the order they are stroked
    std::optional<QRectF> note;    // where "Page 1 of 1" is written
};

namespace PDFPages {

inline const QString kNoteText = QStringLiteral("Page 1 of 1");
constexpr double kNoteFontSize = 25;
constexpr double kCropMargin = 20.0;

// The page for a picture of `picture` points. The margin counts for the crop mark pages only. The
// notes and crop-with-note pages draw the picture at half size, and the note's place follows the
// picture's size, not the page's.
PdfPageLayout layout(PdfPageKind kind, QSizeF picture, double margin = 0);

// Draws the page for `raster`, shown at `picture` points, into `fileName` in the documents folder,
// replacing an older file. With an ICC profile the file names it as its output intent. The path, or
// nothing after printing why.
struct Intent {
    QByteArray profile;
    int components = 0;
    QString name;
};
std::optional<QString> write(PdfPageKind kind, const PdfRaster& raster, QSizeF picture, double margin,
                             const QString& fileName, const Intent& intent = {});

} // namespace PDFPages
