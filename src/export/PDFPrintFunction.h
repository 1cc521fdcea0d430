#pragma once

#include "platform/Image.h"
#include "platform/PdfRenderer.h"

#include <QByteArray>
#include <QString>
#include <optional>

// The print PDFs. A picture is first converted into the chosen colour space at scale 1 (a point per
// pixel, so the page grows with the pixel count), and the page then carries those samples as they
// are: DeviceRGB, or real DeviceCMYK. The file names the profile the colours are meant for as its
// output intent when there is one (sRGB for RGB; the installed CMYK profile for CMYK).
class PDFPrintFunction {
public:
    // A converted picture: what is shown of it, and the samples that go into the file.
    struct Converted {
        ImagePtr image; // scale 1, the converted colours as a screen shows them
        PdfRaster raster;
        QByteArray profile;
        QString profileName;
    };

    static const QString kPlainFileName;    // "UntitledPdf.pdf"
    static const QString kNotesFileName;    // "Notes.pdf"
    static const QString kCropFileName;     // "CropMarks.pdf"
    static const QString kCropNoteFileName; // "Crop&Note.pdf"

    // Drawn over black, alpha dropped; nothing for a missing picture.
    static std::optional<Converted> rgbConverted(const ImagePtr& image);
    // Drawn over white paper into CMYK through the installed profile, or the device formula.
    static std::optional<Converted> cmykConverted(const ImagePtr& image);

    static std::optional<QString> plainPage(const Converted& picture);
    static std::optional<QString> notesPage(const Converted& picture);
    static std::optional<QString> cropMarks(const Converted& picture, double margin);
    static std::optional<QString> cropMarksWithNote(const Converted& picture, double margin);
};
