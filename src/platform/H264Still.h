#pragma once

#include <QByteArray>
#include <optional>

// The bits needed to repeat one H.264 picture without encoding it again: a second picture parameter
// set (CAVLC, id 1) and, for every further frame, a P slice whose macroblocks are all skipped. A
// skipped macroblock copies its reference unchanged, so each such frame shows exactly the picture
// before it. The slices are reference frames with a rising frame_num, so the stream stays valid under
// the sliding-window reference marking and either picture order count type the encoder may choose.
namespace h264still {

// What the skip slices must agree with, read from the encoder's sequence parameter set.
struct SequenceInfo {
    int spsId = 0;
    int log2MaxFrameNum = 4;
    int pocType = 0;
    int log2MaxPocLsb = 4;
    int widthInMbs = 0;
    int heightInMbs = 0;
};

// Reads the SPS NAL unit (without start code); nothing for what these slices cannot follow (fields,
// custom scaling lists are fine, picture order count type 1 is not).
std::optional<SequenceInfo> parseSps(const QByteArray& nal);

// The first SPS NAL in an Annex B byte stream (start codes included), without its start code.
QByteArray findNal(const QByteArray& annexB, int nalType);

// The extra parameter set, as an Annex B NAL unit with its start code.
QByteArray skipPps(const SequenceInfo& sps);

// The Annex B NAL unit of the `frameIndex`-th frame after the IDR picture (1, 2, ...).
QByteArray skipSlice(const SequenceInfo& sps, int frameIndex);

} // namespace h264still
