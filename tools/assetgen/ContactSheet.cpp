// One picture of the whole set, section by section, for a person to judge the artwork at a glance.
#include "Common.h"

#include "resources/AssetNames.h"
#include "resources/IconTable.h"

#include <QDir>
#include <QFont>
#include <QPainter>

namespace assetgen {

namespace {

constexpr int cell = 96, pad = 6, columns = 20, headerHeight = 34;

QImage load(const QDir& dir, const QString& name) {
    for (const QString& file : {name + "@3x.png", name + ".png", name + ".jpg"})
        if (dir.exists(file))
            return QImage(dir.filePath(file));
    return {};
}

struct Section {
    QString title;
    QStringList names;
    bool dark; // transparent artwork reads best on the dark cells the screens use
};

} // namespace

bool writeContactSheet(const QString& assetsDir, const QString& path) {
    const QDir dir(assetsDir);
    QStringList symbols, tools;
    for (const IconTable::Icon& icon : IconTable::symbols())
        symbols << icon.name;
    for (const IconTable::Icon& icon : IconTable::tools())
        tools << icon.name << IconTable::selectedName(icon.name);
    const QList<Section> sections{
        {"Filter thumbnails", AssetNames::filterThumbnails(), false},
        {"Lookup pictures", AssetNames::filterLookups(), false},
        {"Stickers", AssetNames::stickers(), true},
        {"Backgrounds", AssetNames::backgrounds(), false},
        {"Classic frames", AssetNames::classicFrames(), false},
        {"Mirror patterns and overlay cells", AssetNames::mirrorPatterns() + AssetNames::overlayThumbnails(),
         false},
        {"Overlays", AssetNames::overlays(), true},
        {"AI blend templates", AssetNames::templates(), false},
        {"Symbols, tools, formats, handles",
         symbols + tools + AssetNames::formatIcons() + AssetNames::checkboxIcons() +
             AssetNames::stickerHandles(),
         true},
        {"Onboarding and home",
         AssetNames::onboardingPictures() + AssetNames::homeSlides() + AssetNames::homeCards(), false},
    };
    int height = pad;
    for (const Section& s : sections)
        height += headerHeight + int((s.names.size() + columns - 1) / columns) * (cell + pad) + pad;
    QImage sheet(columns * (cell + pad) + pad, height, QImage::Format_RGB32);
    sheet.fill(QColor(236, 236, 240));
    QPainter p(&sheet);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    p.setRenderHint(QPainter::Antialiasing);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(18);
    font.setBold(true);
    int y = pad, missing = 0;
    for (const Section& s : sections) {
        p.setFont(font);
        p.setPen(QColor(30, 30, 40));
        p.drawText(QRect(pad, y, sheet.width(), headerHeight), Qt::AlignVCenter, s.title);
        y += headerHeight;
        for (int i = 0; i < s.names.size(); ++i) {
            const QRect box(pad + (i % columns) * (cell + pad), y + (i / columns) * (cell + pad), cell, cell);
            p.fillRect(box, s.dark ? QColor(32, 32, 32) : Qt::white);
            const QImage image = load(dir, s.names[i]);
            if (image.isNull()) {
                ++missing;
                p.fillRect(box, QColor(255, 0, 80));
                continue;
            }
            const QSize fitted = image.size().scaled(box.size() - QSize(4, 4), Qt::KeepAspectRatio);
            p.drawImage(QRect(box.center() - QPoint(fitted.width() / 2, fitted.height() / 2), fitted), image);
        }
        y += int((s.names.size() + columns - 1) / columns) * (cell + pad) + pad;
    }
    p.end();
    if (missing)
        qWarning("assetgen: %d names have no file in %s", missing, qPrintable(assetsDir));
    return savePng(sheet, path) && missing == 0;
}

} // namespace assetgen
