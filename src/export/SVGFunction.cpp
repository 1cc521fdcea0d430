#include "export/SVGFunction.h"

#include "export/RasterExport.h"
#include "platform/Log.h"

#include <QSaveFile>
#include <QUrl>

QString SVGFunction::svgText(const ImagePtr& image, double width, double height) {
    if (!image)
        return {};
    const QByteArray png = image->pngData();
    if (png.isEmpty())
        return {};
    const QString w = RasterExport::decimalDescription(width);
    const QString h = RasterExport::decimalDescription(height);
    // Byte for byte: line feeds only, four blanks before the element, no line feed at the end.
    return QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n") +
           QStringLiteral("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%1\" height=\"%2\" viewBox=\"0 "
                          "0 %1 %2\">\n")
               .arg(w, h) +
           QStringLiteral("    <image href=\"data:image/png;base64,") + QString::fromLatin1(png.toBase64()) +
           QStringLiteral("\" width=\"%1\" height=\"%2\" />\n").arg(w, h) + QStringLiteral("</svg>");
}

std::optional<QString> SVGFunction::writeText(const QString& text, const QString& path) {
    const QByteArray bytes = text.toUtf8();
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        printLine(("Failed to save SVG file: " + path + ": " + file.errorString()).toStdString());
        return std::nullopt;
    }
    printLine(("SVG file saved to: " + QUrl::fromLocalFile(path).toString()).toStdString());
    return path;
}
