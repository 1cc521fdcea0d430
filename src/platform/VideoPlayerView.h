#pragma once

#include <QImage>
#include <QString>
#include <QWidget>

class QMediaPlayer;
class QPushButton;
class VideoFrameView;

// A video on screen with a play/pause button under it. Where the system has no playback back end
// the view stays empty and reports that it is not playing; nothing waits on playback.
//
// Frames are painted by an ordinary widget rather than shown in the multimedia module's video widget:
// that one is a native window of its own, which the window system keeps above every sibling, so a sheet
// presented over the player would be drawn under the video.
class VideoPlayerView : public QWidget {
    Q_OBJECT
public:
    explicit VideoPlayerView(QWidget* parent = nullptr);
    ~VideoPlayerView() override;

    void setSource(const QString& path);
    QString source() const { return source_; }

    void play();
    void pause();
    bool isPlaying() const;

    // The last playback error, empty when none.
    QString errorString() const;

    QMediaPlayer* player() const { return player_; }
    QPushButton* playPauseButton() const { return playPauseButton_; }
    // The frame on screen; null before the first one arrives.
    QImage currentFrame() const;

signals:
    void playingChanged(bool playing);

private:
    void updateButton();

    QString source_;
    QMediaPlayer* player_ = nullptr;
    VideoFrameView* frameView_ = nullptr;
    QPushButton* playPauseButton_ = nullptr;
};
