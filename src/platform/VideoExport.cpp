#include "platform/Dispatch.h"
#include "platform/Video.h"
#include "platform/VideoAudio.h"

extern "C" {
#include <libavutil/display.h>
#include <libavutil/opt.h>
}

#include <QFile>
#include <cstdio>

namespace {

using namespace ffmpeg;

// The first decodable frame of the best video stream, as a check that the file really is a video.
bool firstFrameDecodes(const QString& path) {
    Input input = openInput(path);
    if (!input)
        return false;
    const int index = av_find_best_stream(input.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (index < 0)
        return false;
    Codec decoder = openDecoder(input->streams[index], 1);
    Packet packet(av_packet_alloc());
    Frame frame(av_frame_alloc());
    if (!decoder || !packet || !frame)
        return false;
    int packets = 0;
    while (av_read_frame(input.get(), packet.get()) >= 0) {
        const bool ours = packet->stream_index == index;
        if (ours)
            avcodec_send_packet(decoder.get(), packet.get());
        av_packet_unref(packet.get());
        if (avcodec_receive_frame(decoder.get(), frame.get()) == 0)
            return true;
        // A stream that gives nothing after many packets is not worth exporting.
        if (ours && ++packets > 64)
            return false;
    }
    avcodec_send_packet(decoder.get(), nullptr);
    return avcodec_receive_frame(decoder.get(), frame.get()) == 0;
}

QSize fitted(int width, int height, int maxLongSide) {
    const int longer = std::max(width, height);
    double f = longer > maxLongSide ? double(maxLongSide) / longer : 1.0;
    const int w = std::max(2, int(std::lround(width * f)) & ~1);
    const int h = std::max(2, int(std::lround(height * f)) & ~1);
    return QSize(w, h);
}

void copyDisplayMatrix(const AVStream* from, AVStream* to) {
    size_t size = 0;
    const uint8_t* matrix = av_stream_get_side_data(from, AV_PKT_DATA_DISPLAYMATRIX, &size);
    if (!matrix || size < 9 * sizeof(int32_t))
        return;
    if (uint8_t* copy = av_stream_new_side_data(to, AV_PKT_DATA_DISPLAYMATRIX, size))
        memcpy(copy, matrix, size);
}

} // namespace

namespace Video {

EncodeSettings encodeSettings(ExportPreset preset) {
    switch (preset) {
    case ExportPreset::highestQuality:
        return EncodeSettings{3840, 18, 192000, "veryfast"};
    case ExportPreset::mediumQuality:
        return EncodeSettings{1280, 23, 128000, "veryfast"};
    case ExportPreset::lowQuality:
        break;
    }
    return EncodeSettings{640, 28, 64000, "veryfast"};
}

std::shared_ptr<ExportSession> ExportSession::create(const QString& inputPath, ExportPreset preset) {
    quietLogs();
    if (!firstFrameDecodes(inputPath))
        return nullptr;
    std::shared_ptr<ExportSession> session(new ExportSession(inputPath, preset));
    if (preset == ExportPreset::highestQuality) {
        Input input = openInput(inputPath);
        bool copyable = input != nullptr;
        const int videoIndex =
            input ? av_find_best_stream(input.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0) : -1;
        for (unsigned i = 0; copyable && i < input->nb_streams; ++i) {
            const AVCodecParameters* p = input->streams[i]->codecpar;
            if (int(i) == videoIndex)
                copyable = p->codec_id == AV_CODEC_ID_H264 && p->format == AV_PIX_FMT_YUV420P &&
                           std::max(p->width, p->height) <= encodeSettings(preset).maxLongSide;
            else if (p->codec_type == AVMEDIA_TYPE_AUDIO)
                copyable = p->codec_id == AV_CODEC_ID_AAC;
        }
        session->passThrough_ = copyable;
    }
    return session;
}

void ExportSession::exportAsynchronously(std::function<void()> completion) {
    auto self = shared_from_this();
    Dispatch::global(QualityOfService::userInitiated).async([self, completion = std::move(completion)] {
        self->exportSynchronously();
        if (completion)
            completion();
    });
}

void ExportSession::exportSynchronously() {
    status_ = Status::exporting;
    const QString partial = outputURL + QStringLiteral(".partial.mp4");
    const QByteArray partialName = QFile::encodeName(partial);
    auto finish = [&](Status status, const QString& error) {
        status_ = status;
        error_ = error;
        if (status != Status::completed)
            QFile::remove(partial);
    };

    Input input = openInput(input_);
    if (!input)
        return finish(Status::failed, QStringLiteral("%1 cannot be read any more").arg(input_));
    const int videoIndex = av_find_best_stream(input.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    const int audioIndex = av_find_best_stream(input.get(), AVMEDIA_TYPE_AUDIO, -1, videoIndex, nullptr, 0);
    if (videoIndex < 0)
        return finish(Status::failed, QString());
    AVStream* inVideo = input->streams[videoIndex];

    AVFormatContext* rawOutput = nullptr;
    if (avformat_alloc_output_context2(&rawOutput, nullptr, "mp4", partialName.constData()) < 0)
        return finish(Status::failed, QStringLiteral("The MP4 writer is missing"));
    Output output(rawOutput);

    AVStream* outVideo = avformat_new_stream(output.get(), nullptr);
    AVStream* outAudio = nullptr;
    Codec decoder, encoder, audioDecoder;
    std::unique_ptr<AacWriter> aac;
    Scaler scaler;
    const EncodeSettings settings = encodeSettings(preset_);
    if (!outVideo)
        return finish(Status::failed, QString());

    if (passThrough_) {
        avcodec_parameters_copy(outVideo->codecpar, inVideo->codecpar);
        outVideo->codecpar->codec_tag = 0;
        outVideo->time_base = inVideo->time_base;
        if (audioIndex >= 0) {
            outAudio = avformat_new_stream(output.get(), nullptr);
            avcodec_parameters_copy(outAudio->codecpar, input->streams[audioIndex]->codecpar);
            outAudio->codecpar->codec_tag = 0;
            outAudio->time_base = input->streams[audioIndex]->time_base;
        }
    } else {
        decoder = openDecoder(inVideo);
        const AVCodec* x264 = avcodec_find_encoder_by_name("libx264");
        if (!decoder || !x264)
            return finish(Status::failed, QStringLiteral("No decoder or H.264 encoder"));
        const QSize size = fitted(decoder->width, decoder->height, settings.maxLongSide);
        encoder.reset(avcodec_alloc_context3(x264));
        encoder->width = size.width();
        encoder->height = size.height();
        encoder->pix_fmt = AV_PIX_FMT_YUV420P;
        encoder->time_base = inVideo->time_base;
        encoder->framerate = av_guess_frame_rate(input.get(), inVideo, nullptr);
        encoder->sample_aspect_ratio = decoder->sample_aspect_ratio;
        encoder->color_range = AVCOL_RANGE_MPEG;
        encoder->colorspace = AVCOL_SPC_SMPTE170M;
        encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        av_opt_set(encoder->priv_data, "preset", settings.x264Preset, 0);
        av_opt_set_int(encoder->priv_data, "crf", settings.crf, 0);
        if (const int opened = avcodec_open2(encoder.get(), x264, nullptr); opened < 0)
            return finish(Status::failed,
                          QStringLiteral("The H.264 encoder did not open: ") + errorString(opened));
        avcodec_parameters_from_context(outVideo->codecpar, encoder.get());
        outVideo->time_base = encoder->time_base;
        if (audioIndex >= 0) {
            audioDecoder = openDecoder(input->streams[audioIndex]);
            QString error;
            if (audioDecoder)
                aac = AacWriter::open(audioDecoder.get(), output.get(), settings.audioBitRate, &error);
            if (!aac)
                return finish(Status::failed, error);
            outAudio = aac->stream();
        }
    }
    copyDisplayMatrix(inVideo, outVideo);

    if (avio_open(&output->pb, partialName.constData(), AVIO_FLAG_WRITE) < 0)
        return finish(Status::failed, QStringLiteral("%1 cannot be written").arg(partial));
    AVDictionary* options = nullptr;
    av_dict_set(&options, "movflags", "+faststart", 0);
    const int header = avformat_write_header(output.get(), &options);
    av_dict_free(&options);
    if (header < 0)
        return finish(Status::failed,
                      QStringLiteral("The MP4 header cannot be written: ") + errorString(header));

    Packet packet(av_packet_alloc());
    Packet encoded(av_packet_alloc());
    Frame frame(av_frame_alloc());
    Frame scaled(av_frame_alloc());
    int64_t startPts = AV_NOPTS_VALUE;
    auto encodeVideo = [&](AVFrame* picture) {
        if (avcodec_send_frame(encoder.get(), picture) < 0)
            return false;
        while (avcodec_receive_packet(encoder.get(), encoded.get()) == 0) {
            av_packet_rescale_ts(encoded.get(), encoder->time_base, outVideo->time_base);
            encoded->stream_index = outVideo->index;
            if (av_interleaved_write_frame(output.get(), encoded.get()) < 0)
                return false;
        }
        return true;
    };
    auto drainVideo = [&] {
        while (avcodec_receive_frame(decoder.get(), frame.get()) == 0) {
            if (!scaled->data[0]) {
                scaled->format = AV_PIX_FMT_YUV420P;
                scaled->width = encoder->width;
                scaled->height = encoder->height;
                if (av_frame_get_buffer(scaled.get(), 0) < 0)
                    return false;
            }
            scaler.reset(sws_getCachedContext(scaler.release(), frame->width, frame->height,
                                              AVPixelFormat(frame->format), encoder->width, encoder->height,
                                              AV_PIX_FMT_YUV420P, SWS_BICUBIC, nullptr, nullptr, nullptr));
            if (!scaler || av_frame_make_writable(scaled.get()) < 0)
                return false;
            sws_scale(scaler.get(), frame->data, frame->linesize, 0, frame->height, scaled->data,
                      scaled->linesize);
            int64_t pts = frame->best_effort_timestamp;
            if (startPts == AV_NOPTS_VALUE)
                startPts = pts == AV_NOPTS_VALUE ? 0 : pts;
            scaled->pts = pts == AV_NOPTS_VALUE ? AV_NOPTS_VALUE : pts - startPts;
            av_frame_unref(frame.get());
            if (!encodeVideo(scaled.get()))
                return false;
        }
        return true;
    };
    auto drainAudio = [&] {
        while (avcodec_receive_frame(audioDecoder.get(), frame.get()) == 0) {
            const bool ok = aac->write(frame.get());
            av_frame_unref(frame.get());
            if (!ok)
                return false;
        }
        return true;
    };

    bool ok = true;
    while (ok && av_read_frame(input.get(), packet.get()) >= 0) {
        if (cancelled_) {
            av_packet_unref(packet.get());
            return finish(Status::cancelled, QString());
        }
        const int index = packet->stream_index;
        if (passThrough_ && (index == videoIndex || index == audioIndex)) {
            AVStream* out = index == videoIndex ? outVideo : outAudio;
            av_packet_rescale_ts(packet.get(), input->streams[index]->time_base, out->time_base);
            packet->stream_index = out->index;
            packet->pos = -1;
            ok = av_interleaved_write_frame(output.get(), packet.get()) >= 0;
        } else if (!passThrough_ && index == videoIndex) {
            avcodec_send_packet(decoder.get(), packet.get());
            ok = drainVideo();
        } else if (!passThrough_ && index == audioIndex) {
            avcodec_send_packet(audioDecoder.get(), packet.get());
            ok = drainAudio();
        }
        av_packet_unref(packet.get());
    }
    if (ok && !passThrough_) {
        avcodec_send_packet(decoder.get(), nullptr);
        ok = drainVideo() && encodeVideo(nullptr);
        if (ok && aac) {
            avcodec_send_packet(audioDecoder.get(), nullptr);
            ok = drainAudio() && aac->finish();
        }
    }
    if (cancelled_)
        return finish(Status::cancelled, QString());
    if (!ok || av_write_trailer(output.get()) < 0)
        return finish(Status::failed, QString());
    output.reset();
    if (std::rename(partialName.constData(), QFile::encodeName(outputURL).constData()) != 0)
        return finish(Status::failed, QStringLiteral("%1 could not be put in place").arg(outputURL));
    finish(Status::completed, QString());
}

} // namespace Video
