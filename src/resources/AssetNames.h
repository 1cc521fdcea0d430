#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// Every picture and file name the program looks up through Assets, grouped by the screen that asks for
// it. Names composed at run time (a prefix and a number) have the composing function here too, so the
// tables and the callers cannot drift apart.
namespace AssetNames {

// A family of numbered names: prefix + 1 ... prefix + count.
struct NumberedGroup {
    QString title;
    QString prefix;
    int count = 0;

    QString name(int item) const; // item is zero-based; empty when out of range
    QStringList names() const;
};

// Colour lookup: the 35 lookup pictures (64-cube in a 512 × 512 grid) and their strip thumbnails,
// index for index.
QStringList filterLookups();
QStringList filterThumbnails();
// A lookup picture that maps every colour to itself; bundled for tests and as a neutral look.
QString identityLookup();
constexpr int lookupDimension = 64;

// Sticker catalogue: nine categories in catalogue order.
const QList<NumberedGroup>& stickerCategories();
QStringList stickers(); // all 268, category by category

// Custom background catalogue: "Architecture", "Wallpaper", "Texture".
const QList<NumberedGroup>& backgroundCategories();
QStringList backgrounds();

// AI blend templates: "malethumb_1" ... "femalethumb_40".
enum class Gender { male, female };
constexpr int templateCount = 40;
QString templateName(Gender gender, int item); // item is zero-based
QStringList templates();

// Classic collage frame previews in frame order (frame n is entry n), and the unhyphenated names of
// the controller's per-count lists.
QStringList classicFrames();
QStringList classicFrameAliases();

// Mirror editor: 2D pattern thumbnails, overlays and the overlay strip's cell thumbnails.
QStringList mirrorPatterns();
constexpr int overlayPatternCount = 28;
QString overlayName(int index);          // "threed_k" for indices 2k-2 and 2k-1
QString overlayThumbnailName(int index); // "pre_threedKa" for even, "pre_threedKb" for odd
QStringList overlays();                  // the 14 distinct overlays
QStringList overlayThumbnails();         // the 28 cell thumbnails

// Format chooser icons in chooser order (TIFF really uses "ic_gif"), and the check box pair
// (plain, then ticked).
QStringList formatIcons();
QStringList checkboxIcons();

// First-run pages: the three hero pictures and the four start-card backgrounds.
QStringList onboardingPictures();
// Home screen: carousel slides and the six feature cards.
QStringList homeSlides();
QStringList homeCards();
// Close and rotate handles of a sticker overlay.
QStringList stickerHandles();

// The silent track a picture video is made with: resource "Blank Audio" of type "mp3".
QString blankAudioName();
QString blankAudioExtension();

// Every picture name above, plus the symbol and tool icons of IconTable; no duplicates.
QStringList allPictures();

} // namespace AssetNames
