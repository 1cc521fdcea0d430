#include "platform/Video.h"

#include "platform/FfmpegSupport.h"

#include <QTransform>
#include <cmath>
#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/display.h>
#include <libswscale/swscale.h>
}

namespace {

using FramePtr = ffmpeg::Frame;

// Clockwise quarter turns the display matrix asks for, in degrees (0, 90, 180, 270).
int displayRotation(const AVStream* stream) {
    size_t size = 0;
    const uint8_t* data = av_stream_get_side_data(stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
    if (!data || size < 9 * sizeof(int32_t))
        return 0;
    const double counterClockwise = av_display_rotation_get(reinterpret_cast<const int32_t*>(data));
    if (std::isnan(counterClockwise))
        return 0;
    int clockwise = static_cast<int>(std::lround(-counterClockwise / 90.0)) * 90;
    clockwise %= 360;
    return clockwise < 0 ? clockwise + 360 : clockwise;
}

std::optional<QImage> toImage(const AVFrame* frame, AVRational sampleAspect) {
    int width = frame->width;
    const int height = frame->height;
    if (sampleAspect.num > 0 && sampleAspect.den > 0 && sampleAspect.num != sampleAspect.den)
        width = std::max(1, static_cast<int>(std::lround(width * av_q2d(sampleAspect))));
    ffmpeg::Scaler scaler(sws_getContext(
        frame->width, height, static_cast<AVPixelFormat>(frame->format), width, height, AV_PIX_FMT_RGB32,
        SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT, nullptr, nullptr, nullptr));
    if (!scaler)
        return std::nullopt;
    // swscale's vector code may write past the end of a row, so it gets room to spare.
    QImage padded(FFALIGN(width, 64), height + 1, QImage::Format_RGB32);
    if (padded.isNull())
        return std::nullopt;
    uint8_t* planes[4] = {padded.bits(), nullptr, nullptr, nullptr};
    int strides[4] = {static_cast<int>(padded.bytesPerLine()), 0, 0, 0};
    sws_scale(scaler.get(), frame->data, frame->linesize, 0, height, planes, strides);
    return padded.copy(0, 0, width, height);
}

} // namespace

namespace Video {

std::optional<QImage> frameAt(const QString& path, double seconds) {
    if (!std::isfinite(seconds) || seconds < 0)
        return std::nullopt;

    AVFormatContext* rawFormat = nullptr;
    if (avformat_open_input(&rawFormat, path.toUtf8().constData(), nullptr, nullptr) < 0)
        return std::nullopt;
    ffmpeg::Input format(rawFormat);
    if (avformat_find_stream_info(format.get(), nullptr) < 0)
        return std::nullopt;

    const AVCodec* codec = nullptr;
    const int streamIndex = av_find_best_stream(format.get(), AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    if (streamIndex < 0 || !codec)
        return std::nullopt;
    AVStream* stream = format->streams[streamIndex];

    ffmpeg::Codec decoder(avcodec_alloc_context3(codec));
    if (!decoder || avcodec_parameters_to_context(decoder.get(), stream->codecpar) < 0)
        return std::nullopt;
    decoder->thread_count = 1;
    if (avcodec_open2(decoder.get(), codec, nullptr) < 0)
        return std::nullopt;

    const int64_t start = stream->start_time == AV_NOPTS_VALUE ? 0 : stream->start_time;
    const int64_t target =
        start + static_cast<int64_t>(std::floor(seconds / av_q2d(stream->time_base) + 1e-6));
    // Backward seek lands on the keyframe at or before the target; decoding on from there is exact.
    if (av_seek_frame(format.get(), streamIndex, target, AVSEEK_FLAG_BACKWARD) < 0)
        av_seek_frame(format.get(), streamIndex, start, AVSEEK_FLAG_BACKWARD);
    avcodec_flush_buffers(decoder.get());

    ffmpeg::Packet packet(av_packet_alloc());
    FramePtr frame(av_frame_alloc());
    FramePtr shown(av_frame_alloc()); // the latest frame at or before the target
    if (!packet || !frame || !shown)
        return std::nullopt;
    bool haveShown = false;
    bool done = false;

    auto drain = [&]() {
        while (!done && avcodec_receive_frame(decoder.get(), frame.get()) == 0) {
            const int64_t pts = frame->best_effort_timestamp;
            if (pts != AV_NOPTS_VALUE && pts > target) {
                // Past the time: the frame before it is the one on screen, unless the video starts later.
                if (!haveShown) {
                    av_frame_unref(shown.get());
                    av_frame_move_ref(shown.get(), frame.get());
                    haveShown = true;
                }
                done = true;
                break;
            }
            av_frame_unref(shown.get());
            av_frame_move_ref(shown.get(), frame.get());
            haveShown = true;
        }
    };

    while (!done && av_read_frame(format.get(), packet.get()) >= 0) {
        if (packet->stream_index == streamIndex)
            avcodec_send_packet(decoder.get(), packet.get());
        av_packet_unref(packet.get());
        drain();
    }
    if (!done) {
        avcodec_send_packet(decoder.get(), nullptr);
        drain();
    }
    if (!haveShown)
        return std::nullopt;

    const AVRational aspect = av_guess_sample_aspect_ratio(format.get(), stream, shown.get());
    auto image = toImage(shown.get(), aspect);
    if (!image)
        return std::nullopt;
    if (const int rotation = displayRotation(stream); rotation != 0)
        image = image->transformed(QTransform().rotate(rotation));
    return image;
}

} // namespace Video
