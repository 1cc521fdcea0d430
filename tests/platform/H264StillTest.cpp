#include "platform/H264Still.h"

#include <gtest/gtest.h>

namespace {

// Reads an H.264 NAL unit's payload bit by bit, emulation prevention bytes taken out.
class BitReader {
public:
    explicit BitReader(const QByteArray& nal) {
        int zeros = 0;
        for (char c : nal) {
            const auto byte = static_cast<unsigned char>(c);
            if (zeros >= 2 && byte == 3) {
                zeros = 0;
                continue;
            }
            zeros = byte == 0 ? zeros + 1 : 0;
            bytes_.push_back(byte);
        }
    }
    unsigned bits(int count) {
        unsigned value = 0;
        for (int i = 0; i < count; ++i, ++position_) {
            const std::size_t byte = position_ / 8;
            const int bit = byte < bytes_.size() ? (bytes_[byte] >> (7 - position_ % 8)) & 1 : 0;
            value = value << 1 | unsigned(bit);
        }
        return value;
    }
    unsigned ue() {
        int leading = 0;
        while (bits(1) == 0 && leading < 32)
            ++leading;
        return (1u << leading) - 1 + bits(leading);
    }
    int se() {
        const unsigned code = ue();
        return code % 2 ? int(code + 1) / 2 : -int(code / 2);
    }

private:
    std::vector<unsigned char> bytes_;
    std::size_t position_ = 0;
};

// Every repeated frame is a reference P slice of the second parameter set whose frame number and picture
// order count rise by one frame each (wrapping at their widths) and which skips the whole picture.
TEST(H264Still, SkipSlicesCountFramesAndSkipEveryMacroblock) {
    h264still::SequenceInfo sps;
    sps.log2MaxFrameNum = 4;
    sps.pocType = 0;
    sps.log2MaxPocLsb = 6;
    sps.widthInMbs = 40;
    sps.heightInMbs = 23;
    for (int frame = 1; frame <= 40; ++frame) {
        const QByteArray unit = h264still::skipSlice(sps, frame);
        ASSERT_TRUE(unit.startsWith(QByteArray("\0\0\0\1", 4)));
        EXPECT_EQ(static_cast<unsigned char>(unit[4]), 0x41) << "non-IDR slice, kept for reference";
        BitReader slice(unit.mid(5));
        EXPECT_EQ(slice.ue(), 0u); // first macroblock
        EXPECT_EQ(slice.ue(), 5u); // P
        EXPECT_EQ(slice.ue(), 1u); // the parameter set made for these slices
        EXPECT_EQ(slice.bits(4), unsigned(frame % 16)) << frame;
        EXPECT_EQ(slice.bits(6), unsigned(2 * frame % 64)) << frame;
        EXPECT_EQ(slice.bits(3), 0u); // no overrides, no list changes, sliding window
        EXPECT_EQ(slice.se(), 0);
        EXPECT_EQ(slice.ue(), 1u);
        EXPECT_EQ(slice.ue(), 40u * 23u) << frame;
    }
    // With the second order count type the slice carries no count of its own.
    sps.pocType = 2;
    BitReader slice(h264still::skipSlice(sps, 3).mid(5));
    slice.ue();
    slice.ue();
    slice.ue();
    EXPECT_EQ(slice.bits(4), 3u);
    EXPECT_EQ(slice.bits(3), 0u);
    EXPECT_EQ(slice.se(), 0);
    EXPECT_EQ(slice.ue(), 1u);
    EXPECT_EQ(slice.ue(), 40u * 23u);
}

} // namespace
