#include "export/RateShareController.h"

#include "export/FormatSheetController.h"
#include "platform/ImageView.h"
#include "platform/ShareSheet.h"
#include "platform/VideoPlayerView.h"

#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QGraphicsDropShadowEffect>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

const QString RateShareController::kMoreAppsURL = QStringLiteral("https://lumivex.app/apps");

namespace {
constexpr int kMoreButtonTag = 800;

QPushButton* makeBarButton(const QString& title, const QString& name, QWidget* parent) {
    auto* button = new QPushButton(title, parent);
    button->setObjectName(name);
    button->setCursor(Qt::PointingHandCursor);
    button->setStyleSheet(QStringLiteral("QPushButton { border: none; color: black; font-size: 16px;"
                                         " font-weight: 600; padding: 8px 12px; }"));
    return button;
}
} // namespace

RateShareController::RateShareController(QWidget* parent) : ViewController(parent) {
    setObjectName(QStringLiteral("RateShareController"));
    setModalPresentationStyle(ModalPresentationStyle::overCurrentContext);
}

void RateShareController::viewDidLoad() {
    setAttribute(Qt::WA_StyledBackground, true);
    setStyleSheet(QStringLiteral("RateShareController { background: white; }"));

    backButton_ = makeBarButton(QStringLiteral("‹ Back"), QStringLiteral("backButton"), this);
    connect(backButton_, &QPushButton::clicked, this, &RateShareController::backClick);
    shareButton_ = makeBarButton(QStringLiteral("Share"), QStringLiteral("shareButton"), this);
    connect(shareButton_, &QPushButton::clicked, this, &RateShareController::shareClick);
    auto* bar = new QHBoxLayout;
    bar->setContentsMargins(8, 8, 8, 0);
    bar->addWidget(backButton_);
    bar->addStretch(1);
    bar->addWidget(shareButton_);

    shareImageView_ = new ImageView(this);
    shareImageView_->setObjectName(QStringLiteral("shareImageView"));
    shareImageView_->setContentMode(ContentMode::scaleAspectFit);
    auto* shadow = new QGraphicsDropShadowEffect(shareImageView_);
    shadow->setColor(QColor(0, 0, 0, 128));
    shadow->setOffset(0.2, 0.2);
    shadow->setBlurRadius(4.0);
    shareImageView_->setGraphicsEffect(shadow);

    messageLabel_ = new QLabel(this);
    messageLabel_->setObjectName(QStringLiteral("messageLabel"));
    messageLabel_->setWordWrap(true);
    messageLabel_->setAlignment(Qt::AlignCenter);
    messageLabel_->setStyleSheet(QStringLiteral("color: #b3261e; font-size: 14px; padding: 8px;"));
    messageLabel_->hide();

    moreButton_ = new QPushButton(QStringLiteral("More Apps"), this);
    moreButton_->setObjectName(QStringLiteral("moreButton"));
    moreButton_->setProperty("tag", kMoreButtonTag);
    moreButton_->setCheckable(true);
    moreButton_->setCursor(Qt::PointingHandCursor);
    moreButton_->setStyleSheet(QStringLiteral("QPushButton { background: #faca16; color: black; border: none;"
                                              " border-radius: 22px; font-size: 16px; font-weight: 600;"
                                              " min-height: 44px; padding: 0 24px; }"));
    connect(moreButton_, &QPushButton::clicked, this, &RateShareController::moreclick);

    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 24);
    page->setSpacing(12);
    page->addLayout(bar);
    page->addWidget(shareImageView_, 1);
    page->addWidget(messageLabel_);
    page->addWidget(moreButton_, 0, Qt::AlignHCenter);

    shareable_ = loadResult();
    if (shareable_)
        shareCurrent();
}

bool RateShareController::loadResult() {
    if (fetchData == SavingtypeMethod::JPG) {
        if (!shareImage) {
            showMessage(QStringLiteral("There is no picture to share."));
            return false;
        }
        writeToAlbum([this] { return photoLibrary->writeImage(*shareImage); });
        shareImageView_->setImage(shareImage);
        return true;
    }

    if (!sharevideoURL || sharevideoURL->isEmpty()) {
        showMessage(QStringLiteral("There is no saved file to share."));
        return false;
    }
    const QString path = *sharevideoURL;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        showMessage(
            QStringLiteral("Couldn't read %1: %2").arg(QFileInfo(path).fileName(), file.errorString()));
        return false;
    }

    switch (fetchData) {
    case SavingtypeMethod::PNG: {
        // An undecodable file only skips the album.
        if (ImagePtr decoded = Image::fromData(file.readAll()))
            writeToAlbum([this, decoded] { return photoLibrary->writeImage(*decoded); });
        shareImageView_->setImage(shareImage);
        break;
    }
    case SavingtypeMethod::MP4Video:
        file.close();
        writeToAlbum([this, path] { return photoLibrary->writeVideo(path); });
        shareImageView_->hide();
        playerView_ = new VideoPlayerView(this);
        playerView_->setStyleSheet(QStringLiteral("background: white;"));
        if (auto* page = qobject_cast<QVBoxLayout*>(layout()))
            page->insertWidget(page->indexOf(shareImageView_), playerView_, 1);
        playerView_->setSource(path);
        playerView_->play();
        break;
    case SavingtypeMethod::TIFF:
        // The TIFF sheet has put it in the album already; show the file itself.
        shareImageView_->setImage(Image::fromData(file.readAll()));
        break;
    default: // PDF and SVG live only where they were written and where the user shares them.
        shareImageView_->setImage(shareImage);
        break;
    }
    return true;
}

void RateShareController::writeToAlbum(const std::function<PhotoLibraryResult()>& write) {
    if (!photoLibrary)
        return;
    albumResult_ = write();
    if (!albumResult_->ok)
        showMessage(QStringLiteral("Couldn't save to the album: %1").arg(albumResult_->error));
}

void RateShareController::showMessage(const QString& text) {
    const QString current = messageLabel_->text();
    messageLabel_->setText(current.isEmpty() ? text : current + QLatin1Char('\n') + text);
    messageLabel_->show();
}

void RateShareController::shareCurrent() {
    if (fetchData == SavingtypeMethod::JPG) {
        if (shareImage)
            ShareSheet::present(this, ShareItem::forImage(shareImage));
        return;
    }
    if (sharevideoURL && !sharevideoURL->isEmpty())
        FormatSheetController::shareFileURL(*sharevideoURL, this);
}

void RateShareController::shareClick() {
    // After a failed load there is nothing that a share sheet could use.
    if (shareable_)
        shareCurrent();
}

void RateShareController::backClick() {
    dismiss(true);
}

void RateShareController::moreclick() {
    moreButton_->setChecked(true);
    QDesktopServices::openUrl(QUrl(kMoreAppsURL));
}

void RateShareController::viewWillDisappear(bool animated) {
    ViewController::viewWillDisappear(animated);
    if (playerView_ && playerView_->isPlaying())
        playerView_->pause();
}
