#pragma once

// Owners for FFmpeg's objects, shared by the video reading, export and generating code.

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/audio_fifo.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <QString>
#include <memory>
#include <mutex>

namespace ffmpeg {

// Encoders report every file at length on the console; only errors are worth a line in our log.
inline void quietLogs() {
    static std::once_flag once;
    std::call_once(once, [] { av_log_set_level(AV_LOG_ERROR); });
}

struct InputCloser {
    void operator()(AVFormatContext* c) const { avformat_close_input(&c); }
};
struct OutputCloser {
    void operator()(AVFormatContext* c) const {
        if (c->pb && !(c->oformat->flags & AVFMT_NOFILE))
            avio_closep(&c->pb);
        avformat_free_context(c);
    }
};
struct CodecFreer {
    void operator()(AVCodecContext* c) const { avcodec_free_context(&c); }
};
struct FrameFreer {
    void operator()(AVFrame* f) const { av_frame_free(&f); }
};
struct PacketFreer {
    void operator()(AVPacket* p) const { av_packet_free(&p); }
};
struct ScalerFreer {
    void operator()(SwsContext* s) const { sws_freeContext(s); }
};
struct ResamplerFreer {
    void operator()(SwrContext* s) const { swr_free(&s); }
};

using Input = std::unique_ptr<AVFormatContext, InputCloser>;
using Output = std::unique_ptr<AVFormatContext, OutputCloser>;
using Codec = std::unique_ptr<AVCodecContext, CodecFreer>;
using Frame = std::unique_ptr<AVFrame, FrameFreer>;
using Packet = std::unique_ptr<AVPacket, PacketFreer>;
using Scaler = std::unique_ptr<SwsContext, ScalerFreer>;
using Resampler = std::unique_ptr<SwrContext, ResamplerFreer>;

inline QString errorString(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return QString::fromUtf8(text);
}

inline Input openInput(const QString& path) {
    AVFormatContext* raw = nullptr;
    if (avformat_open_input(&raw, path.toUtf8().constData(), nullptr, nullptr) < 0)
        return nullptr;
    Input input(raw);
    if (avformat_find_stream_info(input.get(), nullptr) < 0)
        return nullptr;
    return input;
}

// A decoder for one stream of `input`, single-threaded when asked (exact, reproducible frames).
inline Codec openDecoder(const AVStream* stream, int threads = 0) {
    const AVCodec* codec = avcodec_find_decoder(stream->codecpar->codec_id);
    if (!codec)
        return nullptr;
    Codec decoder(avcodec_alloc_context3(codec));
    if (!decoder || avcodec_parameters_to_context(decoder.get(), stream->codecpar) < 0)
        return nullptr;
    decoder->thread_count = threads;
    decoder->pkt_timebase = stream->time_base;
    if (avcodec_open2(decoder.get(), codec, nullptr) < 0)
        return nullptr;
    return decoder;
}

} // namespace ffmpeg
