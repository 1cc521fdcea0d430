#include "export/PDFStandardFunction.h"

#include "export/PDFPageLayout.h"
#include "platform/DeviceColor.h"

const QString PDFStandardFunction::kPlainFileName = QStringLiteral("UntitledPdf.pdf");
const QString PDFStandardFunction::kNotesFileName = QStringLiteral("NotesPDF.pdf");

namespace {
std::optional<QString> writePage(PdfPageKind kind, const ImagePtr& image, const QString& fileName) {
    if (!image)
        return std::nullopt;
    const auto pixels = DeviceColor::toDeviceRGB(image->uprightBitmap(), Qt::white);
    if (!pixels)
        return std::nullopt;
    return PDFPages::write(kind, pixels->raster, image->size(), 0, fileName);
}
} // namespace

std::optional<QString> PDFStandardFunction::plainPage(const ImagePtr& image) {
    return writePage(PdfPageKind::plain, image, kPlainFileName);
}

std::optional<QString> PDFStandardFunction::notesPage(const ImagePtr& image, const QString& fileName) {
    return writePage(PdfPageKind::notes, image, fileName);
}
