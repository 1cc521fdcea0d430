#pragma once

#include "filters/LookCubeCache.h"
#include "overlay/StickerCategoryController.h"
#include "overlay/StickerView.h"
#include "overlay/TextEditViewController.h"
#include "platform/Image.h"
#include "shell/BaseViewController.h"

#include <QList>
#include <QPointer>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class CaptionLabelView;
class ColorSwatchStripView;
class EditBtnCell;
class EditorSavingChain;
class FilterStripView;
class FontCell;
class MirrorCanvasView;
class MirrorCell;
class MirrorImageView;
class QLabel;
class QPushButton;
class QScrollArea;
class QSlider;
class TextCell;

// The mirror editor: one picture on a square canvas of mirrored panes (see MirrorCanvasView), captions
// and picture stickers over it, and a strip of six tools under it, each opening one panel at a time:
// 2D patterns, overlay patterns, looks, captions (with their own six tools, fonts, colours and opacity),
// stickers and the gallery. Save flattens the canvas and hands it to the format chooser.
//
// Captions and tools meet by integer tags: a caption's label and its overlay share a tag from `count`,
// and the caption tools act on the label whose tag is `tagValue`. A tool with no such label does
// nothing. Main thread only.
class MirrorVController : public BaseViewController,
                          public StickerViewDelegate,
                          public NewTextPassed,
                          public StickerHandler,
                          public ImageVideoMediaPickerDelegate,
                          public FileMediaPickerDelegate,
                          public ImagePlayGroundPostProcessingDelegate {
    Q_OBJECT
public:
    static constexpr int toolCount = 6;
    static constexpr int noTool = 9;
    // Panel positions: shown and hidden constants, and how long a slide takes.
    static constexpr double panelDuration = 0.3, fontPanelDuration = 0.5;

    explicit MirrorVController(QWidget* parent = nullptr);
    ~MirrorVController() override;

    // The picture as picked; set before the screen loads, or through the gallery.
    ImagePtr selectedImage;

    // A photo as the home screen hands it in: drawn anew so that it fits a square of `side` points, at
    // the screen's scale, upright. Null for a null photo.
    static ImagePtr scaledToFit(const ImagePtr& photo, double side);

    // Pattern state.
    int lowIndexSelect = 0;
    int highIndexSelect = 0;
    bool lowMirrorSelect = true;
    int mirrorPatternScrollViewCount = 0;

    // Tools and captions.
    int toolBtnSelect = noTool;
    int textbtnSelect = noTool;
    int count = 1;
    int tagValue = 1;
    QList<QPointer<StickerView>> allStickerView;
    QList<QPointer<CaptionLabelView>> stickerLblArr;

    void applyLowMirrorPattern(int index);
    void applyHighMirrorPattern(int index, bool mirrorFirst);

    // Actions of the screen.
    void didSelectTool(int index);
    void didSelectTextTool(int index);
    void PatternsActionTapped(int tag);
    void didSelectHighMirror(int index);
    void FilterButtonTapped(int index);
    void imageTapped(MirrorImageView* view);
    void imageChooseBtn(int tag);
    void mirrorCancel();
    void highmirroCancelBtn();
    void filterCancel();
    void textBackAction();
    void fontDoneAction();
    void fontCancelAction();
    void didSelectFont(int index);
    void buttonTapped(Color color);
    void sliderACtion(double value);
    void doubleTapped(StickerView* overlay);
    void saveButton();
    void backButton();

    // What the widgets show.
    MirrorCanvasView* containerView() const { return containerView_; }
    QWidget* topView() const { return topView_; }
    QPushButton* saveButtonView() const { return saveButton_; }
    QPushButton* backButtonView() const { return backButton_; }
    const QList<EditBtnCell*>& toolCells() const { return toolCells_; }
    const QList<TextCell*>& textCells() const { return textCells_; }
    const QList<QPushButton*>& patternButtons() const { return patternButtons_; }
    const QList<MirrorCell*>& highMirrorCells() const { return highMirrorCells_; }
    const QList<FontCell*>& fontCells() const { return fontCells_; }
    QScrollArea* mirrorPatternScrollView() const { return mirrorPatternScrollView_; }
    QScrollArea* fontCollectionView() const { return fontCollectionView_; }
    FilterStripView* filterStrip() const { return filterScrollView_; }
    ColorSwatchStripView* swatchStrip() const { return buttonScrollView_; }
    QSlider* opacitySlider() const { return opacitySlider_; }
    QPushButton* galleryButton(int tag) const;

    // Panels by their position constant (see the table in MirrorPanels.cpp).
    enum class Panel { mirrorPattern, highMirror, filter, gallery, textEditing, font, multiColor, opacity };
    double panelConstant(Panel panel) const;
    bool isPanelShown(Panel panel) const;
    QWidget* panelView(Panel panel) const;

    // The overlay with handles showing; setting another hides the former one's handles.
    StickerView* selectedStickerView() const { return selectedStickerView_; }
    void setSelectedStickerView(StickerView* sticker);
    // The label the caption tools act on, or null.
    CaptionLabelView* currentLabel() const;
    EditorSavingChain* savingChain() const { return savingChain_; }

    // StickerViewDelegate
    void stickerViewDidTap(StickerView* sticker) override;
    void stickerViewDidChangeRotating(StickerView* sticker) override;
    // NewTextPassed
    void newTextAdded(const QString& text) override;
    void textEdited(const QString& text) override;
    // StickerHandler
    void stickerPicked(ImagePtr image) override;
    // Media
    void pickedVideo(const QString& url) override;
    void pickedImage(const ImagePtr& image) override;
    void pickCancelled() override {}
    void pickedFiles(const std::vector<MediaItem>& items) override;
    void playgroundImageReady(const ImagePtr& image) override;

protected:
    void viewDidLoad() override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    // A panel slides along its bottom edge by its constant. Panels that push down are shown at 0 and hidden
    // at 300 below; panels that lift are shown at their constant above the bottom and hidden at -400,
    // below the window. Colour and opacity stand above the caption tools, the rest over the tool strip.
    struct PanelSlot {
        Panel panel;
        QWidget* view = nullptr;
        double shown = 0;
        double hidden = 0;
        int height = 0;
        bool pushesDown = false;
        bool aboveTextTools = false;
        double constant = 0;
        QPointer<QObject> animation; // the running slide, which refers to this slot
    };
    void buildTopBar();
    void buildToolStrip();
    void buildPatternPanel();
    void buildHighMirrorPanel();
    void buildFilterPanel();
    void buildGalleryPanel();
    void buildTextPanels();
    QWidget* makePanel(const QString& title, std::function<void()> close);
    void layoutViews();
    void layoutPanels();
    PanelSlot& slot(Panel panel);
    const PanelSlot& slot(Panel panel) const;
    void slidePanel(Panel panel, bool shown, double duration = panelDuration);
    void showOnly(Panel panel);
    void reloadToolStrip();
    void reloadTextTools();
    void replacePicture(const ImagePtr& image);
    void bringLabelToFront(CaptionLabelView* label);
    StickerView* overlayOf(CaptionLabelView* label) const;
    StickerView* makeOverlay(QGraphicsWidget* content);
    void presentTextEntry(bool isdoubleTap, const QString& text);

    MirrorCanvasView* containerView_ = nullptr;
    QWidget* topView_ = nullptr;
    QLabel* titleLabel_ = nullptr;
    QPushButton* backButton_ = nullptr;
    QPushButton* saveButton_ = nullptr;
    QWidget* toolBarView_ = nullptr;
    QList<EditBtnCell*> toolCells_;
    QList<TextCell*> textCells_;
    QScrollArea* mirrorPatternScrollView_ = nullptr;
    QList<QPushButton*> patternButtons_;
    QScrollArea* highMirrorCollectionVIew_ = nullptr;
    QList<MirrorCell*> highMirrorCells_;
    FilterStripView* filterScrollView_ = nullptr;
    QScrollArea* fontCollectionView_ = nullptr;
    QList<FontCell*> fontCells_;
    ColorSwatchStripView* buttonScrollView_ = nullptr;
    QSlider* opacitySlider_ = nullptr;
    QList<QPushButton*> galleryButtons_;
    std::vector<std::unique_ptr<PanelSlot>> panels_;
    QPointer<StickerView> selectedStickerView_;
    LookCubeCache looks_;
    EditorSavingChain* savingChain_ = nullptr;
};
