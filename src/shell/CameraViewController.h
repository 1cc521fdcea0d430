#pragma once

#include "platform/ViewController.h"

#include <QCameraDevice>
#include <QImage>
#include <functional>
#include <optional>

class QCamera;
class QImageCapture;
class QMediaCaptureSession;
class QPushButton;
class QVideoWidget;

// A live view of one camera with a shutter and Cancel. It dismisses nothing itself: the owner hears of
// a photo or of the cancel and decides.
class CameraViewController : public ViewController {
    Q_OBJECT
public:
    explicit CameraViewController(const QCameraDevice& device, QWidget* parent = nullptr);
    ~CameraViewController() override;

    // The camera to use: a front-facing one when there is one, else the first; null without any camera.
    static std::optional<QCameraDevice> preferredDevice();

    std::function<void(QImage)> onCapture;
    std::function<void()> onCancel;

protected:
    void viewDidLoad() override;

private:
    QCameraDevice device_;
    QCamera* camera_ = nullptr;
    QMediaCaptureSession* session_ = nullptr;
    QImageCapture* capture_ = nullptr;
    QVideoWidget* preview_ = nullptr;
    QPushButton* shutter_ = nullptr;
};
