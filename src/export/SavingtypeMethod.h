#pragma once

#include "platform/Image.h"

#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>

// The formats a picture can be saved in; the raw value is the row of the format chooser.
enum class SavingtypeMethod : std::uint8_t { JPG = 0, PNG, PDFStandard, PDFPrint, SVG, MP4Video, TIFF };

inline constexpr int savingtypeMethodCount = 7;

// Parallel lists of the chooser's rows.
const QStringList& savingTypeTitles();
const QStringList& savingTypeDescriptions();
const QStringList& savingTypeIconNames();

// A chooser row as a format: rows past the last one count as the last (TIFF).
SavingtypeMethod savingTypeForRow(int row);

// What a finished save hands to the share screen.
struct SaveModelDetails {
    ImagePtr shareimage;
    std::optional<QString> sharedURL; // the written file; absent for JPG only
    SavingtypeMethod saveType = SavingtypeMethod::JPG;
};
