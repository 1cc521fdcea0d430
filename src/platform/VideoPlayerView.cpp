#include "platform/VideoPlayerView.h"

#include <QMediaPlayer>
#include <QPainter>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>
#include <QVideoFrame>
#include <QVideoSink>

// The latest frame, fitted into the view on black.
class VideoFrameView : public QWidget {
public:
    explicit VideoFrameView(QWidget* parent) : QWidget(parent) {
        setAttribute(Qt::WA_OpaquePaintEvent);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    }
    void setFrame(const QVideoFrame& frame) {
        frame_ = frame.isValid() ? frame.toImage() : QImage();
        update();
    }
    const QImage& frame() const { return frame_; }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), Qt::black);
        if (frame_.isNull())
            return;
        const QSize fitted = frame_.size().scaled(size(), Qt::KeepAspectRatio);
        const QRect target(QPoint((width() - fitted.width()) / 2, (height() - fitted.height()) / 2), fitted);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(target, frame_);
    }

private:
    QImage frame_;
};

VideoPlayerView::VideoPlayerView(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("videoPlayerView"));
    player_ = new QMediaPlayer(this);
    frameView_ = new VideoFrameView(this);
    auto* sink = new QVideoSink(this);
    connect(sink, &QVideoSink::videoFrameChanged, frameView_,
            [view = frameView_](const QVideoFrame& frame) { view->setFrame(frame); });
    player_->setVideoSink(sink);

    playPauseButton_ = new QPushButton(this);
    playPauseButton_->setObjectName(QStringLiteral("playPauseButton"));
    playPauseButton_->setCursor(Qt::PointingHandCursor);
    playPauseButton_->setFixedHeight(36);
    connect(playPauseButton_, &QPushButton::clicked, this, [this] { isPlaying() ? pause() : play(); });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(frameView_, 1);
    layout->addWidget(playPauseButton_, 0, Qt::AlignHCenter);

    connect(player_, &QMediaPlayer::playbackStateChanged, this, [this](QMediaPlayer::PlaybackState state) {
        updateButton();
        emit playingChanged(state == QMediaPlayer::PlayingState);
    });
    updateButton();
}

VideoPlayerView::~VideoPlayerView() {
    // Stop before the sink goes away so the back end does not deliver into a deleted object.
    player_->stop();
    player_->setVideoSink(nullptr);
}

void VideoPlayerView::setSource(const QString& path) {
    source_ = path;
    player_->setSource(QUrl::fromLocalFile(path));
}

void VideoPlayerView::play() {
    if (!source_.isEmpty())
        player_->play();
}

void VideoPlayerView::pause() {
    player_->pause();
}

bool VideoPlayerView::isPlaying() const {
    return player_->playbackState() == QMediaPlayer::PlayingState;
}

QImage VideoPlayerView::currentFrame() const {
    return frameView_->frame();
}

QString VideoPlayerView::errorString() const {
    return player_->errorString();
}

void VideoPlayerView::updateButton() {
    playPauseButton_->setText(isPlaying() ? QStringLiteral("Pause") : QStringLiteral("Play"));
}
