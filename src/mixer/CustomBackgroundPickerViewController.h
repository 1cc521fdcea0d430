#pragma once

#include "mixer/CustomBackgroundSelection.h"
#include "platform/ViewController.h"

#include <QPointer>
#include <functional>
#include <optional>

class CustomBackgroundActionButton;
class CustomBackgroundCategoryRowCell;
class CustomBackgroundPreviewView;
class CustomBackgroundSliderRow;
class ImageView;
class QLabel;
class QPushButton;
class QScrollArea;
class QVBoxLayout;

// The screen on which the Pic Mixer's background is made: a stock picture, a photo from the library,
// one colour or a two-colour gradient, shown on a square preview that can be blurred (pictures only)
// and shifted in hue. "Done" flattens the preview as it is seen, at screen scale, hands the picture to
// onDone and dismisses the screen; "back" dismisses without a word. Every new selection starts with
// both sliders at 0. Nothing survives the screen.
class CustomBackgroundPickerViewController : public ViewController {
    Q_OBJECT
public:
    struct IndexPath {
        int section = 0;
        int item = 0;
        friend bool operator==(const IndexPath&, const IndexPath&) = default;
    };

    explicit CustomBackgroundPickerViewController(QWidget* parent = nullptr);
    ~CustomBackgroundPickerViewController() override;

    std::function<void(ImagePtr)> onDone;

    const std::vector<Category>& categories() const { return categories_; }
    const std::optional<CustomBackgroundSelection>& selection() const { return selection_; }
    std::optional<IndexPath> selectedCatalogIndexPath() const { return selectedCatalogIndexPath_; }
    double blurAmount() const { return blurAmount_; }
    double hueAmount() const { return hueAmount_; }
    const ImagePtr& baseImageForFilters() const { return baseImageForFilters_; }

    QPushButton* backButton() const { return backButton_; }
    QLabel* titleLabel() const { return titleLabel_; }
    QPushButton* doneButton() const { return doneButton_; }
    QWidget* previewContainerView() const;
    ImageView* previewImageView() const { return previewImageView_; }
    QLabel* previewPlaceholderLabel() const { return previewPlaceholderLabel_; }
    CustomBackgroundActionButton* importButton() const { return importButton_; }
    CustomBackgroundActionButton* colorButton() const { return colorButton_; }
    CustomBackgroundActionButton* gradientButton() const { return gradientButton_; }
    CustomBackgroundSliderRow* blurRow() const { return blurRow_; }
    CustomBackgroundSliderRow* hueRow() const { return hueRow_; }
    QWidget* slidersStackView() const { return slidersStackView_; }
    const QList<CustomBackgroundCategoryRowCell*>& categoryRows() const { return categoryRows_; }

    // What the preview shows: the container's colour, the gradient's colours when one is on show, and
    // how strongly the blur covers it (0…1).
    QColor previewBackgroundColor() const;
    std::optional<std::pair<QColor, QColor>> previewGradientColors() const;
    double previewBlurFraction() const;

    void didSelectCatalogItem(int section, int item);
    void didTapImport();
    void didTapColor();
    void didTapGradient();
    void didTapDone();
    void didTapBack();
    void blurChanged(double value);
    void hueChanged(double value);

protected:
    void viewDidLoad() override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void buildViews();
    void layoutScreen();
    void setSelection(std::optional<CustomBackgroundSelection> selection,
                      std::optional<IndexPath> catalogPath);
    void reloadCategories();
    void applyBlur();

    const std::vector<Category>& categories_;
    std::optional<CustomBackgroundSelection> selection_;
    std::optional<IndexPath> selectedCatalogIndexPath_;
    double blurAmount_ = 0.0;
    double hueAmount_ = 0.0;
    ImagePtr baseImageForFilters_;

    QPushButton* backButton_ = nullptr;
    QLabel* titleLabel_ = nullptr;
    QPushButton* doneButton_ = nullptr;
    CustomBackgroundPreviewView* previewContainerView_ = nullptr;
    ImageView* previewImageView_ = nullptr;
    QLabel* previewPlaceholderLabel_ = nullptr;
    QWidget* actionsStackView_ = nullptr;
    CustomBackgroundActionButton* importButton_ = nullptr;
    CustomBackgroundActionButton* colorButton_ = nullptr;
    CustomBackgroundActionButton* gradientButton_ = nullptr;
    QWidget* slidersStackView_ = nullptr;
    CustomBackgroundSliderRow* blurRow_ = nullptr;
    CustomBackgroundSliderRow* hueRow_ = nullptr;
    QScrollArea* categoryTableView_ = nullptr;
    QList<CustomBackgroundCategoryRowCell*> categoryRows_;
};
