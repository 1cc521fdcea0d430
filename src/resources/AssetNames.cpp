#include "resources/AssetNames.h"

#include "resources/IconTable.h"

namespace AssetNames {

namespace {

QStringList numbered(const QString& prefix, int first, int last) {
    QStringList names;
    for (int i = first; i <= last; ++i)
        names << prefix + QString::number(i);
    return names;
}

} // namespace

QString NumberedGroup::name(int item) const {
    if (item < 0 || item >= count)
        return {};
    return prefix + QString::number(item + 1);
}

QStringList NumberedGroup::names() const {
    return numbered(prefix, 1, count);
}

QStringList filterLookups() {
    return {"Ava",      "Basin",   "Blonde",   "Bluesh",   "Bourbon",  "Bright",  "Butte",
            "Chemical", "Classic", "Clayton",  "Clouseau", "Contrail", "Cool",    "Darker",
            "Darkgrey", "Duetone", "Exposure", "Faded",    "Folger",   "Fusion",  "Glamour",
            "Glamup",   "Glossy",  "Howlite",  "Lenox",    "Light",    "Lighter", "Liner",
            "Lucky",    "Midtone", "Neon",     "Night",    "Selfie",   "Shiny",   "Variance"};
}

QStringList filterThumbnails() {
    return {"habitual",  "heritage", "hollywood", "hot",       "imaging",    "jolly",       "killer",
            "kooky",     "looker",   "lyricism",  "magicgrey", "merry",      "monochromic", "movie",
            "musty",     "nervy",    "noir",      "oyster",    "polestar",   "polkadot",    "premium",
            "retro",     "rose",     "rythm",     "secret",    "sepia",      "shiny",       "shoot",
            "springful", "story",    "sunshiny",  "sweet",     "typography", "winsome",     "wozzy"};
}

QString identityLookup() {
    return QStringLiteral("IdentityLookup");
}

const QList<NumberedGroup>& stickerCategories() {
    static const QList<NumberedGroup> categories{
        {"Butterfly", "butterfly", 30}, {"Camera", "camera", 30},   {"Cars", "car", 30},
        {"Helloween", "helloween", 30}, {"Holiday", "holiday", 30}, {"Music", "music", 30},
        {"Party", "party", 29},         {"Social", "social", 30},   {"Sports", "sport", 29}};
    return categories;
}

QStringList stickers() {
    QStringList names;
    for (const NumberedGroup& category : stickerCategories())
        names << category.names();
    return names;
}

const QList<NumberedGroup>& backgroundCategories() {
    static const QList<NumberedGroup> categories{
        {"Architecture", "architecture", 21}, {"Wallpaper", "wallpaper", 30}, {"Texture", "texture", 30}};
    return categories;
}

QStringList backgrounds() {
    QStringList names;
    for (const NumberedGroup& category : backgroundCategories())
        names << category.names();
    return names;
}

QString templateName(Gender gender, int item) {
    if (item < 0 || item >= templateCount)
        return {};
    const QString prefix =
        gender == Gender::male ? QStringLiteral("malethumb_") : QStringLiteral("femalethumb_");
    return prefix + QString::number(item + 1);
}

QStringList templates() {
    QStringList names;
    for (Gender gender : {Gender::male, Gender::female})
        for (int i = 0; i < templateCount; ++i)
            names << templateName(gender, i);
    return names;
}

QStringList classicFrames() {
    return {"frame-21", "frame-22", "frame-24", "frame-23", "frame-25", "frame-26", "frame-31",
            "frame-32", "frame-33", "frame-34", "frame-35", "frame-36", "frame-41", "frame-42",
            "frame-47", "frame-43", "frame-44", "frame-48", "frame-51", "frame-52", "frame-53",
            "frame-54", "frame-55", "frame-56", "frame-57", "frame-58", "frame-59", "frame-61",
            "frame-64", "frame-62", "frame-63", "frame-65", "frame-66"};
}

QStringList classicFrameAliases() {
    return QStringList{"frame36"} + numbered("frame5", 1, 9) +
           QStringList{"frame61", "frame64", "frame62", "frame63", "frame65", "frame66"};
}

QStringList mirrorPatterns() {
    return numbered("pt", 1, 18);
}

QString overlayName(int index) {
    if (index < 0 || index >= overlayPatternCount)
        return {};
    return QStringLiteral("threed_") + QString::number(index / 2 + 1);
}

QString overlayThumbnailName(int index) {
    if (index < 0 || index >= overlayPatternCount)
        return {};
    return QStringLiteral("pre_threed") + QString::number(index / 2 + 1) + QLatin1Char(index % 2 ? 'b' : 'a');
}

QStringList overlays() {
    return numbered("threed_", 1, overlayPatternCount / 2);
}

QStringList overlayThumbnails() {
    QStringList names;
    for (int i = 0; i < overlayPatternCount; ++i)
        names << overlayThumbnailName(i);
    return names;
}

QStringList formatIcons() {
    return {"ic_jpg", "ic_png", "ic_pdf", "ic_pdfprint", "ic_svg", "ic_mp4", "ic_gif"};
}

QStringList checkboxIcons() {
    return {"ic_checkbox", "ic_checkbox1"};
}

QStringList onboardingPictures() {
    return {"slider1", "slider2", "slider3", "aiblending", "lumivex", "collagestory", "mirroreffect"};
}

QStringList homeSlides() {
    return {"homeslide1", "homeslide2", "homeslide3"};
}

QStringList homeCards() {
    return {"ic_lumivex",      "ic_aiblending", "ic_layoutcollage",
            "ic_mirroreffect", "ic_photomixer", "ic_moreapps"};
}

QStringList stickerHandles() {
    return {"sticker_cross", "sticker_rotate"};
}

QString blankAudioName() {
    return QStringLiteral("Blank Audio");
}

QString blankAudioExtension() {
    return QStringLiteral("mp3");
}

QStringList allPictures() {
    QStringList names;
    names << filterLookups() << identityLookup() << filterThumbnails() << stickers() << backgrounds()
          << templates() << classicFrames() << classicFrameAliases() << mirrorPatterns() << overlays()
          << overlayThumbnails() << formatIcons() << checkboxIcons() << onboardingPictures() << homeSlides()
          << homeCards() << stickerHandles();
    for (const IconTable::Icon& icon : IconTable::symbols())
        names << icon.name;
    for (const IconTable::Icon& icon : IconTable::tools())
        names << icon.name << IconTable::selectedName(icon.name);
    names.removeDuplicates();
    return names;
}

} // namespace AssetNames
