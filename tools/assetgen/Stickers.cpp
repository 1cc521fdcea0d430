// Picture stickers: colour emoji of Noto Color Emoji, chosen to fit each catalogue category.
#include "Common.h"

#include "resources/AssetNames.h"

#include <QFont>
#include <QFontMetrics>
#include <QHash>
#include <QPainter>
#include <cmath>

namespace assetgen {

namespace {

constexpr int stickerSide = 160;
// Noto Color Emoji carries one bitmap strike at 109 pixels a em; drawing at that size avoids resampling.
constexpr int strikeSize = 109;

// Emoji per category, in catalogue order. A "~h" suffix means the glyph with its hue turned by h degrees,
// which gives the butterfly category the many wings it needs.
const QStringList& emojiFor(const QString& prefix) {
    // clang-format off
    static const QHash<QString, QStringList> table{
        {"butterfly",
         QString(
             "🦋 🦋~40 🦋~80 🦋~120 🦋~160 🦋~200 🦋~240 🦋~280 🦋~320 🌸 🌺 🌼 🌻 "
             "🌷 "
             "🌹 "
             "🪷 💐 "
             "🐞 🐝 🐛 🐌 🍀 🌿 🍄 🦋~20 🦋~180 🌸~200 🌺~120 🌼~300 🌷~220")
             .split(' ')},
        {"camera",
         QString(
             "📷 📸 📹 🎥 📽️ 🎞️ 📺 📱 💡 🔦 🖼️ 🎬 🔭 🔬 🕶️ 👓 "
             "🎨 "
             "🖌️ "
             "🖍️ "
             "✏️ 🌅 🌄 🏞️ 🌇 🌆 🌃 🌉 "
             "🗻 🎑 🤳")
             .split(' ')},
        {"car", QString("🚗 🚕 🚙 🚌 🚎 🏎️ 🚓 🚑 🚒 🚐 🛻 🚚 🚛 🚜 🏍️ 🛵 🚲 🛴 🚔 🚍 🚘 🚖 🚡 🚂 "
                        "🚆 "
                        "🚊 "
                        "✈️ "
                        "🚀 "
                        "🛸 ⛽")
                    .split(' ')},
        {"helloween",
         QString(
             "🎃 👻 💀 ☠️ 🦇 🕷️ 🕸️ 🧛 🧟 🧙 🔮 🍬 🍭 🌕 🐈 🪦 ⚰️ "
             "🧹 "
             "🦉 "
             "🌙 🕯️ 👹 👺 👽 🤡 😈 👿 "
             "🍫 🧌 🌑")
             .split(' ')},
        {"holiday", QString("🎄 🎅 🤶 ⛄ ☃️ ❄️ 🎁 🔔 🦌 🌟 ⭐ 🎆 🎇 🏖️ 🌴 ☀️ 🏝️ "
                            "🍹 "
                            "🧳 "
                            "🗺️ "
                            "🎿 "
                            "🏔️ 🏕️ 🎐 🧧 🪔 "
                            "🥂 🍾 🧣 🍪")
                        .split(' ')},
        {"music", QString("🎵 🎶 🎼 🎤 🎧 🎷 🎸 🎹 🎺 🎻 🥁 🪕 🪗 🪘 📻 🔊 🔉 📢 📯 💿 "
                          "📀 "
                          "🎙️ "
                          "🎚️ "
                          "🎛️ "
                          "🕺 💃 🎭 🎫 "
                          "🎟️ 🪩")
                      .split(' ')},
        {"party", QString("🎉 🎊 🎈 🎂 🍰 🧁 🥳 🪅 🍻 🍕 🍿 🎀 👑 ✨ 🎏 🍦 🍩 🥤 🍸 🍷 🎯 "
                          "🎲 "
                          "🃏 "
                          "🪄 "
                          "🍧 "
                          "🍡 "
                          "🍒 🍓 🍉")
                      .split(' ')},
        {"social", QString("👍 ❤️ 💬 📣 🔥 😂 😍 🥰 😎 😜 🤩 😇 🤔 🙌 👏 👋 💯 ✅ 💌 📩 📲 💕 "
                           "😘 "
                           "😊 "
                           "🤗 "
                           "😮 "
                           "😢 "
                           "🤝 💪 🙏")
                       .split(' ')},
        {"sport",
         QString(
             "⚽ 🏀 🏈 ⚾ 🥎 🎾 🏐 🏉 🥏 🎱 🏓 🏸 🏒 🏑 🥍 🏏 ⛳ 🏹 🎣 "
             "🥊 "
             "🥋 "
             "🎽 "
             "🛹 ⛸️ 🏂 🏋️ 🚴 "
             "🏆 🥇")
             .split(' ')},
    };
    // clang-format on
    static const QStringList none;
    const auto it = table.constFind(prefix);
    return it == table.constEnd() ? none : *it;
}

void turnHue(QImage& image, int degrees) {
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const QRgb p = line[x];
            if (qAlpha(p) == 0)
                continue;
            // Premultiplied pixels: undo the alpha, turn, and apply it again.
            QColor c = QColor::fromRgba(qUnpremultiply(p));
            if (c.hsvSaturationF() < 0.15f)
                continue;
            float h, s, v, a;
            c.getHsvF(&h, &s, &v, &a);
            c.setHsvF(std::fmod(h + degrees / 360.0f + 1.0f, 1.0f), s, v, a);
            line[x] = qPremultiply(c.rgba());
        }
    }
}

// Enough opaque pixels to be a glyph of the emoji font. Colour is not asked for: some emoji (a football,
// music notes) are black and white by design.
bool hasGlyphPixels(const QImage& image) {
    int opaque = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            opaque += qAlpha(line[x]) >= 128;
    }
    return opaque > stickerSide * stickerSide / 40;
}

// Without a colour emoji font: a bright badge with the category's initial, so the catalogue stays whole.
QImage drawnSticker(const QString& prefix, int item) {
    QImage image(stickerSide, stickerSide, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(Qt::white, 8));
    p.setBrush(hsv(item * 0.137 + prefix.size() * 0.05, 0.65, 0.95));
    p.drawEllipse(QRectF(14, 14, stickerSide - 28, stickerSide - 28));
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(64);
    font.setBold(true);
    p.setFont(font);
    p.drawText(image.rect(), Qt::AlignCenter, prefix.left(1).toUpper());
    return image;
}

QImage renderSticker(const QString& prefix, int item) {
    const QStringList& emoji = emojiFor(prefix);
    if (item >= emoji.size())
        return drawnSticker(prefix, item);
    const QStringList parts = emoji[item].split(QLatin1Char('~'));
    QImage image(stickerSide, stickerSide, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter p(&image);
        p.setRenderHint(QPainter::SmoothPixmapTransform);
        QFont font(QStringLiteral("Noto Color Emoji"));
        font.setPixelSize(strikeSize);
        // Only the emoji font: a black outline from some other font is no sticker.
        font.setStyleStrategy(QFont::NoFontMerging);
        p.setFont(font);
        if (QFontMetrics(font).inFontUcs4(parts[0].toUcs4().value(0)))
            p.drawText(image.rect(), Qt::AlignCenter, parts[0]);
    }
    if (!hasGlyphPixels(image)) {
        qWarning("assetgen: no colour emoji for %s%d, drawing one", qPrintable(prefix), item + 1);
        return drawnSticker(prefix, item);
    }
    if (parts.size() > 1)
        turnHue(image, parts[1].toInt());
    return image;
}

} // namespace

JobList stickerJobs() {
    JobList jobs;
    for (const AssetNames::NumberedGroup& category : AssetNames::stickerCategories()) {
        for (int i = 0; i < category.count; ++i) {
            const QString prefix = category.prefix;
            jobs.push_back(
                {"stickers", category.name(i) + ".png", [prefix, i](const Context&, const QString& path) {
                     return savePng(renderSticker(prefix, i), path);
                 }});
        }
    }
    return jobs;
}

} // namespace assetgen
