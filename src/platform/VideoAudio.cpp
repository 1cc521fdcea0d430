#include "platform/VideoAudio.h"

extern "C" {
#include <libavutil/audio_fifo.h>
#include <libavutil/channel_layout.h>
}

namespace ffmpeg {

void AacWriter::FifoFreer::operator()(AVAudioFifo* f) const {
    av_audio_fifo_free(f);
}

std::unique_ptr<AacWriter> AacWriter::open(const AVCodecContext* decoder, AVFormatContext* output,
                                           int bitRate, QString* error) {
    std::unique_ptr<AacWriter> writer(new AacWriter);
    writer->output_ = output;
    const AVCodec* aac = avcodec_find_encoder(AV_CODEC_ID_AAC);
    if (!aac) {
        *error = QStringLiteral("no AAC encoder");
        return nullptr;
    }
    writer->encoder_.reset(avcodec_alloc_context3(aac));
    AVCodecContext* enc = writer->encoder_.get();
    enc->sample_fmt = AV_SAMPLE_FMT_FLTP;
    enc->sample_rate = decoder->sample_rate > 0 ? decoder->sample_rate : 44100;
    const int channels = decoder->ch_layout.nb_channels >= 2 ? 2 : 1;
    av_channel_layout_default(&enc->ch_layout, channels);
    enc->bit_rate = bitRate;
    enc->time_base = AVRational{1, enc->sample_rate};
    if (output->oformat->flags & AVFMT_GLOBALHEADER)
        enc->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    if (const int opened = avcodec_open2(enc, aac, nullptr); opened < 0) {
        *error = QStringLiteral("the AAC encoder did not open: ") + errorString(opened);
        return nullptr;
    }
    writer->stream_ = avformat_new_stream(output, nullptr);
    if (!writer->stream_ || avcodec_parameters_from_context(writer->stream_->codecpar, enc) < 0) {
        *error = QStringLiteral("no sound stream in the output");
        return nullptr;
    }
    writer->stream_->time_base = enc->time_base;

    AVChannelLayout inLayout;
    if (decoder->ch_layout.nb_channels > 0)
        av_channel_layout_copy(&inLayout, &decoder->ch_layout);
    else
        av_channel_layout_default(&inLayout, 1);
    SwrContext* raw = nullptr;
    const int made = swr_alloc_set_opts2(&raw, &enc->ch_layout, enc->sample_fmt, enc->sample_rate, &inLayout,
                                         decoder->sample_fmt, decoder->sample_rate, 0, nullptr);
    av_channel_layout_uninit(&inLayout);
    writer->resampler_.reset(raw);
    if (made < 0 || swr_init(raw) < 0) {
        *error = QStringLiteral("the sound cannot be resampled");
        return nullptr;
    }
    writer->fifo_.reset(av_audio_fifo_alloc(enc->sample_fmt, channels, enc->frame_size * 4));
    writer->frame_.reset(av_frame_alloc());
    writer->packet_.reset(av_packet_alloc());
    if (!writer->fifo_ || !writer->frame_ || !writer->packet_) {
        *error = QStringLiteral("out of memory");
        return nullptr;
    }
    return writer;
}

bool AacWriter::write(const AVFrame* decoded) {
    AVCodecContext* enc = encoder_.get();
    const int inSamples = decoded ? decoded->nb_samples : 0;
    const int room = swr_get_out_samples(resampler_.get(), inSamples);
    if (room < 0)
        return false;
    if (room > 0) {
        uint8_t** planes = nullptr;
        if (av_samples_alloc_array_and_samples(&planes, nullptr, enc->ch_layout.nb_channels, room,
                                               enc->sample_fmt, 0) < 0)
            return false;
        const int got =
            swr_convert(resampler_.get(), planes, room,
                        decoded ? const_cast<const uint8_t**>(decoded->extended_data) : nullptr, inSamples);
        const bool ok =
            got >= 0 && av_audio_fifo_write(fifo_.get(), reinterpret_cast<void**>(planes), got) == got;
        av_freep(&planes[0]);
        av_freep(&planes);
        if (!ok)
            return false;
    }
    return encodeFifo(decoded == nullptr);
}

bool AacWriter::encodeFifo(bool flush) {
    AVCodecContext* enc = encoder_.get();
    while (av_audio_fifo_size(fifo_.get()) >= enc->frame_size ||
           (flush && av_audio_fifo_size(fifo_.get()) > 0)) {
        const int count = std::min(av_audio_fifo_size(fifo_.get()), enc->frame_size);
        av_frame_unref(frame_.get());
        frame_->nb_samples = count;
        frame_->format = enc->sample_fmt;
        frame_->sample_rate = enc->sample_rate;
        av_channel_layout_copy(&frame_->ch_layout, &enc->ch_layout);
        if (av_frame_get_buffer(frame_.get(), 0) < 0 ||
            av_audio_fifo_read(fifo_.get(), reinterpret_cast<void**>(frame_->data), count) != count)
            return false;
        frame_->pts = samples_;
        samples_ += count;
        if (avcodec_send_frame(enc, frame_.get()) < 0 || !drainEncoder(false))
            return false;
    }
    return true;
}

bool AacWriter::drainEncoder(bool flush) {
    AVCodecContext* enc = encoder_.get();
    if (flush && avcodec_send_frame(enc, nullptr) < 0)
        return false;
    while (true) {
        const int got = avcodec_receive_packet(enc, packet_.get());
        if (got == AVERROR(EAGAIN) || got == AVERROR_EOF)
            return true;
        if (got < 0)
            return false;
        av_packet_rescale_ts(packet_.get(), enc->time_base, stream_->time_base);
        packet_->stream_index = stream_->index;
        if (av_interleaved_write_frame(output_, packet_.get()) < 0)
            return false;
    }
}

bool AacWriter::transcodeAll(AVFormatContext* input, int streamIndex, AVCodecContext* decoder) {
    Packet packet(av_packet_alloc());
    Frame frame(av_frame_alloc());
    if (!packet || !frame)
        return false;
    auto drain = [&] {
        while (avcodec_receive_frame(decoder, frame.get()) == 0) {
            const bool ok = write(frame.get());
            av_frame_unref(frame.get());
            if (!ok)
                return false;
        }
        return true;
    };
    while (av_read_frame(input, packet.get()) >= 0) {
        if (packet->stream_index == streamIndex)
            avcodec_send_packet(decoder, packet.get()); // a damaged packet is skipped, as players do
        av_packet_unref(packet.get());
        if (!drain())
            return false;
    }
    avcodec_send_packet(decoder, nullptr);
    return drain();
}

} // namespace ffmpeg
