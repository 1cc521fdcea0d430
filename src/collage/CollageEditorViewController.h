#pragma once

#include "collage/CollageEditorViewModel.h"
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

// The collage editor screen: header, canvas, bottom sheet of tools and option panels, the layers
// panel, and the journeys that leave the screen (import, crop, save, back). Most decisions are the
// view model's and the canvas's; this screen binds them to each other and to the panels.
class CollageEditorViewController : public ViewController {
    Q_OBJECT
public:
    explicit CollageEditorViewController(std::unique_ptr<CollageEditorViewModel> viewModel,
                                         QWidget* parent = nullptr);
    ~CollageEditorViewController() override;

    CollageEditorViewModel& viewModel() const { return *viewModel_; }
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
    void didTapSave();
    void didTapExpandChevron();
    void didTapLayers();
    void didSelectTool(int index);
    void didSelectOption(int index);

    // The canvas's size for the current ratio inside the room the screen leaves it.
    static QSizeF canvasSizeFor(std::optional<double> ratio, const QSizeF& room);

protected:
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
    void showDropAlert(const QString& title, const QString& message);
    void presentCropper();
    void showResetAlert();
    void showMinimumAlert();
    void continueSave();
    QRect canvasRoom() const;

    std::unique_ptr<CollageEditorViewModel> viewModel_;
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
