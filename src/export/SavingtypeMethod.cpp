#include "export/SavingtypeMethod.h"

#include <algorithm>

const QStringList& savingTypeTitles() {
    static const QStringList titles = {QStringLiteral("JPG"),          QStringLiteral("PNG"),
                                       QStringLiteral("PDF Standard"), QStringLiteral("PDF Print"),
                                       QStringLiteral("SVG"),          QStringLiteral("MP4 Video"),
                                       QStringLiteral("TIFF")};
    return titles;
}

const QStringList& savingTypeDescriptions() {
    static const QStringList descriptions = {QStringLiteral("Best for sharing"),
                                             QStringLiteral("Best for complex images, illustrations"),
                                             QStringLiteral("Best for document (and emailing)"),
                                             QStringLiteral("Best for printing"),
                                             QStringLiteral("Best for web design and animations"),
                                             QStringLiteral("High quality video"),
                                             QStringLiteral("Store raster graphics information.")};
    return descriptions;
}

const QStringList& savingTypeIconNames() {
    // The TIFF row really uses the GIF icon.
    static const QStringList icons = {QStringLiteral("ic_jpg"), QStringLiteral("ic_png"),
                                      QStringLiteral("ic_pdf"), QStringLiteral("ic_pdfprint"),
                                      QStringLiteral("ic_svg"), QStringLiteral("ic_mp4"),
                                      QStringLiteral("ic_gif")};
    return icons;
}

SavingtypeMethod savingTypeForRow(int row) {
    return static_cast<SavingtypeMethod>(std::clamp(row, 0, savingtypeMethodCount - 1));
}
