#include "overlay/FontCell.h"
#include "overlay/FontList.h"
#include "overlay/TextEditViewController.h"
#include "resources/FontTable.h"
#include "support/TestSupport.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QGlyphRun>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTextEdit>
#include <QTextLayout>
#include <gtest/gtest.h>

namespace {

// Stands in for the mirror editor: keeps the text and dismisses the entry screen.
class EditorStandIn : public ViewController, public NewTextPassed {
public:
    QStringList added, edited;
    void newTextAdded(const QString& text) override {
        added << text;
        dismiss(true);
    }
    void textEdited(const QString& text) override {
        edited << text;
        dismiss(true);
    }
};

class TextEditTest : public ::testing::Test {
protected:
    void open(const QString& initial, bool doubleTap) {
        editor.resize(390, 844);
        editor.show();
        screen = new TextEditViewController;
        screen->textedited = initial;
        screen->isdoubleTap = doubleTap;
        screen->newtextDelegate = &editor;
        editor.present(screen, true);
        ASSERT_TRUE(testsupport::waitUntil([&] { return screen->isVisible(); }));
    }
    void type(const QString& text) { QTest::keyClicks(screen->inputTextView(), text); }

    EditorStandIn editor;
    QPointer<TextEditViewController> screen;
};

TEST_F(TextEditTest, DoneRefusesOnlyTheEmptyField) {
    open("", false);
    EXPECT_EQ(screen->inputTextView()->height(), static_cast<int>(screen->height() * 0.4));
    QTest::mouseClick(screen->doneButton(), Qt::LeftButton);
    EXPECT_FALSE(screen.isNull());
    EXPECT_TRUE(editor.added.isEmpty());

    type("   ");
    QTest::mouseClick(screen->doneButton(), Qt::LeftButton);
    EXPECT_EQ(editor.added, QStringList{"   "});
    EXPECT_TRUE(testsupport::waitUntil([&] { return !editor.presentedViewController(); }));
}

TEST_F(TextEditTest, AnEditStartsFromTheLabelAndCancelChangesNothing) {
    open("Hello", true);
    EXPECT_EQ(screen->inputTextView()->toPlainText(), "Hello");
    type(" there");
    QTest::mouseClick(screen->cancelButton(), Qt::LeftButton);
    EXPECT_TRUE(testsupport::waitUntil([&] { return !editor.presentedViewController(); }));
    EXPECT_TRUE(editor.edited.isEmpty() && editor.added.isEmpty());

    open("Hello", true);
    type("!");
    QTest::mouseClick(screen->doneButton(), Qt::LeftButton);
    EXPECT_EQ(editor.edited, QStringList{"Hello!"});
    EXPECT_TRUE(editor.added.isEmpty());
}

TEST_F(TextEditTest, TheScreenShowsWhatItCoversBlurred) {
    QPalette palette = editor.palette();
    palette.setColor(QPalette::Window, QColor(200, 30, 30));
    editor.setPalette(palette);
    editor.setAutoFillBackground(true);
    // Blue on the right half: the blur runs the two colours into each other a good way either side of
    // the line between them, and leaves each pure far from it.
    QWidget right(&editor);
    right.setGeometry(195, 0, 195, 844);
    QPalette blue = right.palette();
    blue.setColor(QPalette::Window, QColor(20, 40, 220));
    right.setPalette(blue);
    right.setAutoFillBackground(true);
    open("", false);
    const QImage blurred = screen->blurredBackground();
    ASSERT_FALSE(blurred.isNull());
    const int y = screen->height() / 2;
    const QColor left = blurred.pixelColor(40, y);
    EXPECT_GT(left.red(), 150);
    EXPECT_LT(left.green(), 80);
    EXPECT_LT(left.blue(), 60);
    const QColor nearLine = blurred.pixelColor(195 - 14, y);
    EXPECT_GT(nearLine.blue(), 60) << "the blur reaches well past the line";
    EXPECT_GT(blurred.pixelColor(195 + 14, y).red(), 50);
}

TEST(FontList, TablesRunSideBySideAndCaptionsUseRubik) {
    ASSERT_EQ(FontList::fontNames().size(), FontList::count);
    ASSERT_EQ(FontList::sampleWords().size(), FontList::count);
    EXPECT_EQ(FontList::fontNames()[FontList::captionFontIndex], "Rubik-Bold");
    EXPECT_EQ(FontList::fontNames()[67], "QuantumRegular");
    EXPECT_EQ(FontList::sampleWords()[32], "Chaired");
    EXPECT_EQ(FontList::sampleWords()[33], "Clarity");
    EXPECT_EQ(FontList::sampleWords()[65], "Chaired");
    EXPECT_EQ(FontList::sampleWords()[66], "Change");
    EXPECT_EQ(FontList::sampleWords()[67], "Enjoy");

    FontCell cell;
    cell.resize(cell.sizeHint());
    cell.configure(FontList::captionFontIndex);
    EXPECT_EQ(cell.fontLblName()->text(), "Golden");
    EXPECT_EQ(QFontInfo(cell.fontLblName()->font()).family(), FontTable::face("Rubik-Bold")->family);
    EXPECT_EQ(cell.fontLblName()->palette().color(QPalette::WindowText), QColor(20, 20, 20));
    cell.setSelected(true);
    EXPECT_EQ(cell.fontLblName()->palette().color(QPalette::WindowText), QColor(0xfa, 0xca, 0x16));
}

// Every mapped face is installed, and a caption mixing Latin, emoji, Hebrew and Arabic is drawn without a
// single missing glyph, the faces that lack a script falling back to one that has it.
TEST(FontList, MixedCaptionRendersInEveryFaceWithoutMissingGlyphs) {
    const QString caption = QString::fromUtf8("Hi 😀🎉 שלום עולם مرحبا");
    for (const QString& name : FontList::fontNames()) {
        const QFont font = FontList::font(name, 24);
        EXPECT_EQ(QFontInfo(font).family(), FontTable::face(name)->family) << name.toStdString();
        const QStringList styles = QFontDatabase::styles(FontTable::face(name)->family);
        const bool hasItalic = !styles.filter("Italic").isEmpty();
        EXPECT_EQ(QFontInfo(font).styleName().contains("Italic"), FontTable::face(name)->italic && hasItalic)
            << name.toStdString() << " " << QFontInfo(font).styleName().toStdString();
        QTextLayout layout(caption, font);
        layout.beginLayout();
        layout.createLine();
        layout.endLayout();
        int glyphs = 0;
        for (const QGlyphRun& run : layout.glyphRuns()) {
            for (quint32 index : run.glyphIndexes()) {
                EXPECT_NE(index, 0u) << name.toStdString() << " in "
                                     << run.rawFont().familyName().toStdString();
                ++glyphs;
            }
        }
        EXPECT_GE(glyphs, 18) << name.toStdString();
    }
}

} // namespace
