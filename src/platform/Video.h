#pragma once

#include <QImage>
#include <QString>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>

// Video files: frames for pictures of a video, export at a quality preset, and a video made of a
// still picture and a sound track.
namespace Video {

// The export qualities. Highest keeps the picture size (up to 3840 on the longer side) and an H.264/AAC
// source untouched; Medium fits the longer side in 1280; Low in 640. Re-encoded video is H.264 in
// yuv420p, sound AAC, in an MP4 that starts playing before it is fully read.
enum class ExportPreset { highestQuality, mediumQuality, lowQuality };

// What each preset encodes with.
struct EncodeSettings {
    int maxLongSide = 3840;
    int crf = 18;
    int audioBitRate = 192000;
    const char* x264Preset = "veryfast";
};
EncodeSettings encodeSettings(ExportPreset preset);

// Exports one file to another at a preset, on a worker thread. Made only for a file that opens as a
// video whose first frame decodes; anything else (not a video, truncated, no video stream) gives no
// session. The output is written beside `outputURL` and renamed over it when complete.
class ExportSession : public std::enable_shared_from_this<ExportSession> {
public:
    // The raw values are the phone's.
    enum class Status { unknown = 0, waiting = 1, exporting = 2, completed = 3, failed = 4, cancelled = 5 };

    static std::shared_ptr<ExportSession> create(const QString& inputPath, ExportPreset preset);

    QString outputURL;

    // Runs the export on a worker and then calls `completion` there. Status and error are final then.
    void exportAsynchronously(std::function<void()> completion);
    // The same export on the calling thread.
    void exportSynchronously();
    void cancelExport() { cancelled_ = true; }

    Status status() const { return status_; }
    // Why a failed export failed; empty when the reason is unknown.
    const QString& error() const { return error_; }

    // Pass-through is used for the highest preset when the source is already H.264 (yuv420p) with AAC
    // or no sound and fits the size: re-encoding could only lose quality.
    bool passesThrough() const { return passThrough_; }

private:
    ExportSession(QString input, ExportPreset preset) : input_(std::move(input)), preset_(preset) {}
    QString input_;
    ExportPreset preset_;
    bool passThrough_ = false;
    std::atomic<Status> status_{Status::waiting};
    std::atomic<bool> cancelled_{false};
    QString error_;
};

// How a still picture becomes a video: the frame rate, and x264's preset and quality.
struct StillVideoSettings {
    int framesPerSecond = 30;
    int crf = 18;
    const char* x264Preset = "veryfast";
    int audioBitRate = 128000;
    int maxLongSide = 3840;
    // Audio longer than this is refused.
    double maxSeconds = 600;
};

struct GeneratedVideo {
    std::optional<QString> url;
    QString error;
};

// One picture and one sound file to an H.264 + AAC MP4 as long as the sound (yuv420p, even size,
// faststart). The picture is converted and encoded once; every further frame is a skipped frame that
// repeats it, which costs next to nothing. Written beside `outputPath`, renamed over it at the end.
GeneratedVideo videoFromImage(const QImage& picture, const QString& audioPath, const QString& outputPath,
                              const StillVideoSettings& settings = {});

// The frame shown at `seconds` into the video at `path`, exactly: decoding starts at the keyframe
// before that time and runs up to it. The frame is turned as the file's display matrix asks and
// stretched to square pixels. Nothing for a file without a decodable video stream or a time that
// is negative or not a number; a time past the end gives the last frame.
std::optional<QImage> frameAt(const QString& path, double seconds);

} // namespace Video
