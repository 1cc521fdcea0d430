#pragma once

// Media files for tests made and read by FFmpeg's own libraries: real MP4 files to feed our video
// code, and an independent decoder to read back the pictures our code writes.

#include <QImage>
#include <QString>
#include <cmath>
#include <functional>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/display.h>
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

namespace testvideo {

struct Options {
    int width = 64;
    int height = 48;
    int fps = 30;
    int frames = 30;
    int keyframeInterval = 10;
    // The turn the display matrix asks for, in clockwise degrees; 0 writes no matrix.
    double displayRotationClockwise = 0;
};

// Writes `options.frames` frames drawn by `frame(i)`; answers false on any failure.
inline bool writeMp4(const QString& path, const Options& options, const std::function<QImage(int)>& frame) {
    av_log_set_level(AV_LOG_ERROR);
    AVFormatContext* out = nullptr;
    if (avformat_alloc_output_context2(&out, nullptr, "mp4", path.toUtf8().constData()) < 0)
        return false;
    const AVCodec* codec = avcodec_find_encoder_by_name("libx264");
    if (!codec)
        codec = avcodec_find_encoder(AV_CODEC_ID_MPEG4);
    AVStream* stream = codec ? avformat_new_stream(out, nullptr) : nullptr;
    AVCodecContext* enc = codec ? avcodec_alloc_context3(codec) : nullptr;
    AVFrame* yuv = av_frame_alloc();
    AVPacket* packet = av_packet_alloc();
    SwsContext* sws = nullptr;
    bool ok = stream && enc && yuv && packet;
    if (ok) {
        enc->width = options.width;
        enc->height = options.height;
        enc->pix_fmt = AV_PIX_FMT_YUV420P;
        enc->time_base = AVRational{1, options.fps};
        enc->framerate = AVRational{options.fps, 1};
        enc->gop_size = options.keyframeInterval;
        enc->keyint_min = options.keyframeInterval;
        enc->thread_count = 1;
        if (out->oformat->flags & AVFMT_GLOBALHEADER)
            enc->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        if (codec->id == AV_CODEC_ID_H264) {
            av_opt_set(enc->priv_data, "preset", "fast", 0);
            av_opt_set(enc->priv_data, "qp", "4", 0);
            av_opt_set(enc->priv_data, "x264-params", "scenecut=0", 0);
        } else {
            enc->flags |= AV_CODEC_FLAG_QSCALE;
            enc->global_quality = FF_QP2LAMBDA * 2;
        }
        ok = avcodec_open2(enc, codec, nullptr) >= 0 &&
             avcodec_parameters_from_context(stream->codecpar, enc) >= 0;
    }
    if (ok) {
        stream->time_base = enc->time_base;
        if (options.displayRotationClockwise != 0) {
            auto* matrix = reinterpret_cast<int32_t*>(
                av_stream_new_side_data(stream, AV_PKT_DATA_DISPLAYMATRIX, 9 * sizeof(int32_t)));
            ok = matrix != nullptr;
            if (ok)
                av_display_rotation_set(matrix, options.displayRotationClockwise);
        }
    }
    if (ok)
        ok = avio_open(&out->pb, path.toUtf8().constData(), AVIO_FLAG_WRITE) >= 0 &&
             avformat_write_header(out, nullptr) >= 0;
    if (ok) {
        yuv->format = enc->pix_fmt;
        yuv->width = enc->width;
        yuv->height = enc->height;
        ok = av_frame_get_buffer(yuv, 0) >= 0;
        sws = sws_getContext(enc->width, enc->height, AV_PIX_FMT_RGB32, enc->width, enc->height, enc->pix_fmt,
                             SWS_BICUBIC, nullptr, nullptr, nullptr);
        ok = ok && sws;
    }
    auto drain = [&]() {
        while (avcodec_receive_packet(enc, packet) == 0) {
            av_packet_rescale_ts(packet, enc->time_base, stream->time_base);
            packet->stream_index = stream->index;
            if (av_interleaved_write_frame(out, packet) < 0)
                ok = false;
        }
    };
    for (int i = 0; ok && i < options.frames; ++i) {
        const QImage rgb =
            frame(i).convertToFormat(QImage::Format_RGB32).scaled(options.width, options.height);
        ok = av_frame_make_writable(yuv) >= 0;
        const uint8_t* src[4] = {rgb.constBits(), nullptr, nullptr, nullptr};
        const int stride[4] = {static_cast<int>(rgb.bytesPerLine()), 0, 0, 0};
        sws_scale(sws, src, stride, 0, options.height, yuv->data, yuv->linesize);
        yuv->pts = i;
        ok = ok && avcodec_send_frame(enc, yuv) >= 0;
        drain();
    }
    if (ok) {
        avcodec_send_frame(enc, nullptr);
        drain();
        ok = av_write_trailer(out) >= 0;
    }
    sws_freeContext(sws);
    av_packet_free(&packet);
    av_frame_free(&yuv);
    avcodec_free_context(&enc);
    if (out && out->pb)
        avio_closep(&out->pb);
    avformat_free_context(out);
    return ok;
}

// The first picture of any file FFmpeg reads (JPEG, PNG, MP4…) as RGB32, stored pixels as they are;
// null when it cannot be read.
inline QImage decodeFirstPicture(const QString& path) {
    AVFormatContext* in = nullptr;
    if (avformat_open_input(&in, path.toUtf8().constData(), nullptr, nullptr) < 0)
        return {};
    QImage result;
    const AVCodec* codec = nullptr;
    AVCodecContext* dec = nullptr;
    AVPacket* packet = av_packet_alloc();
    AVFrame* frame = av_frame_alloc();
    const int index = avformat_find_stream_info(in, nullptr) >= 0
                          ? av_find_best_stream(in, AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0)
                          : -1;
    if (index >= 0 && codec && (dec = avcodec_alloc_context3(codec)) &&
        avcodec_parameters_to_context(dec, in->streams[index]->codecpar) >= 0 &&
        avcodec_open2(dec, codec, nullptr) >= 0) {
        bool got = false;
        while (!got && av_read_frame(in, packet) >= 0) {
            if (packet->stream_index == index)
                avcodec_send_packet(dec, packet);
            av_packet_unref(packet);
            got = avcodec_receive_frame(dec, frame) == 0;
        }
        if (!got) {
            avcodec_send_packet(dec, nullptr);
            got = avcodec_receive_frame(dec, frame) == 0;
        }
        if (got) {
            SwsContext* sws = sws_getContext(
                frame->width, frame->height, static_cast<AVPixelFormat>(frame->format), frame->width,
                frame->height, AV_PIX_FMT_RGB32, SWS_BICUBIC, nullptr, nullptr, nullptr);
            if (sws) {
                // swscale's vector code may write past the end of a row, so it gets room to spare.
                QImage padded(FFALIGN(frame->width, 64), frame->height + 1, QImage::Format_RGB32);
                uint8_t* planes[4] = {padded.bits(), nullptr, nullptr, nullptr};
                int strides[4] = {static_cast<int>(padded.bytesPerLine()), 0, 0, 0};
                sws_scale(sws, frame->data, frame->linesize, 0, frame->height, planes, strides);
                sws_freeContext(sws);
                result = padded.copy(0, 0, frame->width, frame->height);
            }
        }
    }
    av_frame_free(&frame);
    av_packet_free(&packet);
    avcodec_free_context(&dec);
    avformat_close_input(&in);
    return result;
}

// A flat grey frame whose level tells its index, so a decoded frame names itself.
inline QImage numberedFrame(int index, int width = 64, int height = 48) {
    QImage image(width, height, QImage::Format_RGB32);
    const int level = 16 + index * 7;
    image.fill(QColor(level, level, level));
    return image;
}

inline int frameNumberOf(const QImage& image) {
    const QColor c = image.pixelColor(image.width() / 2, image.height() / 2);
    return static_cast<int>(std::lround((c.green() - 16) / 7.0));
}

} // namespace testvideo
