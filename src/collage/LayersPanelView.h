#pragma once

#include "platform/Image.h"

#include <QPointer>
#include <QWidget>
#include <functional>
#include <optional>
#include <vector>

class LayerCell;
class QAbstractButton;
class QLabel;
class QMimeData;
class QScrollArea;
class QVariantAnimation;

// The side sheet that lists the panes as layers, front first, over a dimming scrim. It holds no layer
// data: every answer comes from the closures its owner fills, so any screen with layers can use it.
//
// Rows are reordered by dragging them within the list, or with Ctrl+Up/Down on the selected row.
// Up/Down select the neighbouring row and Esc closes the panel.
class LayersPanelView : public QWidget {
    Q_OBJECT
public:
    // Fills `parent` and follows its size; hidden until opened.
    explicit LayersPanelView(QWidget* parent = nullptr);
    ~LayersPanelView() override;

    std::function<int()> numberOfLayers;
    std::function<ImagePtr(int row)> thumbnail;
    std::function<bool(int row)> isRowSelected;
    std::function<void(int row)> onSelectRow;
    std::function<void(int from, int to)> onMoveRow;

    static constexpr double cardWidthFraction = 0.72;
    static constexpr double closedTrailing = 320.0;
    static constexpr double cardCornerRadius = 28.0;
    static constexpr double openDuration = 0.28;
    static constexpr double openDamping = 0.9;
    static constexpr double closeDuration = 0.24;

    // Shows the panel, reloads the rows and slides the card in.
    void open();
    // Slides the card out and hides the panel at the end; nothing when already hidden.
    void dismiss(bool animated);
    // True from open() until a dismiss starts.
    bool isOpen() const { return open_; }

    // Asks the closures again for every row.
    void reloadData();

    int rowCount() const { return static_cast<int>(cells_.size()); }
    LayerCell* cellForRow(int row) const;

    QWidget* scrimView() const { return scrimView_; }
    QWidget* cardView() const { return cardView_; }
    QLabel* headerLabel() const { return headerLabel_; }
    QAbstractButton* closeButton() const { return closeButton_; }
    QScrollArea* tableView() const { return tableView_; }
    // Distance of the card's right edge past the panel's: 0 open, closedTrailing or more closed.
    double cardTrailing() const { return trailing_; }
    double scrimAlpha() const { return scrimAlpha_; }

    // Drags carry the row under a type of this program, stamped with the process and panel, so a
    // drop is taken only when it comes from this very list.
    static QString layerMimeType();
    QMimeData* mimeDataForRow(int row) const;
    std::optional<int> sourceRow(const QMimeData* data) const;
    // The row a drop at `position` (in the list's viewport) lands on; below the rows, the last row.
    std::optional<int> destinationRow(const QPoint& position) const;

    // Moves a row as a drop does: fires onMoveRow and reloads. Same or invalid rows change nothing.
    bool moveRow(int from, int to);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void layoutCard();
    void layoutRows();
    void setProgress(double trailing, double scrimAlpha);
    void animateTo(double trailing, double scrimAlpha, bool opening, double duration);
    void stopAnimation();
    void startDrag(int row);
    void showDropIndicator(std::optional<int> source, std::optional<int> destination);
    bool handleDragEvent(QEvent* event);
    std::optional<int> selectedRow() const;
    double closedOffset() const;

    QWidget* scrimView_ = nullptr;
    QWidget* cardView_ = nullptr;
    QWidget* headerIconView_ = nullptr;
    QLabel* headerLabel_ = nullptr;
    QAbstractButton* closeButton_ = nullptr;
    QScrollArea* tableView_ = nullptr;
    QWidget* rowsView_ = nullptr;
    QWidget* dropIndicator_ = nullptr;
    std::vector<LayerCell*> cells_;
    QPointer<QVariantAnimation> animation_;
    double trailing_ = closedTrailing;
    double scrimAlpha_ = 0.0;
    bool open_ = false;
};
