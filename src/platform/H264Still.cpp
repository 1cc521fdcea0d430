#include "platform/H264Still.h"

#include <cstdint>
#include <vector>

namespace {

constexpr int kSkipPpsId = 1;

// Removes emulation prevention bytes (00 00 03 → 00 00).
std::vector<uint8_t> unescape(const QByteArray& nal) {
    std::vector<uint8_t> rbsp;
    rbsp.reserve(static_cast<size_t>(nal.size()));
    int zeros = 0;
    for (const char c : nal) {
        const auto byte = static_cast<uint8_t>(c);
        if (zeros >= 2 && byte == 3) {
            zeros = 0;
            continue;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        rbsp.push_back(byte);
    }
    return rbsp;
}

class BitReader {
public:
    explicit BitReader(std::vector<uint8_t> bytes) : bytes_(std::move(bytes)) {}
    bool failed() const { return failed_; }
    uint32_t bits(int count) {
        uint32_t value = 0;
        for (int i = 0; i < count; ++i) {
            if (position_ >= bytes_.size() * 8) {
                failed_ = true;
                return 0;
            }
            value = (value << 1) | ((bytes_[position_ / 8] >> (7 - position_ % 8)) & 1u);
            ++position_;
        }
        return value;
    }
    uint32_t ue() {
        int zeros = 0;
        while (!failed_ && bits(1) == 0)
            if (++zeros > 31) {
                failed_ = true;
                return 0;
            }
        return zeros == 0 ? 0 : (1u << zeros) - 1 + bits(zeros);
    }
    int32_t se() {
        const uint32_t code = ue();
        return code & 1 ? static_cast<int32_t>((code + 1) / 2) : -static_cast<int32_t>(code / 2);
    }

private:
    std::vector<uint8_t> bytes_;
    size_t position_ = 0;
    bool failed_ = false;
};

class BitWriter {
public:
    void bits(uint32_t value, int count) {
        for (int i = count - 1; i >= 0; --i) {
            current_ = static_cast<uint8_t>((current_ << 1) | ((value >> i) & 1u));
            if (++filled_ == 8) {
                bytes_.push_back(current_);
                current_ = 0;
                filled_ = 0;
            }
        }
    }
    void ue(uint32_t value) {
        const uint64_t code = uint64_t(value) + 1;
        int length = 0;
        while ((code >> length) > 1)
            ++length;
        bits(0, length);
        bits(static_cast<uint32_t>(code), length + 1);
    }
    void se(int32_t value) {
        ue(value > 0 ? static_cast<uint32_t>(2 * value - 1) : static_cast<uint32_t>(-2 * value));
    }
    // rbsp_trailing_bits, then the NAL with its header, escaped, behind a start code.
    QByteArray nal(uint8_t header) {
        bits(1, 1);
        while (filled_ != 0)
            bits(0, 1);
        QByteArray out("\x00\x00\x00\x01", 4);
        out.append(static_cast<char>(header));
        int zeros = 0;
        for (const uint8_t byte : bytes_) {
            if (zeros >= 2 && byte <= 3) {
                out.append('\x03');
                zeros = 0;
            }
            out.append(static_cast<char>(byte));
            zeros = byte == 0 ? zeros + 1 : 0;
        }
        return out;
    }

private:
    std::vector<uint8_t> bytes_;
    uint8_t current_ = 0;
    int filled_ = 0;
};

void skipScalingList(BitReader& reader, int size) {
    int last = 8, next = 8;
    for (int j = 0; j < size && !reader.failed(); ++j) {
        if (next != 0)
            next = (last + reader.se() + 256) % 256;
        last = next == 0 ? last : next;
    }
}

} // namespace

namespace h264still {

QByteArray findNal(const QByteArray& annexB, int nalType) {
    int i = 0;
    while (true) {
        const int start = annexB.indexOf(QByteArray("\x00\x00\x01", 3), i);
        if (start < 0)
            return {};
        const int body = start + 3;
        if (body >= annexB.size())
            return {};
        int end = annexB.indexOf(QByteArray("\x00\x00\x01", 3), body);
        if (end < 0)
            end = annexB.size();
        else if (end > body && annexB[end - 1] == '\0')
            --end; // a four-byte start code
        if ((annexB[body] & 0x1f) == nalType)
            return annexB.mid(body, end - body);
        i = body;
    }
}

std::optional<SequenceInfo> parseSps(const QByteArray& nal) {
    if (nal.size() < 4 || (nal[0] & 0x1f) != 7)
        return std::nullopt;
    BitReader reader(unescape(nal.mid(1)));
    SequenceInfo info;
    const uint32_t profile = reader.bits(8);
    reader.bits(16); // constraint flags, level
    info.spsId = static_cast<int>(reader.ue());
    static const uint32_t highProfiles[] = {100, 110, 122, 244, 44, 83, 86, 118, 128, 138, 139, 134, 135};
    bool high = false;
    for (const uint32_t p : highProfiles)
        high = high || p == profile;
    if (high) {
        const uint32_t chroma = reader.ue();
        if (chroma == 3)
            reader.bits(1);
        reader.ue();
        reader.ue();
        reader.bits(1);
        if (reader.bits(1)) // seq_scaling_matrix_present_flag
            for (int i = 0; i < (chroma != 3 ? 8 : 12); ++i)
                if (reader.bits(1))
                    skipScalingList(reader, i < 6 ? 16 : 64);
    }
    info.log2MaxFrameNum = static_cast<int>(reader.ue()) + 4;
    info.pocType = static_cast<int>(reader.ue());
    if (info.pocType == 0)
        info.log2MaxPocLsb = static_cast<int>(reader.ue()) + 4;
    else if (info.pocType != 2)
        return std::nullopt;
    reader.ue(); // max_num_ref_frames
    reader.bits(1);
    info.widthInMbs = static_cast<int>(reader.ue()) + 1;
    info.heightInMbs = static_cast<int>(reader.ue()) + 1;
    const bool frameMbsOnly = reader.bits(1) == 1;
    if (reader.failed() || !frameMbsOnly || info.log2MaxFrameNum > 16 || info.log2MaxPocLsb > 16)
        return std::nullopt;
    return info;
}

QByteArray skipPps(const SequenceInfo& sps) {
    BitWriter w;
    w.ue(kSkipPpsId);
    w.ue(static_cast<uint32_t>(sps.spsId));
    w.bits(0, 1);       // entropy_coding_mode_flag: CAVLC
    w.bits(0, 1);       // bottom_field_pic_order_in_frame_present_flag
    w.ue(0);            // num_slice_groups_minus1
    w.ue(0);            // num_ref_idx_l0_default_active_minus1
    w.ue(0);            // num_ref_idx_l1_default_active_minus1
    w.bits(0, 1);       // weighted_pred_flag
    w.bits(0, 2);       // weighted_bipred_idc
    w.se(0);            // pic_init_qp_minus26
    w.se(0);            // pic_init_qs_minus26
    w.se(0);            // chroma_qp_index_offset
    w.bits(1, 1);       // deblocking_filter_control_present_flag
    w.bits(0, 1);       // constrained_intra_pred_flag
    w.bits(0, 1);       // redundant_pic_cnt_present_flag
    return w.nal(0x68); // nal_ref_idc 3, type 8
}

QByteArray skipSlice(const SequenceInfo& sps, int frameIndex) {
    BitWriter w;
    w.ue(0); // first_mb_in_slice
    w.ue(5); // slice_type: P, every slice of the picture
    w.ue(kSkipPpsId);
    w.bits(static_cast<uint32_t>(frameIndex) & ((1u << sps.log2MaxFrameNum) - 1), sps.log2MaxFrameNum);
    if (sps.pocType == 0)
        w.bits(static_cast<uint32_t>(2 * frameIndex) & ((1u << sps.log2MaxPocLsb) - 1), sps.log2MaxPocLsb);
    w.bits(0, 1); // num_ref_idx_active_override_flag
    w.bits(0, 1); // ref_pic_list_modification_flag_l0
    w.bits(0, 1); // adaptive_ref_pic_marking_mode_flag: sliding window
    w.se(0);      // slice_qp_delta
    w.ue(1);      // disable_deblocking_filter_idc: nothing to smooth in a copy
    w.ue(static_cast<uint32_t>(sps.widthInMbs * sps.heightInMbs)); // mb_skip_run: the whole picture
    return w.nal(0x41);                                            // nal_ref_idc 2, type 1 (non-IDR slice)
}

} // namespace h264still
