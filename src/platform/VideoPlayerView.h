#pragma once

#include <QString>
#include <QWidget>

class QMediaPlayer;
class QPushButton;
class QVideoWidget;

// A video on screen with a play/pause button under it. Where the system has no playback back end
// the view stays empty and reports that it is not playing; nothing waits on playback.
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

signals:
    void playingChanged(bool playing);

private:
    void updateButton();

    QString source_;
    QMediaPlayer* player_ = nullptr;
    QVideoWidget* videoWidget_ = nullptr;
    QPushButton* playPauseButton_ = nullptr;
};
