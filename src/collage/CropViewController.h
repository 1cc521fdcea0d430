#pragma once

#include "collage/CropperState.h"
#include "platform/Image.h"
#include "platform/ViewController.h"

#include <QImage>
#include <QRectF>
#include <functional>
#include <map>
#include <optional>

class CropCanvasView;
class QAbstractButton;
class QLabel;

// The crop screen: the picture with a crop rectangle, a row of shapes (free or fixed), quarter
// turns, Reset, Cancel and Done. It changes no picture itself; Done hands the state to the owner,
// which cuts the picture with croppedImage().
//
// Keys: Esc cancels, Return confirms, R turns left, Shift+R turns right, arrows nudge the rectangle.
class CropViewController : public ViewController {
    Q_OBJECT
public:
    explicit CropViewController(ImagePtr image, std::optional<CropperState> initialState = std::nullopt,
                                QWidget* parent = nullptr);
    ~CropViewController() override;

    // Done: the state to cut with, or nothing when there is no picture. The owner dismisses the screen.
    std::function<void(std::optional<CropperState>)> onConfirm;
    // Cancel. Without a listener the screen dismisses itself.
    std::function<void()> onCancel;

    const ImagePtr& originalImage() const { return image_; }
    // The current state, the rectangle in whole pixels of the turned picture.
    CropperState state() const;
    // Size of the picture after the current turns.
    QSize pictureSize() const;

    CropAspectRatio aspectRatio() const { return aspectRatio_; }
    // Holds the rectangle to a shape: the largest of that shape about the current centre.
    void setAspectRatio(CropAspectRatio ratio);
    // A quarter turn of the picture; the rectangle turns with it, and so does a fixed shape.
    void rotateLeft();
    void rotateRight();
    // Back to the whole picture, upright, free.
    void reset();
    void confirm();
    void cancel();

    CropCanvasView* canvasView() const { return canvasView_; }
    QAbstractButton* cancelButton() const { return cancelButton_; }
    QAbstractButton* doneButton() const { return doneButton_; }
    QAbstractButton* resetButton() const { return resetButton_; }
    QAbstractButton* rotateButton() const { return rotateButton_; }
    QAbstractButton* aspectButton(CropAspectRatio ratio) const;

protected:
    void viewDidLoad() override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void rotate(bool clockwise);
    void syncCanvas();
    void syncControls();
    QRectF pictureBounds() const;

    ImagePtr image_;
    QImage uprightDisplay_;
    QSize uprightSize_;
    int turns_ = 0;
    QRectF cropRect_;
    CropAspectRatio aspectRatio_ = CropAspectRatio::free;

    CropCanvasView* canvasView_ = nullptr;
    QLabel* sizeLabel_ = nullptr;
    QAbstractButton* cancelButton_ = nullptr;
    QAbstractButton* doneButton_ = nullptr;
    QAbstractButton* resetButton_ = nullptr;
    QAbstractButton* rotateButton_ = nullptr;
    std::map<CropAspectRatio, QAbstractButton*> aspectButtons_;
};
