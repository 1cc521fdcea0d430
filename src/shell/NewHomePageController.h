#pragma once

#include "platform/Image.h"
#include "platform/PhotoPicker.h"
#include "platform/ViewController.h"
#include "shell/HomeViewModel.h"

#include <QPointer>
#include <QStringList>
#include <QUrl>
#include <array>
#include <functional>
#include <vector>

class FeatureGridCell;
class ImageView;
class QLabel;
class QScrollArea;
class QTimer;
class QVariantAnimation;
class UserDefaults;

// The home screen: a header, a carousel that turns by itself every two seconds, and six feature cards
// that lead to the editors. For the collage and Pic Mixer cards it also takes the photos.
class NewHomePageController : public ViewController {
    Q_OBJECT
public:
    static constexpr double kCarouselInterval = 2.0;
    static constexpr int kFeatureCount = 6;

    explicit NewHomePageController(UserDefaults& defaults, QWidget* parent = nullptr);
    ~NewHomePageController() override;

    // The maker's page in the store, opened by the last card.
    static QUrl storeURL();

    HomeViewModel& viewModel() { return viewModel_; }
    EditorDestination pendingDestination() const { return pendingDestination_; }
    const QStringList& carouselImages() const { return carouselImages_; }
    int currentCarouselIndex() const { return currentCarouselIndex_; }
    // The carousel clock; null while it is stopped.
    QTimer* carouselTimer() const { return timer_; }

    QLabel* headerLabel() const { return headerTitleLabel_; }
    QScrollArea* carouselView() const { return carouselCollectionView_; }
    QWidget* gridView() const { return gridCollectionView_; }
    FeatureGridCell* featureCell(int item) const;
    // Horizontal position of the carousel's content, in points.
    int carouselOffset() const;

    // The clock's tick: shows the next slide, wrapping from the last to the first.
    void nextImage();
    void didSelectFeature(int item);
    // Photos handed to the program from outside (the command line): the same road as picked ones into
    // the collage editor, including the alert for fewer than two.
    void openPhotos(const QStringList& files);

    // The carousel's scrolling moments, from a hand drag or the wheel.
    void scrollViewWillBeginDragging();
    void scrollViewDidEndDragging(bool willDecelerate);
    void scrollViewDidEndDecelerating();

protected:
    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    // Photos dropped on the screen take the same road as photos named on the command line.
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildViews();
    void layoutViews();
    void reloadGrid();
    void handleHomeLaunchFlag();
    void bindViewModel();

    void startCarouselTimer();
    void stopCarouselTimer();
    void setCarouselOffset(int offset);
    void scrollCarouselTo(int index, bool animated, std::function<void()> completion = {});
    void stopCarouselAnimation();
    bool handleCarouselMouse(QEvent* event);
    void turnCarouselPage(int direction);

    void presentPhotoPicker();
    void presentMirrorPicker();
    void takePickedItems(const std::vector<PickerResult>& results);
    void openEditor(std::vector<ImagePtr> images);
    void showInsufficientSelectionAlert();
    void showRefusedDropAlert(const QString& message);

    UserDefaults& defaults_;
    HomeViewModel viewModel_;
    EditorDestination pendingDestination_ = EditorDestination::collage;
    QStringList carouselImages_;
    QLabel* headerTitleLabel_ = nullptr;
    QScrollArea* carouselCollectionView_ = nullptr;
    QWidget* carouselStrip_ = nullptr;
    QList<ImageView*> slides_;
    QWidget* gridCollectionView_ = nullptr;
    std::array<FeatureGridCell*, kFeatureCount> cards_{};
    QTimer* timer_ = nullptr;
    int currentCarouselIndex_ = 0;

    QPointer<QVariantAnimation> carouselAnimation_;
    bool pressing_ = false;
    bool dragging_ = false;
    int pressX_ = 0;
    int pressOffset_ = 0;
    int lastMoveX_ = 0;
    qint64 lastMoveMs_ = 0;
    double dragVelocity_ = 0.0; // points per millisecond, positive towards later slides
    int wheelRemainder_ = 0;
};
