#include "platform/Assets.h"
#include "resources/AssetNames.h"
#include "resources/IconTable.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFont>
#include <QFontMetrics>
#include <QImage>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

QImage bitmapOf(const QString& name) {
    const ImagePtr image = Assets::image(name);
    return image ? image->bitmap().convertToFormat(QImage::Format_ARGB32) : QImage();
}

QByteArray digestOf(const QImage& image) {
    return QCryptographicHash::hash(
        QByteArrayView(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes()),
        QCryptographicHash::Sha1);
}

bool isColourful(const QImage& image) {
    int coloured = 0;
    for (int y = 0; y < image.height(); y += 2)
        for (int x = 0; x < image.width(); x += 2) {
            const QRgb p = image.pixel(x, y);
            coloured += qAlpha(p) > 200 &&
                        (std::abs(qRed(p) - qGreen(p)) > 40 || std::abs(qGreen(p) - qBlue(p)) > 40);
        }
    return coloured > 100;
}

} // namespace

TEST(ArtworkContent, IconGlyphsExistInTheIconFont) {
    // A wrong code point would quietly fall back to a lettered circle; catch it here.
    QFont font(QStringLiteral("Material Icons"));
    font.setStyleStrategy(QFont::NoFontMerging);
    const QFontMetrics metrics(font);
    for (const QList<IconTable::Icon>* table : {&IconTable::symbols(), &IconTable::tools()})
        for (const IconTable::Icon& icon : *table) {
            if (icon.glyph)
                EXPECT_TRUE(metrics.inFont(QChar(icon.glyph))) << icon.name.toStdString();
            else
                EXPECT_FALSE(icon.badge.isNull())
                    << icon.name.toStdString() << " has neither glyph nor letter";
        }
}

TEST(ArtworkContent, StickersAreColourEmojiAndAllDifferent) {
    QSet<QByteArray> seen;
    for (const AssetNames::NumberedGroup& category : AssetNames::stickerCategories()) {
        int colourful = 0;
        for (const QString& name : category.names()) {
            const QImage sticker = bitmapOf(name);
            ASSERT_FALSE(sticker.isNull()) << name.toStdString();
            colourful += isColourful(sticker);
            EXPECT_FALSE(seen.contains(digestOf(sticker)))
                << name.toStdString() << " repeats another sticker";
            seen.insert(digestOf(sticker));
        }
        // A few emoji are black and white by design (a football, notes); a drawn stand-in set would not
        // be this colourful.
        EXPECT_GE(colourful, category.count * 2 / 3) << category.title.toStdString();
    }
}

TEST(ArtworkContent, PicturesOfOneTableAreAllDifferent) {
    for (const QStringList& table :
         {AssetNames::backgrounds(), AssetNames::templates(), AssetNames::filterThumbnails(),
          AssetNames::mirrorPatterns(), AssetNames::overlays(), AssetNames::overlayThumbnails(),
          AssetNames::classicFrames()}) {
        QSet<QByteArray> seen;
        for (const QString& name : table) {
            const QImage image = bitmapOf(name);
            ASSERT_FALSE(image.isNull()) << name.toStdString();
            EXPECT_FALSE(seen.contains(digestOf(image))) << name.toStdString() << " repeats another picture";
            seen.insert(digestOf(image));
        }
    }
}

TEST(ArtworkContent, UnhyphenatedFrameNamesShowTheSameFrame) {
    for (const QString& alias : AssetNames::classicFrameAliases()) {
        const QString hyphenated = QStringLiteral("frame-") + alias.mid(5);
        ASSERT_TRUE(AssetNames::classicFrames().contains(hyphenated)) << alias.toStdString();
        EXPECT_EQ(digestOf(bitmapOf(alias)), digestOf(bitmapOf(hyphenated))) << alias.toStdString();
    }
}

TEST(ArtworkContent, GeneratorCompletesWithoutTheSamplePhotos) {
    // A machine without opencv-doc still gets every picture, from a drawn stand-in scene.
    QTemporaryDir out, noPhotos;
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "offscreen");
    process.setProcessEnvironment(env);
    process.start(QStringLiteral(LUMIVEX_ASSETGEN),
                  {"--out", out.path(), "--samples", noPhotos.path(), "--only", "layouts"});
    ASSERT_TRUE(process.waitForFinished(120000));
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    const QImage pattern(QDir(out.path()).filePath("pt1.jpg"));
    ASSERT_FALSE(pattern.isNull());
    EXPECT_EQ(pattern.width(), pattern.height());
}
