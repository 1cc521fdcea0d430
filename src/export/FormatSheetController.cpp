#include "export/FormatSheetController.h"

#include "export/FileTypeRowView.h"
#include "export/SavingTypeController.h"
#include "platform/Dispatch.h"
#include "platform/ProgressHud.h"
#include "platform/ShareSheet.h"
#include "platform/Storyboard.h"
#include "platform/Video.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QVBoxLayout>

namespace {
constexpr double kFormatCornerRadius = 30;
constexpr double kDefaultSheetHeight = 420;
constexpr int kInfoLabelHeight = 64;
} // namespace

FormatSheetController::FormatSheetController(QWidget* parent) : BottomSheetController(parent) {
    setContainerCornerRadius(kFormatCornerRadius);
}

std::optional<double> FormatSheetController::sheetHeight(SavingtypeMethod type) {
    switch (type) {
    case SavingtypeMethod::JPG:
        return 480;
    case SavingtypeMethod::PNG:
        return 450;
    case SavingtypeMethod::SVG:
        return 300;
    case SavingtypeMethod::TIFF:
        return 267;
    case SavingtypeMethod::PDFStandard:
        return 360;
    case SavingtypeMethod::PDFPrint:
        return 470;
    case SavingtypeMethod::MP4Video:
        break;
    }
    return std::nullopt;
}

QString FormatSheetController::videoInformationText() {
    return QStringLiteral("This file type isn't supporting video and audio playback. Consider downloading "
                          "it in MP4 format.");
}

void FormatSheetController::viewDidLoad() {
    BottomSheetController::viewDidLoad();
    QVBoxLayout* layout = containerLayout();

    fileTypeRow_ = new FileTypeRowView(savingType(), containerView());
    connect(fileTypeRow_, &QAbstractButton::clicked, this, [this] { openSavingTypeChooser(); });
    layout->addWidget(fileTypeRow_);

    infoLabel_ = new QLabel(containerView());
    infoLabel_->setObjectName(QStringLiteral("infoLbl"));
    infoLabel_->setWordWrap(true);
    infoLabel_->setAlignment(Qt::AlignCenter);
    infoLabel_->setAttribute(Qt::WA_StyledBackground, true);
    infoLabel_->setStyleSheet(QStringLiteral("background: #fff4cc; color: #3c3c43; font-size: 13px;"
                                             " border-radius: 8px; padding: 6px;"));
    layout->addWidget(infoLabel_);

    contentLayout_ = new QVBoxLayout;
    contentLayout_->setSpacing(12);
    layout->addLayout(contentLayout_, 1);

    const double height = sheetHeight(savingType()).value_or(kDefaultSheetHeight);
    if (shareImage) {
        tobeSavedimage = shareImage;
        infoLabel_->setFixedHeight(0);
        infoLabel_->hide();
        setContainerHeight(height);
    } else if (videoUrl) {
        // Without a frame the sheet keeps what it has; the format's writer then has nothing to save.
        if (ImagePtr frame = firstFrameImage(*videoUrl, kVideoFrameTime))
            tobeSavedimage = frame;
        if (showsVideoInformation()) {
            infoLabel_->setText(videoInformationText());
            infoLabel_->setFixedHeight(kInfoLabelHeight);
            setContainerHeight(height + kInfoLabelHeight + layout->spacing());
        } else {
            infoLabel_->setFixedHeight(0);
            infoLabel_->hide();
            setContainerHeight(height);
        }
    } else {
        infoLabel_->setFixedHeight(0);
        infoLabel_->hide();
        setContainerHeight(height);
    }
}

SavingTypeController* FormatSheetController::openSavingTypeChooser() {
    auto* chooser = Storyboard::instantiate<SavingTypeController>(QStringLiteral("Main"),
                                                                  QStringLiteral("SavingTypeController"));
    chooser->setModalPresentationStyle(ModalPresentationStyle::overCurrentContext);
    chooser->selectedIndex = static_cast<int>(savingType());
    chooser->delegate = this;
    chooser->isimage = shareImage != nullptr;
    present(chooser, true);
    return chooser;
}

void FormatSheetController::savingMethodChosen(SavingtypeMethod type) {
    // The same format keeps the sheet and its options as they are.
    if (type == savingType())
        return;
    QPointer<FormatSheetController> self(this);
    dismiss(true, [self, type] {
        if (!self)
            return;
        self->setBackgroundColor(Qt::transparent);
        if (self->delegate)
            self->delegate->newSavingMethodChosen(type);
    });
}

void FormatSheetController::backAction() {
    dismissSheet();
}

void FormatSheetController::showBusy() {
    busy_ = true;
    ProgressHud::show(QStringLiteral("Please Wait..."));
}

void FormatSheetController::hideBusy() {
    busy_ = false;
    ProgressHud::dismiss();
}

bool FormatSheetController::eventFilter(QObject* watched, QEvent* event) {
    // Watched on the whole application while shown: the busy indicator takes the keyboard focus, and the
    // key must reach the sheet through it. Only the topmost sheet of this window answers.
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape &&
        watched->isWidgetType() && static_cast<QWidget*>(watched)->window() == window() && isVisible() &&
        !presentedViewController()) {
        if (busy_)
            hideBusy();
        dismissSheet();
        return true;
    }
    return BottomSheetController::eventFilter(watched, event);
}

ImagePtr FormatSheetController::uprightImage(const ImagePtr& image) {
    if (!image || image->bitmap().isNull())
        return nullptr;
    switch (image->orientation()) {
    case ImageOrientation::up:
        return image;
    case ImageOrientation::down:
    case ImageOrientation::left:
    case ImageOrientation::right:
        return Image::make(image->uprightBitmap(), image->scale());
    default: {
        // Mirrored flags are dropped rather than applied: the stored pixels are drawn untouched
        // into the picture's upright size.
        const QSizeF points = image->size();
        const QSize pixels(qRound(points.width() * image->scale()), qRound(points.height() * image->scale()));
        QImage canvas(pixels, QImage::Format_ARGB32_Premultiplied);
        canvas.fill(Qt::transparent);
        QPainter painter(&canvas);
        painter.drawImage(QRect(QPoint(0, 0), pixels), image->bitmap());
        painter.end();
        return Image::make(canvas, image->scale());
    }
    }
}

ImagePtr FormatSheetController::firstFrameImage(const QString& path, double seconds) {
    const auto frame = Video::frameAt(path, seconds);
    if (!frame)
        return nullptr;
    ImagePtr image = Image::make(*frame);
    if (ImagePtr upright = uprightImage(image))
        return upright;
    return image;
}

void FormatSheetController::shareFileURL(const QString& path, ViewController* presenter) {
    QPointer<ViewController> guard(presenter);
    Dispatch::main().async([guard, path] {
        if (guard)
            ShareSheet::present(guard, ShareItem::forFile(path));
    });
}
