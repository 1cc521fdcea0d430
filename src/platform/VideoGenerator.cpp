#include "platform/H264Still.h"
#include "platform/Video.h"
#include "platform/VideoAudio.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
}

#include <QFile>
#include <cmath>
#include <cstdio>

namespace {

using namespace ffmpeg;

Video::GeneratedVideo failure(const QString& text) {
    return Video::GeneratedVideo{std::nullopt, text};
}

// The picture's size in the video: within the longest side allowed, both sides even.
QSize evenSize(QSize size, int maxLongSide) {
    const int longer = std::max(size.width(), size.height());
    if (longer > maxLongSide) {
        const double f = double(maxLongSide) / longer;
        size = QSize(std::max(2, int(size.width() * f)), std::max(2, int(size.height() * f)));
    }
    return QSize(std::max(2, size.width() & ~1), std::max(2, size.height() & ~1));
}

bool writePacket(AVFormatContext* output, AVPacket* packet) {
    return av_interleaved_write_frame(output, packet) >= 0;
}

} // namespace

namespace Video {

GeneratedVideo videoFromImage(const QImage& picture, const QString& audioPath, const QString& outputPath,
                              const StillVideoSettings& settings) {
    quietLogs();
    if (picture.isNull())
        return failure(QStringLiteral("There is no picture to make a video of"));
    if (!QFile::exists(audioPath))
        return failure(QStringLiteral("The sound file %1 does not exist").arg(audioPath));

    // The sound first: it decides the length.
    Input audioInput = openInput(audioPath);
    const int audioIndex =
        audioInput ? av_find_best_stream(audioInput.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0) : -1;
    if (audioIndex < 0)
        return failure(QStringLiteral("%1 has no sound that can be read").arg(audioPath));
    Codec audioDecoder = openDecoder(audioInput->streams[audioIndex]);
    if (!audioDecoder)
        return failure(QStringLiteral("%1: no decoder for its sound").arg(audioPath));
    if (audioInput->duration != AV_NOPTS_VALUE &&
        double(audioInput->duration) / AV_TIME_BASE > settings.maxSeconds)
        return failure(
            QStringLiteral("%1 is longer than %2 seconds").arg(audioPath).arg(settings.maxSeconds));

    const QSize size = evenSize(picture.size(), settings.maxLongSide);
    const QString partial = outputPath + QStringLiteral(".partial.mp4");
    const QByteArray partialName = QFile::encodeName(partial);
    AVFormatContext* rawOutput = nullptr;
    if (avformat_alloc_output_context2(&rawOutput, nullptr, "mp4", partialName.constData()) < 0)
        return failure(QStringLiteral("The MP4 writer is missing"));
    Output output(rawOutput);

    // The video encoder, opened for its parameter sets.
    const AVCodec* x264 = avcodec_find_encoder_by_name("libx264");
    if (!x264)
        return failure(QStringLiteral("This FFmpeg has no H.264 encoder (libx264)"));
    Codec video(avcodec_alloc_context3(x264));
    video->width = size.width();
    video->height = size.height();
    video->pix_fmt = AV_PIX_FMT_YUV420P;
    video->time_base = AVRational{1, settings.framesPerSecond};
    video->framerate = AVRational{settings.framesPerSecond, 1};
    video->color_range = AVCOL_RANGE_MPEG;
    video->colorspace = AVCOL_SPC_SMPTE170M;
    video->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    video->max_b_frames = 0;
    av_opt_set(video->priv_data, "preset", settings.x264Preset, 0);
    av_opt_set_int(video->priv_data, "crf", settings.crf, 0);
    if (const int opened = avcodec_open2(video.get(), x264, nullptr); opened < 0)
        return failure(QStringLiteral("The H.264 encoder did not open: ") + errorString(opened));
    const QByteArray parameterSets(reinterpret_cast<const char*>(video->extradata), video->extradata_size);
    const auto sps = h264still::parseSps(h264still::findNal(parameterSets, 7));
    if (!sps)
        return failure(QStringLiteral("The encoder's sequence parameters cannot be followed"));

    AVStream* videoStream = avformat_new_stream(output.get(), nullptr);
    if (!videoStream || avcodec_parameters_from_context(videoStream->codecpar, video.get()) < 0)
        return failure(QStringLiteral("No video stream in the output"));
    videoStream->time_base = video->time_base;
    const QByteArray extradata = parameterSets + h264still::skipPps(*sps);
    av_freep(&videoStream->codecpar->extradata);
    videoStream->codecpar->extradata =
        static_cast<uint8_t*>(av_mallocz(size_t(extradata.size()) + AV_INPUT_BUFFER_PADDING_SIZE));
    memcpy(videoStream->codecpar->extradata, extradata.constData(), size_t(extradata.size()));
    videoStream->codecpar->extradata_size = int(extradata.size());

    QString error;
    auto aac = AacWriter::open(audioDecoder.get(), output.get(), settings.audioBitRate, &error);
    if (!aac)
        return failure(error);

    if (avio_open(&output->pb, partialName.constData(), AVIO_FLAG_WRITE) < 0)
        return failure(QStringLiteral("%1 cannot be written").arg(partial));
    AVDictionary* options = nullptr;
    av_dict_set(&options, "movflags", "+faststart", 0);
    const int header = avformat_write_header(output.get(), &options);
    av_dict_free(&options);
    if (header < 0) {
        QFile::remove(partial);
        return failure(QStringLiteral("The MP4 header cannot be written: ") + errorString(header));
    }
    auto fail = [&](const QString& text) {
        output.reset();
        QFile::remove(partial);
        return failure(text);
    };

    if (!aac->transcodeAll(audioInput.get(), audioIndex, audioDecoder.get()) || !aac->finish())
        return fail(QStringLiteral("%1: the sound could not be encoded").arg(audioPath));
    const double seconds = double(aac->samples()) / aac->stream()->codecpar->sample_rate;
    const int frames = std::max(1, int(std::lround(seconds * settings.framesPerSecond)));

    // The one picture, converted once.
    Frame yuv(av_frame_alloc());
    yuv->format = AV_PIX_FMT_YUV420P;
    yuv->width = size.width();
    yuv->height = size.height();
    if (av_frame_get_buffer(yuv.get(), 0) < 0)
        return fail(QStringLiteral("Out of memory for the video picture"));
    const QImage rgb = picture.convertToFormat(QImage::Format_RGB32);
    Scaler scaler(sws_getContext(rgb.width(), rgb.height(), AV_PIX_FMT_BGRA, size.width(), size.height(),
                                 AV_PIX_FMT_YUV420P, SWS_BICUBIC | SWS_ACCURATE_RND, nullptr, nullptr,
                                 nullptr));
    if (!scaler)
        return fail(QStringLiteral("The picture cannot be converted for video"));
    const uint8_t* planes[1] = {rgb.constBits()};
    const int strides[1] = {int(rgb.bytesPerLine())};
    sws_scale(scaler.get(), planes, strides, 0, rgb.height(), yuv->data, yuv->linesize);
    yuv->pts = 0;

    Packet packet(av_packet_alloc());
    bool wroteIdr = false;
    for (AVFrame* send : {yuv.get(), static_cast<AVFrame*>(nullptr)}) {
        if (avcodec_send_frame(video.get(), send) < 0)
            return fail(QStringLiteral("The picture could not be encoded"));
        while (avcodec_receive_packet(video.get(), packet.get()) == 0) {
            av_packet_rescale_ts(packet.get(), video->time_base, videoStream->time_base);
            packet->duration = av_rescale_q(1, video->time_base, videoStream->time_base);
            packet->stream_index = videoStream->index;
            wroteIdr = wroteIdr || (packet->flags & AV_PKT_FLAG_KEY);
            if (!writePacket(output.get(), packet.get()))
                return fail(QStringLiteral("The video could not be written"));
        }
    }
    if (!wroteIdr)
        return fail(QStringLiteral("The encoder gave no picture"));

    // Every further frame repeats the picture: a slice of skipped macroblocks, a few bytes each.
    for (int i = 1; i < frames; ++i) {
        const QByteArray slice = h264still::skipSlice(*sps, i);
        if (av_new_packet(packet.get(), int(slice.size())) < 0)
            return fail(QStringLiteral("Out of memory"));
        memcpy(packet->data, slice.constData(), size_t(slice.size()));
        packet->pts = packet->dts = av_rescale_q(i, video->time_base, videoStream->time_base);
        packet->duration = av_rescale_q(1, video->time_base, videoStream->time_base);
        packet->stream_index = videoStream->index;
        if (!writePacket(output.get(), packet.get()))
            return fail(QStringLiteral("The video could not be written"));
    }
    if (av_write_trailer(output.get()) < 0)
        return fail(QStringLiteral("The MP4 could not be finished"));
    output.reset();
    if (std::rename(partialName.constData(), QFile::encodeName(outputPath).constData()) != 0) {
        QFile::remove(partial);
        return failure(QStringLiteral("%1 could not be put in place").arg(outputPath));
    }
    return GeneratedVideo{outputPath, QString()};
}

} // namespace Video
