#pragma once

#include "collage/LayeredEditorViewModel.h"
#include "platform/PhotoPicker.h"
#include "platform/ViewController.h"

#include <QPointer>
#include <memory>
#include <optional>
#include <vector>

class CollageCanvasView;
class CollageCell;
class FeatherOptionsView;
class LayersPanelView;
class LayersTabButton;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QScrollArea;
class QVariantAnimation;

// The screen both layered editors stand on (the collage and the Pic Mixer): header, canvas, bottom
// sheet of tools and option panels, the layers panel, and the journeys that leave the screen (import,
// crop, save, back). Most decisions are the view model's and the canvas's; this screen binds them to
// each other and to the panels. An editor adds its own texts, what its save button does, and what
// happens to imported photos before they join the model.
class LayeredEditorViewController : public ViewController {
    Q_OBJECT
public:
    // The words an editor uses for itself in its alerts.
    struct Texts {
        QString minimumPhotosMessage; // with %1 for the minimum count
        QString fullTitle;            // dropped photos that do not fit
        QString fullMessage;          // with %1 for the maximum count
        QString partlyFullMessage;    // with %1 for the maximum and %2 for the photos taken
    };

    LayeredEditorViewController(std::unique_ptr<LayeredEditorViewModel> viewModel, Texts texts,
                                const QString& objectName, QWidget* parent = nullptr);
    ~LayeredEditorViewController() override;

    LayeredEditorViewModel& editorModel() const { return *viewModel_; }
    CollageCanvasView* canvasView() const { return canvasView_; }
    FeatherOptionsView* featherOptionsView() const { return featherOptionsView_; }
    LayersPanelView* layersPanelView() const { return layersPanelView_; }
    QLabel* titleLabel() const { return titleLabel_; }
    QPushButton* expandChevronButton() const { return expandChevronButton_; }
    QString expandChevronSymbol() const { return chevronSymbol_; }
    std::optional<OptionsPanel> panelMode() const { return panelMode_; }
    int optionsPanelHeight() const { return optionsPanelHeight_; }
    bool isOptionsPanelVisible() const;

    // The cells on show: the six tools, and the options of the open panel.
    QList<CollageCell*> toolCells() const { return toolCells_; }
    QList<CollageCell*> optionCells() const { return optionCells_; }

    void didTapBack();
    void didTapExpandChevron();
    void didTapLayers();
    void didSelectTool(int index);
    void didSelectOption(int index);

    // The canvas's size for the current ratio inside the room the screen leaves it.
    static QSizeF canvasSizeFor(std::optional<double> ratio, const QSizeF& room);

protected:
    // The save button and Ctrl+S.
    virtual void saveButtonTapped() = 0;
    // Flattens the canvas with the checkmarks hidden and opens the share screen on it as a JPG.
    void presentShareScreen();
    // Photos that arrived by the picker or a drop, in order, before they join the model. By default
    // they are appended and the layouts rebuilt.
    virtual void takeImportedImages(std::vector<ImagePtr> images);
    void showAlert(const QString& title, const QString& message);

    void viewDidLoad() override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    // Photos dropped on the screen are imported as picked ones are, as many as the collage has room for.
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildViews();
    void bind();
    void layoutScreen(bool animated);
    void applyAspectRatio(std::optional<CollageAspectRatioOption> option);
    void showPanel(std::optional<OptionsPanel> panel);
    void reloadTools();
    int optionCount() const;
    void reloadOptions();
    void loadFeathersIntoSliders();
    void presentImportPicker(int limit);
    void importItems(const std::vector<PickerResult>& results);
    void presentCropper();
    void showResetAlert();
    void showMinimumAlert();
    QRect canvasRoom() const;

    std::unique_ptr<LayeredEditorViewModel> viewModel_;
    const Texts texts_;
    QPushButton* backButton_ = nullptr;
    QLabel* titleLabel_ = nullptr;
    QPushButton* saveButton_ = nullptr;
    LayersTabButton* layersButton_ = nullptr;
    LayersPanelView* layersPanelView_ = nullptr;
    CollageCanvasView* canvasView_ = nullptr;
    QWidget* canvasFrame_ = nullptr;
    QPushButton* expandChevronButton_ = nullptr;
    QWidget* bottomSheetBackgroundView_ = nullptr;
    QWidget* optionsPanelContainerView_ = nullptr;
    QScrollArea* optionsScrollArea_ = nullptr;
    QWidget* optionsRow_ = nullptr;
    QHBoxLayout* optionsLayout_ = nullptr;
    FeatherOptionsView* featherOptionsView_ = nullptr;
    QScrollArea* toolsScrollArea_ = nullptr;
    QList<CollageCell*> toolCells_;
    QList<CollageCell*> optionCells_;

    std::optional<double> canvasRatio_;
    std::optional<OptionsPanel> panelMode_;
    std::optional<int> selectedToolIndex_;
    std::optional<int> pendingCropPaneIndex_;
    int optionsPanelHeight_ = 76;
    QString chevronSymbol_ = QStringLiteral("chevron.down");
    QPointer<QVariantAnimation> canvasAnimation_;
};
