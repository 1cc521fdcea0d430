#include "export/PDFPageLayout.h"

#include "platform/Documents.h"
#include "platform/Log.h"

namespace PDFPages {

namespace {
constexpr double kNoteBand = 50;
constexpr double kNoteWidth = 150;
constexpr double kNoteHeight = 30;
constexpr double kMarkLength = 10;
constexpr double kMarkThickness = 0.5;

// Eight short marks at the corners of the trim box, a margin in from the page's edges.
std::vector<QRectF> marks(QSizeF page, double m) {
    const double W = page.width();
    const double H = page.height();
    const double a = m - 0.25;
    const double b = W - m + 0.25;
    const double c = H - m - 0.25;
    return {
        QRectF(0, a, kMarkLength, kMarkThickness),
        QRectF(a, 0, kMarkThickness, kMarkLength),
        QRectF(W - kMarkLength, a, kMarkLength, kMarkThickness),
        QRectF(b, 0, kMarkThickness, kMarkLength),
        QRectF(0, c, kMarkLength, kMarkThickness),
        QRectF(a, H - kMarkLength, kMarkThickness, kMarkLength),
        QRectF(W - kMarkLength, c, kMarkLength, kMarkThickness),
        QRectF(b, H - kMarkLength, kMarkThickness, kMarkLength),
    };
}
} // namespace

PdfPageLayout layout(PdfPageKind kind, QSizeF picture, double margin) {
    const double w = picture.width();
    const double h = picture.height();
    const QRectF note(w - kNoteWidth, h, kNoteWidth, kNoteHeight);
    PdfPageLayout out;
    switch (kind) {
    case PdfPageKind::plain:
        out.page = picture;
        out.picture = QRectF(0, 0, w, h);
        break;
    case PdfPageKind::notes:
        out.page = QSizeF(w, h + 2 * kNoteBand);
        out.picture = QRectF(w / 4, kNoteBand, w / 2, h / 2);
        out.note = note;
        break;
    case PdfPageKind::cropMarks:
        out.page = QSizeF(w + 2 * margin, h + 2 * margin);
        out.picture = QRectF(margin, margin, w, h);
        out.cropMarks = marks(out.page, margin);
        break;
    case PdfPageKind::cropMarksWithNote: {
        out.page = QSizeF(w + 2 * margin, h + 2 * margin + kNoteBand);
        const double W = out.page.width();
        out.picture = QRectF(W / 4, kNoteBand, W / 2, (h + 2 * margin) / 2);
        out.cropMarks = marks(out.page, margin);
        out.note = note;
        break;
    }
    }
    return out;
}

std::optional<QString> write(PdfPageKind kind, const PdfRaster& raster, QSizeF picture, double margin,
                             const QString& fileName, const Intent& intent) {
    const PdfPageLayout page = layout(kind, picture, margin);
    PdfRenderer renderer(page.page);
    if (!intent.profile.isEmpty())
        renderer.setOutputIntent(intent.profile, intent.components, intent.name);
    const QString path = Documents::fileURL(fileName);
    const PdfRenderer::Result result = renderer.writePDF(path, [&](PdfRenderer::Context& context) {
        context.beginPage();
        context.drawImage(raster, page.picture);
        if (page.note)
            context.drawText(kNoteText, *page.note, kNoteFontSize, Qt::black);
        context.setStrokeColor(Qt::black);
        for (const QRectF& mark : page.cropMarks)
            context.strokeRect(mark);
    });
    if (!result.ok) {
        printLine(("Could not create PDF file: " + result.error).toStdString());
        return std::nullopt;
    }
    return path;
}

} // namespace PDFPages
