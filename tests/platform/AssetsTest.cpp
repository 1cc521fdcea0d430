#include "platform/Assets.h"

#include <QDir>
#include <QFile>
#include <QPixmap>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(bytes);
}

void writePicture(const QString& path, QSize size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::blue);
    ASSERT_TRUE(image.save(path)) << path.toStdString();
}

// Empty when the name is not found, so a failed lookup fails only its own check.
QSize pixelSizeOf(const QString& name) {
    const ImagePtr image = Assets::image(name);
    return image ? image->pixelSize() : QSize();
}

class AssetsTest : public ::testing::Test {
protected:
    void SetUp() override { Assets::setSearchPaths({user.path(), bundled.path()}); }
    void TearDown() override { Assets::resetSearchPaths(); }

    QTemporaryDir user;
    QTemporaryDir bundled;
};

} // namespace

TEST_F(AssetsTest, TheFirstFolderThatHasTheNameWins) {
    writePicture(bundled.filePath("star.png"), {10, 10});
    writePicture(bundled.filePath("moon.jpg"), {12, 12});
    writePicture(user.filePath("star.png"), {20, 20});
    EXPECT_EQ(pixelSizeOf("star"), QSize(20, 20));
    EXPECT_EQ(pixelSizeOf("moon"), QSize(12, 12));

    Assets::setSearchPaths({bundled.path(), user.path()});
    EXPECT_EQ(pixelSizeOf("star"), QSize(10, 10));

    // A broken override is passed over for the working picture further down.
    writeFile(bundled.filePath("logo.png"), "not a picture");
    writePicture(user.filePath("logo.png"), {8, 8});
    EXPECT_EQ(pixelSizeOf("logo"), QSize(8, 8));
}

TEST_F(AssetsTest, MissingOrUnreadableNamesGiveNull) {
    writeFile(user.filePath("broken.png"), "not a picture");
    for (const char* name : {"nothing-here", "", "broken"})
        EXPECT_FALSE(Assets::image(name)) << name;
    Assets::setSearchPaths({user.filePath("does-not-exist"), QString()});
    EXPECT_FALSE(Assets::image("broken"));
}

TEST_F(AssetsTest, DensitySuffixGivesTheScaleAndSvgIsRendered) {
    writePicture(bundled.filePath("badge@2x.png"), {20, 30});
    const ImagePtr badge = Assets::image("badge");
    ASSERT_TRUE(badge);
    EXPECT_EQ(badge->scale(), 2.0);
    EXPECT_EQ(badge->size(), QSizeF(10, 15));

    // The sharpest file wins unless the name carries its extension.
    writePicture(bundled.filePath("icon.png"), {10, 10});
    writePicture(bundled.filePath("icon@3x.png"), {30, 30});
    EXPECT_EQ(pixelSizeOf("icon"), QSize(30, 30));
    EXPECT_EQ(Assets::image("icon")->scale(), 3.0);
    EXPECT_EQ(pixelSizeOf("icon.png"), QSize(10, 10));

    writeFile(bundled.filePath("shape.svg"),
              R"(<svg xmlns="http://www.w3.org/2000/svg" width="30" height="20">
                                                   <rect width="30" height="20" fill="#ff0000"/></svg>)");
    const ImagePtr shape = Assets::image("shape");
    ASSERT_TRUE(shape);
    EXPECT_EQ(shape->pixelSize(), QSize(30, 20));
    EXPECT_EQ(shape->bitmap().pixel(15, 10), qRgb(255, 0, 0));
}

TEST_F(AssetsTest, LookupsAreCachedUntilCleared) {
    writePicture(bundled.filePath("sun.png"), {10, 10});
    const ImagePtr first = Assets::image("sun");
    EXPECT_FALSE(Assets::image("cloud"));
    writePicture(user.filePath("sun.png"), {20, 20});
    writePicture(user.filePath("cloud.png"), {5, 5});
    EXPECT_EQ(Assets::image("sun"), first);
    EXPECT_FALSE(Assets::image("cloud")); // misses are remembered too

    Assets::clearCache();
    EXPECT_EQ(pixelSizeOf("sun"), QSize(20, 20));
    EXPECT_TRUE(Assets::image("cloud"));
}

TEST_F(AssetsTest, ResourceUrlNeedsTheRightExtension) {
    writeFile(bundled.filePath("silence.m4a"), "audio");
    const QString silence = QFileInfo(bundled.filePath("silence.m4a")).absoluteFilePath();
    EXPECT_EQ(Assets::resourceURL("silence", "m4a"), silence);
    EXPECT_EQ(Assets::resourceURL("silence", ".m4a"), silence);
    EXPECT_EQ(Assets::resourceURL("silence.m4a", ""), silence);
    EXPECT_FALSE(Assets::resourceURL("silence", ""));
    EXPECT_FALSE(Assets::resourceURL("silence", "mp3"));
}

// A narrow glyph in a wide margin fills the height it is given and keeps its shape, centred.
TEST_F(AssetsTest, SymbolIsCroppedToItsInkAndFitted) {
    QImage glyph(90, 90, QImage::Format_ARGB32_Premultiplied);
    glyph.fill(Qt::transparent);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 10; ++x)
            glyph.setPixel(60 + x, 20 + y, qRgba(255, 255, 255, 255));
    ASSERT_TRUE(glyph.save(bundled.filePath("chevron.left.png")));
    const QIcon icon = Assets::symbol(QStringLiteral("chevron.left"), 18);
    ASSERT_FALSE(icon.isNull());
    const QImage drawn = icon.pixmap(QSize(18, 18), 3.0).toImage().convertToFormat(QImage::Format_ARGB32);
    ASSERT_EQ(drawn.size(), QSize(54, 54));
    int left = 54, right = -1, top = 54, bottom = -1;
    for (int y = 0; y < 54; ++y)
        for (int x = 0; x < 54; ++x)
            if (qAlpha(drawn.pixel(x, y)) > 128) {
                left = std::min(left, x), right = std::max(right, x);
                top = std::min(top, y), bottom = std::max(bottom, y);
            }
    EXPECT_EQ(top, 0);
    EXPECT_EQ(bottom, 53);                      // the full height
    EXPECT_NEAR(right - left + 1, 18, 1);       // a third as wide, as drawn
    EXPECT_NEAR((left + right) / 2.0, 26.5, 1); // centred across
    EXPECT_TRUE(Assets::symbol(QStringLiteral("missing"), 18).isNull());
    QImage empty(20, 20, QImage::Format_ARGB32_Premultiplied);
    empty.fill(Qt::transparent);
    ASSERT_TRUE(empty.save(bundled.filePath("blank.png")));
    EXPECT_TRUE(Assets::symbol(QStringLiteral("blank"), 18).isNull());
}

TEST(AssetsDefaultsTest, UserFolderComesFirstThenTheInstalledOnes) {
    const QByteArray saved = qgetenv("LUMIVEX_ASSETS_DIR");
    qputenv("LUMIVEX_ASSETS_DIR", "/tmp/my-assets");
    const QStringList withOverride = Assets::defaultSearchPaths();
    qunsetenv("LUMIVEX_ASSETS_DIR");
    const QStringList standard = Assets::defaultSearchPaths();
    if (!saved.isNull())
        qputenv("LUMIVEX_ASSETS_DIR", saved);

    ASSERT_GE(withOverride.size(), 3);
    EXPECT_EQ(withOverride.front(), "/tmp/my-assets");
    EXPECT_TRUE(standard.front().endsWith("/lumivex/assets"));
    EXPECT_EQ(withOverride.mid(1), standard.mid(1));
    EXPECT_TRUE(withOverride.last().endsWith("/share/lumivex/assets"));
}
