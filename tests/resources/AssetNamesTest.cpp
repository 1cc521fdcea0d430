#include "resources/AssetNames.h"
#include "platform/Assets.h"
#include "resources/FontTable.h"
#include "resources/IconTable.h"

#include <QColor>
#include <QDir>
#include <QFontDatabase>
#include <QImage>
#include <QSet>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace AssetNames;

namespace {

int countOf(const QList<NumberedGroup>& groups, const QString& title) {
    for (const NumberedGroup& group : groups)
        if (group.title == title)
            return group.count;
    return -1;
}

// Names composed the way the screens compose them at run time.
QStringList composedNames() {
    QStringList names;
    for (Gender gender : {Gender::male, Gender::female})
        for (int i = 0; i < templateCount; ++i)
            names << templateName(gender, i);
    for (int i = 0; i < overlayPatternCount; ++i)
        names << overlayName(i) << overlayThumbnailName(i);
    for (const NumberedGroup& category : stickerCategories())
        for (int i = 0; i < category.count; ++i)
            names << category.name(i);
    for (const NumberedGroup& category : backgroundCategories())
        for (int i = 0; i < category.count; ++i)
            names << category.name(i);
    return names;
}

} // namespace

TEST(AssetNames, TablesHaveTheCatalogueCounts) {
    EXPECT_EQ(filterLookups().size(), 35);
    EXPECT_EQ(filterThumbnails().size(), 35);
    EXPECT_EQ(filterLookups().first(), "Ava");
    EXPECT_EQ(filterThumbnails().last(), "wozzy");

    EXPECT_EQ(stickers().size(), 268);
    EXPECT_EQ(stickerCategories().size(), 9);
    for (const NumberedGroup& category : stickerCategories())
        EXPECT_EQ(category.count, category.title == "Party" || category.title == "Sports" ? 29 : 30)
            << category.title.toStdString();

    EXPECT_EQ(backgrounds().size(), 81);
    EXPECT_EQ(countOf(backgroundCategories(), "Architecture"), 21);
    EXPECT_EQ(countOf(backgroundCategories(), "Wallpaper"), 30);
    EXPECT_EQ(countOf(backgroundCategories(), "Texture"), 30);

    EXPECT_EQ(templates().size(), 80);
    EXPECT_EQ(classicFrames().size(), 33);
    EXPECT_EQ(classicFrameAliases().size(), 16);
    EXPECT_EQ(mirrorPatterns().size(), 18);
    EXPECT_EQ(overlays().size(), 14);
    EXPECT_EQ(overlayThumbnails().size(), 28);
    EXPECT_EQ(formatIcons().size(), 7);
    EXPECT_EQ(FontTable::faces().size(), 68);
}

TEST(AssetNames, NoNameIsClaimedByTwoTables) {
    QStringList listed;
    listed << filterLookups() << identityLookup() << filterThumbnails() << stickers() << backgrounds()
           << templates() << classicFrames() << classicFrameAliases() << mirrorPatterns() << overlays()
           << overlayThumbnails() << formatIcons() << checkboxIcons() << onboardingPictures() << homeSlides()
           << homeCards() << stickerHandles();
    for (const IconTable::Icon& icon : IconTable::symbols())
        listed << icon.name;
    for (const IconTable::Icon& icon : IconTable::tools())
        listed << icon.name << IconTable::selectedName(icon.name);
    EXPECT_EQ(QSet<QString>(listed.begin(), listed.end()).size(), listed.size());
    EXPECT_EQ(allPictures().size(), listed.size());
}

TEST(AssetNames, ComposedNamesFollowTheScreensRules) {
    EXPECT_EQ(templateName(Gender::male, 0), "malethumb_1");
    EXPECT_EQ(templateName(Gender::female, 39), "femalethumb_40");
    EXPECT_TRUE(templateName(Gender::male, 40).isEmpty());
    EXPECT_TRUE(templateName(Gender::female, -1).isEmpty());

    // Neighbouring overlay indices share one picture; the cells tell them apart by a and b.
    EXPECT_EQ(overlayName(0), "threed_1");
    EXPECT_EQ(overlayName(1), "threed_1");
    EXPECT_EQ(overlayName(27), "threed_14");
    EXPECT_EQ(overlayThumbnailName(0), "pre_threed1a");
    EXPECT_EQ(overlayThumbnailName(27), "pre_threed14b");
    EXPECT_TRUE(overlayName(28).isEmpty());

    EXPECT_EQ(stickerCategories().at(8).name(28), "sport29");
    EXPECT_TRUE(stickerCategories().at(8).name(29).isEmpty());
    EXPECT_EQ(backgroundCategories().at(0).name(20), "architecture21");

    // The classic collage's frame order is not the numeric order of the names.
    EXPECT_EQ(classicFrames().at(2), "frame-24");
    EXPECT_EQ(classicFrames().at(14), "frame-47");
    EXPECT_EQ(classicFrames().at(28), "frame-64");
}

TEST(AssetNames, EveryNameResolvesThroughAssets) {
    Assets::resetSearchPaths();
    QStringList missing;
    for (const QString& name : allPictures() + composedNames())
        if (!Assets::image(name))
            missing << name;
    EXPECT_TRUE(missing.isEmpty()) << missing.join(", ").toStdString();
    EXPECT_TRUE(Assets::resourceURL(blankAudioName(), blankAudioExtension()).has_value());
}

TEST(AssetNames, SymbolsUsedByTheScreensHaveIcons) {
    for (const char* name : {"chevron.left", "chevron.down", "chevron.up", "checkmark.circle.fill", "trash",
                             "wind", "square.3.layers.3d", "xmark", "sparkles",
                             "arrow.left.and.right.righttriangle.left."
                             "righttriangle.right"})
        EXPECT_NE(IconTable::symbol(name), nullptr) << name;
    EXPECT_EQ(IconTable::symbol("no.such.symbol"), nullptr);
    EXPECT_EQ(IconTable::selectedName("ic_filter"), "ic_filter1");
}

TEST(AssetNames, AUserFolderOverridesGeneratedPictures) {
    QTemporaryDir user;
    ASSERT_TRUE(user.isValid());
    // Generated icons are @3x files; a plain file in the user's folder still wins, since folders are
    // searched before densities.
    QImage red(8, 8, QImage::Format_RGB32);
    red.fill(Qt::red);
    ASSERT_TRUE(red.save(QDir(user.path()).filePath("trash.png")));
    ASSERT_TRUE(red.save(QDir(user.path()).filePath("Ava.png")));
    Assets::setSearchPaths({user.path(), QStringLiteral(LUMIVEX_BUILD_ASSETS_DIR)});
    for (const char* name : {"trash", "Ava"}) {
        const ImagePtr image = Assets::image(name);
        ASSERT_TRUE(image) << name;
        EXPECT_EQ(image->uprightBitmap().size(), QSize(8, 8)) << name;
    }
    EXPECT_TRUE(Assets::image("wozzy")); // names the user did not replace still come from the build
    Assets::resetSearchPaths();
}

TEST(FontTable, NamesStayAndEveryFaceIsInstalled) {
    const QList<FontTable::Face>& faces = FontTable::faces();
    EXPECT_EQ(faces.at(0).name, "Helvetica Neue");
    EXPECT_EQ(faces.at(6).name, "Rubik-Bold");
    EXPECT_EQ(faces.at(67).name, "QuantumRegular");
    ASSERT_NE(FontTable::face("AsimovWid"), nullptr);
    EXPECT_EQ(FontTable::face("Unknown Font"), nullptr);

    const QStringList installed = QFontDatabase::families();
    QSet<QString> families;
    for (const FontTable::Face& face : faces) {
        EXPECT_TRUE(installed.contains(face.family))
            << face.family.toStdString() << " from " << face.package.toStdString();
        families << face.family;
    }
    // The list is meant to look varied, not one face under many names.
    EXPECT_GE(families.size(), 25);
}
