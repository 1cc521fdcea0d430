#include "shell/CameraViewController.h"

#include <QCamera>
#include <QHBoxLayout>
#include <QImageCapture>
#include <QMediaCaptureSession>
#include <QMediaDevices>
#include <QPushButton>
#include <QVBoxLayout>
#include <QVideoWidget>

CameraViewController::CameraViewController(const QCameraDevice& device, QWidget* parent)
    : ViewController(parent), device_(device) {}

CameraViewController::~CameraViewController() {
    if (camera_)
        camera_->stop();
}

std::optional<QCameraDevice> CameraViewController::preferredDevice() {
    const QList<QCameraDevice> inputs = QMediaDevices::videoInputs();
    if (inputs.isEmpty())
        return std::nullopt;
    for (const QCameraDevice& device : inputs) {
        if (device.position() == QCameraDevice::FrontFace)
            return device;
    }
    return inputs.front();
}

void CameraViewController::viewDidLoad() {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 12);
    preview_ = new QVideoWidget(this);
    layout->addWidget(preview_, 1);

    auto* buttons = new QHBoxLayout;
    auto* cancel = new QPushButton(QStringLiteral("Cancel"), this);
    shutter_ = new QPushButton(QStringLiteral("Take Photo"), this);
    shutter_->setEnabled(false);
    buttons->addWidget(cancel);
    buttons->addStretch(1);
    buttons->addWidget(shutter_);
    buttons->setContentsMargins(12, 0, 12, 0);
    layout->addLayout(buttons);

    camera_ = new QCamera(device_, this);
    session_ = new QMediaCaptureSession(this);
    capture_ = new QImageCapture(this);
    session_->setCamera(camera_);
    session_->setImageCapture(capture_);
    session_->setVideoOutput(preview_);

    connect(capture_, &QImageCapture::readyForCaptureChanged, shutter_, &QPushButton::setEnabled);
    connect(shutter_, &QPushButton::clicked, this, [this]() { capture_->capture(); });
    connect(capture_, &QImageCapture::imageCaptured, this, [this](int, const QImage& image) {
        if (onCapture)
            onCapture(image);
    });
    // A camera that fails (taken by another program, unplugged) leaves nothing to capture: the user cancels.
    connect(camera_, &QCamera::errorOccurred, this, [this]() { shutter_->setEnabled(false); });
    connect(cancel, &QPushButton::clicked, this, [this]() {
        if (onCancel)
            onCancel();
    });
    camera_->start();
}
