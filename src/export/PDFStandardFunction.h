#pragma once

#include "platform/Image.h"

#include <QString>
#include <optional>

// The standard PDFs: the picture at its size in points, at full pixel resolution, transparent areas on
// white paper. Each writes a fixed name in the documents folder, replacing the last file.
class PDFStandardFunction {
public:
    static const QString kPlainFileName; // "UntitledPdf.pdf"
    static const QString kNotesFileName; // "NotesPDF.pdf"

    static std::optional<QString> plainPage(const ImagePtr& image);
    // The picture at half size with "Page 1 of 1" below it; `fileName` differs between the sheets.
    static std::optional<QString> notesPage(const ImagePtr& image, const QString& fileName = kNotesFileName);
};
