#include "export/PDFPrintFunction.h"

#include "export/PDFPageLayout.h"
#include "platform/DeviceColor.h"

const QString PDFPrintFunction::kPlainFileName = QStringLiteral("UntitledPdf.pdf");
const QString PDFPrintFunction::kNotesFileName = QStringLiteral("Notes.pdf");
const QString PDFPrintFunction::kCropFileName = QStringLiteral("CropMarks.pdf");
const QString PDFPrintFunction::kCropNoteFileName = QStringLiteral("Crop&Note.pdf");

namespace {

std::optional<PDFPrintFunction::Converted> made(std::optional<DeviceColor::Converted> pixels) {
    if (!pixels)
        return std::nullopt;
    ImagePtr shown = Image::make(std::move(pixels->shown), 1.0);
    if (!shown)
        return std::nullopt;
    return PDFPrintFunction::Converted{std::move(shown), std::move(pixels->raster),
                                       std::move(pixels->profile), std::move(pixels->profileName)};
}

std::optional<QString> writePage(PdfPageKind kind, const PDFPrintFunction::Converted& picture, double margin,
                                 const QString& fileName) {
    if (!picture.image || !picture.raster.isValid())
        return std::nullopt;
    const int components = picture.raster.space == PdfRaster::Space::deviceCMYK ? 4 : 3;
    return PDFPages::write(kind, picture.raster, picture.image->size(), margin, fileName,
                           PDFPages::Intent{picture.profile, components, picture.profileName});
}

} // namespace

std::optional<PDFPrintFunction::Converted> PDFPrintFunction::rgbConverted(const ImagePtr& image) {
    if (!image)
        return std::nullopt;
    return made(DeviceColor::toDeviceRGB(image->uprightBitmap(), Qt::black));
}

std::optional<PDFPrintFunction::Converted> PDFPrintFunction::cmykConverted(const ImagePtr& image) {
    if (!image)
        return std::nullopt;
    return made(DeviceColor::toDeviceCMYK(image->uprightBitmap()));
}

std::optional<QString> PDFPrintFunction::plainPage(const Converted& picture) {
    return writePage(PdfPageKind::plain, picture, 0, kPlainFileName);
}

std::optional<QString> PDFPrintFunction::notesPage(const Converted& picture) {
    return writePage(PdfPageKind::notes, picture, 0, kNotesFileName);
}

std::optional<QString> PDFPrintFunction::cropMarks(const Converted& picture, double margin) {
    return writePage(PdfPageKind::cropMarks, picture, margin, kCropFileName);
}

std::optional<QString> PDFPrintFunction::cropMarksWithNote(const Converted& picture, double margin) {
    return writePage(PdfPageKind::cropMarksWithNote, picture, margin, kCropNoteFileName);
}
