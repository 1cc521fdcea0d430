#pragma once

#include "filters/LookCubeCache.h"
#include "frames/FrameGeometry.h"
#include "shell/BaseViewController.h"

#include <QList>
#include <QStringList>
#include <array>
#include <optional>
#include <vector>

class BtnsCell;
class EditorSavingChain;
class FilterStripView;
class FrameAreaView;
class QLabel;
class QPushButton;
class QScrollArea;
class QSlider;

// The classic collage: two to six photos in one of the 33 fixed frames. It asks for exactly as many
// photos as the frame has cells, lays them out in zooming cells, and offers five tools: the other frames
// with as many cells, looks on the chosen cell, spacing and corners, the background colour, and
// replacing the chosen cell's photo. Saving goes through the format chooser.
//
// The grid sets currentindex, tagValue, maingridarray and isFirst before presenting it. Main thread only;
// looks are worked out on the main queue after the tap so the strip's border shows first. A look never
// changes the photo kept for its cell, so looks do not add up, and a new frame keeps every cell's look.
class CollageViewController : public BaseViewController,
                              public ImageVideoMediaPickerDelegate,
                              public PhotosMediaPickerDelegate {
    Q_OBJECT
public:
    enum Tool { collageTool = 0, filterTool, adjustTool, colorTool, galleryTool };
    static constexpr int toolCount = 5;
    // Panels slide to these bottom offsets in 0.3 seconds.
    static constexpr double panelShown = 0.0, panelHidden = 300.0, panelDuration = 0.3;
    // Tray geometry in points.
    static constexpr int frameButtonSide = 78, frameButtonStep = 86, colorButtonSide = 35,
                         colorButtonStep = 70;
    static constexpr double selectedColorScale = 1.6;
    // The Adjust panel's slider ranges.
    static constexpr int maximumSpacing = 30, maximumCornerRadius = 60;

    explicit CollageViewController(QWidget* parent = nullptr);
    ~CollageViewController() override;

    // Set by the grid.
    int currentindex = 0;
    int tagValue = 0;
    std::optional<QStringList> maingridarray;
    std::optional<bool> isFirst = true;

    // The frame in use, the photos by cell, the cell tapped last and what it shows.
    int index = 0;
    std::vector<ImagePtr> mutableImages;
    int commontag = 0;
    ImagePtr currentImage;
    int collectBtnIndex = -1;
    bool isGallery = false;

    FrameAreaView* mainview() const { return mainview_; }
    // The look on each cell's picture, if any.
    std::optional<int> lookOfCell(int cell) const;
    // The text of the alert for a frame of `count` cells.
    static QString photoCountMessage(int count);
    static QString photoCountTitle() { return QStringLiteral("Information"); }

    QList<BtnsCell*> toolCells() const { return toolCells_; }
    QList<QPushButton*> frameButtons() const { return frameButtons_; }
    QList<QPushButton*> colorButtons() const { return colorButtons_; }
    FilterStripView* filterScrollView() const { return filterScrollView_; }
    QSlider* spacingSlider() const { return spacingSlider_; }
    QSlider* cornerSlider() const { return cornerSlider_; }
    QPushButton* shareButton() const { return shareButton_; }
    QPushButton* backButton() const { return backButton_; }
    // A panel's bottom offset: 0 when shown, 300 when hidden.
    double panelOffset(Tool tool) const;
    EditorSavingChain* savingChain() const { return savingChain_; }

    // The actions.
    void didSelectTool(int row);
    void buttonTappedWithSender(int tag);
    void colorButtonTapped(int tag);
    void FilterButtonTapped(int row);
    void imageTapped1(int tag);
    void adjustCancel(Tool tool);
    void sliderspacing(double value);
    void cornerspace(double value);
    void shareBtn();
    void backBtn();

    // Media picking answers.
    void pickedVideo(const QString&) override {}
    void pickedImage(const ImagePtr& image) override;
    void pickCancelled() override {}
    void pickedMedia(const std::vector<MediaItem>& items, const PickerConfiguration& picker) override;
    void pickedMediaCancelled() override;

protected:
    void viewDidLoad() override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void buildHeader();
    void buildPanels();
    void buildToolRow();
    void buildFrameTray();
    void buildColorTray();
    void buildFilterTray();
    void layoutViews();
    void slidePanel(Tool tool, double offset);
    void showPhotoCountAlert();
    void reloadToolRow();

    FrameAreaView* mainview_ = nullptr;
    EditorSavingChain* savingChain_ = nullptr;
    LookCubeCache looks_;
    std::array<std::optional<int>, FrameGeometry::maxCells> cellLooks_{};

    QLabel* titleLabel_ = nullptr;
    QPushButton* backButton_ = nullptr;
    QPushButton* shareButton_ = nullptr;
    QWidget* toolRow_ = nullptr;
    QList<BtnsCell*> toolCells_;
    std::array<QWidget*, 4> panels_{};
    std::array<double, 4> panelOffsets_{panelHidden, panelHidden, panelHidden, panelHidden};
    QScrollArea* collageScrollView_ = nullptr;
    QScrollArea* colorScrollView_ = nullptr;
    FilterStripView* filterScrollView_ = nullptr;
    QList<QPushButton*> frameButtons_;
    QList<QPushButton*> colorButtons_;
    QSlider* spacingSlider_ = nullptr;
    QSlider* cornerSlider_ = nullptr;
};
