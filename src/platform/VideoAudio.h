#pragma once

#include "platform/FfmpegSupport.h"

#include <QString>
#include <memory>

namespace ffmpeg {

// Decoded sound in, AAC packets out into an output file's stream: resampled to the encoder's format
// and cut into the encoder's frame size. Used by the export and the still-picture video.
class AacWriter {
public:
    // Adds an AAC stream for sound like `decoder` gives to `output`; null with `error` set on failure.
    static std::unique_ptr<AacWriter> open(const AVCodecContext* decoder, AVFormatContext* output,
                                           int bitRate, QString* error);

    // One decoded frame (null flushes the resampler and the encoder). False on an error.
    bool write(const AVFrame* decoded);
    bool finish() { return write(nullptr) && drainEncoder(true); }

    AVStream* stream() const { return stream_; }
    // Samples given to the encoder so far, at the output rate.
    int64_t samples() const { return samples_; }

    // Decodes every frame of `stream` in `input` from where it stands and hands it to `write`.
    bool transcodeAll(AVFormatContext* input, int streamIndex, AVCodecContext* decoder);

private:
    AacWriter() = default;
    bool encodeFifo(bool flush);
    bool drainEncoder(bool flush);

    AVFormatContext* output_ = nullptr;
    AVStream* stream_ = nullptr;
    Codec encoder_;
    Resampler resampler_;
    Frame frame_;
    Packet packet_;
    struct FifoFreer {
        void operator()(AVAudioFifo* f) const;
    };
    std::unique_ptr<AVAudioFifo, FifoFreer> fifo_;
    int64_t samples_ = 0;
};

} // namespace ffmpeg
