#include "platform/VideoPlayerView.h"

#include <QMediaPlayer>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>
#include <QVideoWidget>

VideoPlayerView::VideoPlayerView(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("videoPlayerView"));
    player_ = new QMediaPlayer(this);
    videoWidget_ = new QVideoWidget(this);
    videoWidget_->setAspectRatioMode(Qt::KeepAspectRatio);
    player_->setVideoOutput(videoWidget_);

    playPauseButton_ = new QPushButton(this);
    playPauseButton_->setObjectName(QStringLiteral("playPauseButton"));
    playPauseButton_->setCursor(Qt::PointingHandCursor);
    playPauseButton_->setFixedHeight(36);
    connect(playPauseButton_, &QPushButton::clicked, this, [this] { isPlaying() ? pause() : play(); });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(videoWidget_, 1);
    layout->addWidget(playPauseButton_, 0, Qt::AlignHCenter);

    connect(player_, &QMediaPlayer::playbackStateChanged, this, [this](QMediaPlayer::PlaybackState state) {
        updateButton();
        emit playingChanged(state == QMediaPlayer::PlayingState);
    });
    updateButton();
}

VideoPlayerView::~VideoPlayerView() {
    // Stop before the output goes away so the back end does not render into a deleted widget.
    player_->stop();
    player_->setVideoOutput(nullptr);
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

QString VideoPlayerView::errorString() const {
    return player_->errorString();
}

void VideoPlayerView::updateButton() {
    playPauseButton_->setText(isPlaying() ? QStringLiteral("Pause") : QStringLiteral("Play"));
}
