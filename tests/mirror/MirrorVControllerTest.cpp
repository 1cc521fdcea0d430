#include "mirror/MirrorVController.h"
#include "export/ExportScreens.h"
#include "export/SavingTypeController.h"
#include "filters/LookCubeCache.h"
#include "mirror/CaptionLabelView.h"
#include "mirror/ColorSwatchStripView.h"
#include "mirror/EditBtnCell.h"
#include "mirror/MirrorCanvasView.h"
#include "mirror/MirrorScreens.h"
#include "overlay/FontCell.h"
#include "overlay/OverlayScreens.h"
#include "overlay/TextEditViewController.h"
#include "platform/Alert.h"
#include "platform/Animations.h"
#include "platform/AppWindow.h"
#include "platform/Screen.h"
#include "platform/Storyboard.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QPointer>
#include <QScopeGuard>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QVariantAnimation>
#include <gtest/gtest.h>

namespace {

ImagePtr samplePhoto() {
    return Image::fromFile(QDir(QStringLiteral(LUMIVEX_SAMPLES_DIR)).filePath(QStringLiteral("baboon.jpg")));
}

class MirrorEditorTest : public ::testing::Test {
protected:
    void SetUp() override {
        registerExportScreens();
        registerOverlayScreens();
        registerMirrorScreens();
        Screen::main().setScale(3.0);
        window.resize(390, 844);
        window.setRootViewController(home = new ViewController);
        window.show();
        editor = Storyboard::instantiate<MirrorVController>(QStringLiteral("Main"),
                                                            QStringLiteral("MirrorVController"));
        editor->setModalPresentationStyle(ModalPresentationStyle::overCurrentContext);
        editor->selectedImage = MirrorVController::scaledToFit(samplePhoto(), 390);
        home->present(editor, false);
        ASSERT_TRUE(editor->isViewLoaded());
    }
    // A caption as the text screen hands it over.
    CaptionLabelView* addCaption(const QString& text) {
        editor->newTextAdded(text);
        return editor->currentLabel();
    }

    AppWindow window;
    ViewController* home = nullptr;
    MirrorVController* editor = nullptr;
};

TEST_F(MirrorEditorTest, StartsOnTheFirstPatternWithNoToolChosen) {
    EXPECT_EQ(editor->containerView()->showingPattern(), 0);
    EXPECT_EQ(editor->toolBtnSelect, MirrorVController::noTool);
    for (EditBtnCell* cell : editor->toolCells())
        EXPECT_FALSE(cell->isShownSelected());
    EXPECT_EQ(editor->mirrorPatternScrollViewCount, 17);
    editor->didSelectTool(2);
    EXPECT_TRUE(editor->toolCells()[2]->isShownSelected());
    EXPECT_TRUE(editor->isPanelShown(MirrorVController::Panel::filter));
    // One panel at a time.
    editor->didSelectTool(0);
    EXPECT_FALSE(editor->isPanelShown(MirrorVController::Panel::filter));
    EXPECT_DOUBLE_EQ(editor->panelConstant(MirrorVController::Panel::filter), 300);
}

// With real timing, a tool chosen while panels are still sliding stops their slides: one animation per
// moving panel, each panel comes to rest where it belongs, and no animation outlives its slide or the editor.
TEST_F(MirrorEditorTest, PanelsSwitchedMidSlideComeToRestWithoutLeftoverAnimations) {
    Animations::setInstant(false);
    const auto instantAgain = qScopeGuard([] { Animations::setInstant(true); });
    using Panel = MirrorVController::Panel;
    const auto animations = [&](bool runningOnly) {
        int count = 0;
        for (auto* a : editor->findChildren<QVariantAnimation*>(Qt::FindDirectChildrenOnly))
            count += !runningOnly || a->state() == QAbstractAnimation::Running;
        return count;
    };
    editor->didSelectTool(2);
    EXPECT_EQ(animations(true), 1);
    editor->didSelectTool(0); // the look panel turns back halfway, the pattern panel comes up
    EXPECT_EQ(animations(true), 2);
    editor->didSelectTool(2);
    EXPECT_EQ(animations(true), 2);
    EXPECT_TRUE(testsupport::waitUntil([&] {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return animations(false) == 0;
    }));
    const int bottom = editor->height();
    EXPECT_EQ(editor->panelView(Panel::filter)->geometry().bottom() + 1, bottom);
    EXPECT_EQ(editor->panelView(Panel::mirrorPattern)->geometry().bottom() + 1, bottom + 300);

    editor->didSelectTool(5);
    const QPointer<QVariantAnimation> sliding = editor->findChild<QVariantAnimation*>();
    ASSERT_TRUE(sliding);
    delete editor;
    editor = nullptr;
    EXPECT_FALSE(sliding);
}

// Caps twice gives the lower case form; Align steps centre, left, right and back; every tool acts on
// the caption of the current tag only and raises it.
TEST_F(MirrorEditorTest, CaptionToolsActOnTheCurrentTagOnly) {
    CaptionLabelView* first = addCaption(QStringLiteral("Lake Side"));
    CaptionLabelView* second = addCaption(QStringLiteral("12 ab"));
    ASSERT_NE(first, second);
    EXPECT_EQ(editor->tagValue, second->tag());
    editor->didSelectTextTool(5);
    EXPECT_EQ(second->text(), QStringLiteral("12 AB"));
    editor->didSelectTextTool(5);
    EXPECT_EQ(second->text(), QStringLiteral("12 ab"));
    EXPECT_EQ(first->text(), QStringLiteral("Lake Side"));
    std::vector<Qt::Alignment> steps;
    for (int i = 0; i < 3; ++i) {
        editor->didSelectTextTool(3);
        steps.push_back(second->textAlignment() & Qt::AlignHorizontal_Mask);
    }
    EXPECT_EQ(steps, (std::vector<Qt::Alignment>{Qt::AlignLeft, Qt::AlignRight, Qt::AlignHCenter}));

    // Tapping the first overlay makes its caption the current one and raises it over the second.
    StickerView* firstOverlay = editor->allStickerView[0];
    editor->stickerViewDidTap(firstOverlay);
    EXPECT_EQ(editor->tagValue, first->tag());
    editor->sliderACtion(0.4);
    EXPECT_DOUBLE_EQ(first->alpha(), 0.4);
    EXPECT_DOUBLE_EQ(firstOverlay->opacity(), 1.0); // the handles stay solid
    EXPECT_GT(firstOverlay->zValue(), editor->allStickerView[1]->zValue());
    editor->buttonTapped(colorFromHex(ColorSwatchStripView::swatchTable()[0]));
    EXPECT_EQ(first->textColor(), QColor(0, 0, 12)); // "color-wheel" is a colour like any other

    // A tag with no caption: nothing happens.
    editor->tagValue = 99;
    editor->didSelectTextTool(5);
    EXPECT_EQ(first->text(), QStringLiteral("Lake Side"));
}

TEST_F(MirrorEditorTest, FontListSetsThirtyPointsWhateverTheCaptionSize) {
    CaptionLabelView* label = addCaption(QStringLiteral("Grow"));
    StickerView* overlay = editor->allStickerView.front();
    overlay->setBounds(QRectF(overlay->bounds().topLeft(), overlay->bounds().size() * 2));
    editor->stickerViewDidChangeRotating(overlay);
    EXPECT_GT(label->font().pixelSize(), 40);
    editor->didSelectFont(20);
    EXPECT_EQ(label->font().pixelSize(), 30);
    // The chosen font glides to the middle of the list.
    QScrollArea* list = editor->fontCollectionView();
    testsupport::waitUntil([&] { return list->horizontalScrollBar()->value() > 0; });
    const FontCell* chosen = editor->fontCells()[20];
    const int centre = chosen->x() + chosen->width() / 2 - list->horizontalScrollBar()->value();
    EXPECT_NEAR(centre, list->viewport()->width() / 2, 1);
    editor->fontCancelAction();
    EXPECT_EQ(label->fontName(), QStringLiteral("Rubik-Bold"));
}

// A look goes to the pane tapped last, or to the first pane when none was tapped; a new pattern brings
// the plain picture back.
TEST_F(MirrorEditorTest, LooksGoToOnePaneAndGoWithTheNextPattern) {
    MirrorCanvasView* canvas = editor->containerView();
    const ImagePtr plain = canvas->showingPanes()[0]->imageView()->image();
    editor->FilterButtonTapped(3);
    EXPECT_NE(canvas->showingPanes()[0]->imageView()->image(), plain);
    const ImagePtr second = canvas->showingPanes()[1]->imageView()->image();
    editor->imageTapped(canvas->showingPanes()[1]->imageView());
    editor->FilterButtonTapped(5);
    EXPECT_NE(canvas->showingPanes()[1]->imageView()->image(), second);
    editor->PatternsActionTapped(0);
    EXPECT_EQ(canvas->showingPanes()[0]->imageView()->image(), plain);
    editor->FilterButtonTapped(99); // outside the table: ignored
    EXPECT_EQ(canvas->showingPanes()[0]->imageView()->image(), plain);
}

TEST_F(MirrorEditorTest, GalleryTakesTheFirstPictureAndPassesOverVideos) {
    editor->didSelectHighMirror(5);
    const ImagePtr photo = samplePhoto();
    editor->pickedFiles({MediaItem{QStringLiteral("/tmp/clip.mp4"), MediaType::video, nullptr},
                         MediaItem{QStringLiteral("/tmp/b.jpg"), MediaType::image, photo}});
    EXPECT_EQ(editor->selectedImage, photo);
    // The overlay pattern is rebuilt with the new picture: the odd index lies over the second pattern.
    EXPECT_EQ(editor->containerView()->showingPattern(), 1);
    EXPECT_NE(editor->containerView()->overlayView(), nullptr);
    editor->pickedFiles({MediaItem{QStringLiteral("/tmp/clip.mp4"), MediaType::video, nullptr}});
    EXPECT_EQ(editor->selectedImage, photo);
}

// Saving takes the picture without handles and leaves every overlay where it was.
TEST_F(MirrorEditorTest, SaveHidesHandlesAndOpensTheChooser) {
    addCaption(QStringLiteral("Hello"));
    editor->stickerPicked(samplePhoto());
    EXPECT_EQ(editor->containerView()->stickersOnCanvas().size(), 2);
    editor->saveButton();
    for (StickerView* sticker : editor->containerView()->stickersOnCanvas())
        EXPECT_FALSE(sticker->showEditingHandlers);
    EXPECT_NE(qobject_cast<SavingTypeController*>(editor->presentedViewController()), nullptr);
}

// A double-click on a caption opens the text entry on its text; what comes back replaces it.
TEST_F(MirrorEditorTest, DoubleTapRewritesTheCaptionInPlace) {
    CaptionLabelView* first = addCaption(QStringLiteral("One"));
    addCaption(QStringLiteral("Two"));
    const QSizeF size = first->size();
    editor->doubleTapped(editor->allStickerView[0]);
    auto* entry = qobject_cast<TextEditViewController*>(editor->presentedViewController());
    ASSERT_NE(entry, nullptr);
    EXPECT_TRUE(entry->isdoubleTap);
    EXPECT_EQ(entry->textedited, QStringLiteral("One"));
    editor->textEdited(QStringLiteral("A much longer first caption"));
    EXPECT_EQ(first->text(), QStringLiteral("A much longer first caption"));
    EXPECT_EQ(first->size(), size);
    EXPECT_LT(first->fittedPointSize(), first->font().pixelSize());
    EXPECT_EQ(editor->stickerLblArr[1]->text(), QStringLiteral("Two"));
}

TEST_F(MirrorEditorTest, BackAsksAndEditKeepsEverything) {
    addCaption(QStringLiteral("Stay"));
    editor->PatternsActionTapped(7);
    editor->backButton();
    auto* alert = qobject_cast<Alert*>(editor->presentedViewController());
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->title(), QStringLiteral("Warning!!!"));
    EXPECT_EQ(alert->message(), QStringLiteral("Editing will be lost!"));
    alert->triggerAction(QStringLiteral("Edit"));
    EXPECT_EQ(editor->containerView()->showingPattern(), 7);
    EXPECT_EQ(editor->containerView()->stickersOnCanvas().size(), 1);
    editor->backButton();
    qobject_cast<Alert*>(editor->presentedViewController())->triggerAction(QStringLiteral("OK"));
    EXPECT_TRUE(testsupport::waitUntil([&] { return home->presentedViewController() == nullptr; }));
}

// The home screen's intake: the longer side becomes the screen's width, whatever the photo's size.
TEST(MirrorIntake, FitsTinyAndVeryWidePhotosIntoTheSquare) {
    Screen::main().setScale(3.0);
    const ImagePtr dot = Image::make(QImage(1, 1, QImage::Format_RGB32));
    const ImagePtr tiny = MirrorVController::scaledToFit(dot, 390);
    ASSERT_TRUE(tiny);
    EXPECT_EQ(tiny->size(), QSizeF(390, 390));
    EXPECT_EQ(tiny->pixelSize(), QSize(1170, 1170));
    QImage strip(20000, 40, QImage::Format_RGB32);
    strip.fill(Qt::red);
    const ImagePtr wide = MirrorVController::scaledToFit(Image::make(strip), 390);
    ASSERT_TRUE(wide);
    EXPECT_NEAR(wide->size().width(), 390, 1e-9);
    EXPECT_EQ(wide->pixelSize(), QSize(1170, 2)); // never less than one pixel high
    EXPECT_EQ(MirrorVController::scaledToFit(nullptr, 390), nullptr);

    // Either photo makes a canvas that flattens.
    MirrorCanvasView canvas(390);
    for (const ImagePtr& photo : {tiny, wide}) {
        canvas.setSelectedImage(photo);
        for (int pattern = 0; pattern < MirrorPatterns::lowCount; ++pattern)
            canvas.applyLowMirrorPattern(pattern);
        EXPECT_EQ(canvas.snapshot()->pixelSize(), QSize(1170, 1170));
    }
}

} // namespace
