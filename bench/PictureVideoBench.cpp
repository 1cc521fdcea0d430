#include "platform/Assets.h"
#include "platform/FfmpegSupport.h"
#include "platform/Video.h"
#include "platform/VideoAudio.h"

extern "C" {
#include <libavutil/opt.h>
}

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cmath>

// A phone canvas and the 5 s silent track to an MP4, the picture-to-video step of saving a picture as
// MP4: our generator (the picture converted and encoded once, every other frame a skipped frame)
// against the way `ffmpeg -loop 1` works (the same size, frame rate, encoder, preset and x264
// settings, but the picture scaled and converted anew and encoded for every frame). Both write the
// same sound. The whole download (generator, then the export at High) is measured beside them.
namespace {

constexpr int kWidth = 1170, kHeight = 2532;

const QImage& canvas() {
    static const QImage image = [] {
        const QImage photo(QStringLiteral(LUMIVEX_SAMPLES_DIR "/fruits.jpg"));
        if (photo.isNull())
            qFatal("sample photo fruits.jpg is missing");
        return photo.scaled(kWidth, kHeight, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
            .convertToFormat(QImage::Format_RGB32);
    }();
    return image;
}

QString blankAudio() {
    const auto path = Assets::resourceURL(QStringLiteral("Blank Audio"), QStringLiteral("mp3"));
    if (!path)
        qFatal("Blank Audio.mp3 is missing: build the assets target first");
    return *path;
}

// The yardstick: every frame converted from the picture and encoded by x264.
bool naiveStillVideo(const QImage& picture, const QString& audioPath, const QString& outputPath) {
    using namespace ffmpeg;
    const Video::StillVideoSettings settings;
    Input audioInput = openInput(audioPath);
    const int audioIndex = av_find_best_stream(audioInput.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    Codec audioDecoder = openDecoder(audioInput->streams[audioIndex]);
    AVFormatContext* raw = nullptr;
    const QByteArray name = outputPath.toUtf8();
    avformat_alloc_output_context2(&raw, nullptr, "mp4", name.constData());
    Output output(raw);
    Codec video(avcodec_alloc_context3(avcodec_find_encoder_by_name("libx264")));
    video->width = picture.width() & ~1;
    video->height = picture.height() & ~1;
    video->pix_fmt = AV_PIX_FMT_YUV420P;
    video->time_base = AVRational{1, settings.framesPerSecond};
    video->framerate = AVRational{settings.framesPerSecond, 1};
    video->color_range = AVCOL_RANGE_MPEG;
    video->colorspace = AVCOL_SPC_SMPTE170M;
    video->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    video->max_b_frames = 0;
    av_opt_set(video->priv_data, "preset", settings.x264Preset, 0);
    av_opt_set_int(video->priv_data, "crf", settings.crf, 0);
    if (avcodec_open2(video.get(), video->codec, nullptr) < 0)
        return false;
    AVStream* stream = avformat_new_stream(output.get(), nullptr);
    avcodec_parameters_from_context(stream->codecpar, video.get());
    stream->time_base = video->time_base;
    QString error;
    auto aac = AacWriter::open(audioDecoder.get(), output.get(), settings.audioBitRate, &error);
    if (!aac || avio_open(&output->pb, name.constData(), AVIO_FLAG_WRITE) < 0)
        return false;
    AVDictionary* options = nullptr;
    av_dict_set(&options, "movflags", "+faststart", 0);
    const int header = avformat_write_header(output.get(), &options);
    av_dict_free(&options);
    if (header < 0)
        return false;
    aac->transcodeAll(audioInput.get(), audioIndex, audioDecoder.get());
    aac->finish();
    const int frames = int(std::lround(double(aac->samples()) / aac->stream()->codecpar->sample_rate *
                                       settings.framesPerSecond));

    Frame yuv(av_frame_alloc());
    yuv->format = AV_PIX_FMT_YUV420P;
    yuv->width = video->width;
    yuv->height = video->height;
    av_frame_get_buffer(yuv.get(), 0);
    Packet packet(av_packet_alloc());
    auto drain = [&] {
        while (avcodec_receive_packet(video.get(), packet.get()) == 0) {
            av_packet_rescale_ts(packet.get(), video->time_base, stream->time_base);
            packet->stream_index = stream->index;
            av_interleaved_write_frame(output.get(), packet.get());
        }
    };
    for (int i = 0; i < frames; ++i) {
        Scaler scaler(sws_getContext(picture.width(), picture.height(), AV_PIX_FMT_BGRA, video->width,
                                     video->height, AV_PIX_FMT_YUV420P, SWS_BICUBIC | SWS_ACCURATE_RND,
                                     nullptr, nullptr, nullptr));
        av_frame_make_writable(yuv.get());
        const uint8_t* planes[1] = {picture.constBits()};
        const int strides[1] = {int(picture.bytesPerLine())};
        sws_scale(scaler.get(), planes, strides, 0, picture.height(), yuv->data, yuv->linesize);
        yuv->pts = i;
        avcodec_send_frame(video.get(), yuv.get());
        drain();
    }
    avcodec_send_frame(video.get(), nullptr);
    drain();
    return av_write_trailer(output.get()) >= 0;
}

void reportFile(benchmark::State& state, const QString& path) {
    state.counters["bytes"] = double(QFileInfo(path).size());
}

void BM_PictureToVideo(benchmark::State& state) {
    QTemporaryDir dir;
    const QString audio = blankAudio();
    const QString out = dir.filePath(QStringLiteral("still.mp4"));
    for (auto _ : state)
        if (!Video::videoFromImage(canvas(), audio, out).url)
            state.SkipWithError("the generator failed");
    reportFile(state, out);
}

void BM_PictureToVideoNaive(benchmark::State& state) {
    QTemporaryDir dir;
    const QString audio = blankAudio();
    const QString out = dir.filePath(QStringLiteral("naive.mp4"));
    for (auto _ : state)
        if (!naiveStillVideo(canvas(), audio, out))
            state.SkipWithError("the yardstick failed");
    reportFile(state, out);
}

// What the download button costs for a picture: the generator, then the export at a preset.
void BM_PictureDownload(benchmark::State& state) {
    QTemporaryDir dir;
    const QString audio = blankAudio();
    const auto preset = static_cast<Video::ExportPreset>(state.range(0));
    const QString generated = dir.filePath(QStringLiteral("generated.mp4"));
    const QString out = dir.filePath(QStringLiteral("Convert.mp4"));
    for (auto _ : state) {
        if (!Video::videoFromImage(canvas(), audio, generated).url) {
            state.SkipWithError("the generator failed");
            break;
        }
        const auto session = Video::ExportSession::create(generated, preset);
        session->outputURL = out;
        session->exportSynchronously();
        if (session->status() != Video::ExportSession::Status::completed)
            state.SkipWithError("the export failed");
    }
    reportFile(state, out);
}

} // namespace

BENCHMARK(BM_PictureToVideo)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(BM_PictureToVideoNaive)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_PictureDownload)
    ->ArgName("preset")
    ->Arg(int(Video::ExportPreset::highestQuality))
    ->Arg(int(Video::ExportPreset::mediumQuality))
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);
