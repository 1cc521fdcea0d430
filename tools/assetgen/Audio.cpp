// "Blank Audio.mp3": the silent track a picture becomes a video with. Its length is the video's length.
#include "Common.h"

#include "resources/AssetNames.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
}

#include <memory>

namespace assetgen {

namespace {

constexpr int sampleRate = 44100;
constexpr int seconds = 5;

struct CodecFree {
    void operator()(AVCodecContext* c) const { avcodec_free_context(&c); }
};
struct FrameFree {
    void operator()(AVFrame* f) const { av_frame_free(&f); }
};
struct PacketFree {
    void operator()(AVPacket* p) const { av_packet_free(&p); }
};
struct FormatFree {
    void operator()(AVFormatContext* f) const {
        if (f->pb)
            avio_closep(&f->pb);
        avformat_free_context(f);
    }
};

bool drain(AVCodecContext* codec, AVFormatContext* format, AVStream* stream, AVPacket* packet) {
    while (true) {
        const int got = avcodec_receive_packet(codec, packet);
        if (got == AVERROR(EAGAIN) || got == AVERROR_EOF)
            return true;
        if (got < 0)
            return false;
        av_packet_rescale_ts(packet, codec->time_base, stream->time_base);
        packet->stream_index = stream->index;
        if (av_interleaved_write_frame(format, packet) < 0)
            return false;
    }
}

bool writeSilence(const QString& path) {
    // Debian's libavcodec is built with LAME, whose encoder is the only MP3 one FFmpeg has.
    const AVCodec* encoder = avcodec_find_encoder(AV_CODEC_ID_MP3);
    if (!encoder) {
        qWarning("assetgen: this FFmpeg has no MP3 encoder (libmp3lame); cannot make the silent track");
        return false;
    }
    AVFormatContext* rawFormat = nullptr;
    const QByteArray file = path.toUtf8();
    if (avformat_alloc_output_context2(&rawFormat, nullptr, "mp3", file.constData()) < 0)
        return false;
    std::unique_ptr<AVFormatContext, FormatFree> format(rawFormat);
    // Bit-exact mode leaves out the library version strings, so a rebuild gives the same bytes.
    format->flags |= AVFMT_FLAG_BITEXACT;

    std::unique_ptr<AVCodecContext, CodecFree> codec(avcodec_alloc_context3(encoder));
    codec->sample_rate = sampleRate;
    codec->bit_rate = 64000;
    codec->sample_fmt = encoder->sample_fmts ? encoder->sample_fmts[0] : AV_SAMPLE_FMT_S16P;
    av_channel_layout_default(&codec->ch_layout, 1);
    codec->time_base = AVRational{1, sampleRate};
    codec->flags |= AV_CODEC_FLAG_BITEXACT;
    if (avcodec_open2(codec.get(), encoder, nullptr) < 0)
        return false;

    AVStream* stream = avformat_new_stream(format.get(), nullptr);
    if (!stream || avcodec_parameters_from_context(stream->codecpar, codec.get()) < 0)
        return false;
    stream->time_base = codec->time_base;
    if (avio_open(&format->pb, file.constData(), AVIO_FLAG_WRITE) < 0)
        return false;
    if (avformat_write_header(format.get(), nullptr) < 0)
        return false;

    std::unique_ptr<AVFrame, FrameFree> frame(av_frame_alloc());
    std::unique_ptr<AVPacket, PacketFree> packet(av_packet_alloc());
    const int frameSize = codec->frame_size > 0 ? codec->frame_size : 1152;
    const int total = sampleRate * seconds;
    for (int done = 0; done < total; done += frameSize) {
        frame->nb_samples = std::min(frameSize, total - done);
        frame->format = codec->sample_fmt;
        frame->sample_rate = sampleRate;
        av_channel_layout_copy(&frame->ch_layout, &codec->ch_layout);
        if (av_frame_get_buffer(frame.get(), 0) < 0)
            return false;
        av_samples_set_silence(frame->data, 0, frame->nb_samples, 1, codec->sample_fmt);
        frame->pts = done;
        if (avcodec_send_frame(codec.get(), frame.get()) < 0 ||
            !drain(codec.get(), format.get(), stream, packet.get()))
            return false;
        av_frame_unref(frame.get());
    }
    if (avcodec_send_frame(codec.get(), nullptr) < 0 ||
        !drain(codec.get(), format.get(), stream, packet.get()))
        return false;
    return av_write_trailer(format.get()) == 0;
}

} // namespace

JobList audioJobs() {
    return {{"audio", AssetNames::blankAudioName() + QLatin1Char('.') + AssetNames::blankAudioExtension(),
             [](const Context&, const QString& path) { return writeSilence(path); }}};
}

} // namespace assetgen
