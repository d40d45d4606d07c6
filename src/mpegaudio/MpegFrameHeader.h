#pragma once

#include <array>
#include <cstdint>
#include <optional>

// The 32 bits that start every MPEG audio frame, cut into their fields by bit
// position, counted from 1 at the first bit of the first byte: 1 to 11 sync,
// 12 and 13 version, 14 and 15 layer, 16 protection, 17 to 20 bit-rate index,
// 21 and 22 sample-rate index, 23 padding, 24 private, 25 and 26 channel
// mode, 27 and 28 mode extension, 29 copyright, 30 original, 31 and 32
// emphasis. Beside the fields stand what follows from them: version, layer,
// bit rate, sample rate, frame length, samples per frame.
//
// A header may know fewer than 32 digits (the frame report builds its header
// from a text of digits that can be shorter): a field then has only the
// digits that are there, and a field that starts behind them has none.
class MpegFrameHeader {
public:
    MpegFrameHeader() = default;
    // knownBits digits, left-aligned in bits (digit 1 is the highest bit).
    explicit MpegFrameHeader(std::uint32_t bits, int knownBits = 32)
        : bits_(bits), knownBits_(knownBits < 0 ? 0 : (knownBits > 32 ? 32 : knownBits)) {}
    // The header from four bytes in file order.
    static MpegFrameHeader fromBytes(const std::uint8_t* bytes) {
        return MpegFrameHeader((std::uint32_t{bytes[0]} << 24) | (std::uint32_t{bytes[1]} << 16) |
                               (std::uint32_t{bytes[2]} << 8) | std::uint32_t{bytes[3]});
    }

    // The number the digits from position to position + count - 1 make, of
    // those that are known; nothing when the field starts behind them.
    std::optional<std::uint32_t> field(int position, int count) const {
        if (position < 1 || count < 1 || position > knownBits_) {
            return std::nullopt;
        }
        const int last = position + count - 1 > knownBits_ ? knownBits_ : position + count - 1;
        const int width = last - position + 1;
        const std::uint32_t shifted = bits_ >> (32 - last);
        return width >= 32 ? shifted : shifted & ((std::uint32_t{1} << width) - 1);
    }
    // The same with no digits read as 0. A header of all 32 digits, that of
    // every frame read from a file, takes the short way: a shift and a mask.
    std::uint32_t number(int position, int count) const {
        if (knownBits_ == 32 && position >= 1 && count >= 1 && count < 32 &&
            position + count <= 33) {
            return (bits_ >> (33 - position - count)) & ((std::uint32_t{1} << count) - 1);
        }
        return field(position, count).value_or(0);
    }

    std::uint32_t versionIndex() const { return number(12, 2); }
    std::uint32_t layerIndex() const { return number(14, 2); }
    std::uint32_t bitrateIndex() const { return number(17, 4); }
    std::uint32_t sampleRateIndex() const { return number(21, 2); }
    std::uint32_t paddingBit() const { return number(23, 1); }
    std::uint32_t modeIndex() const { return number(25, 2); }
    std::uint32_t emphasisIndex() const { return number(31, 2); }
    // True when bit 16 is clear: a 16-bit CRC follows the header.
    bool hasCrc() const { return number(16, 1) == 0; }

    // 1, 2, 25 (meaning 2.5) or 0 (reserved).
    int mpegVersion() const {
        constexpr int kVersions[4] = {25, 0, 2, 1};
        return kVersions[versionIndex() & 3];
    }
    // 1, 2, 3 or 0 (reserved).
    int layer() const {
        constexpr int kLayers[4] = {0, 3, 2, 1};
        return kLayers[layerIndex() & 3];
    }
    // "Stereo", "Joint Stereo", "Dual Channel" or "Single Channel".
    const char* modeName() const;
    int channels() const { return modeIndex() == 3 ? 1 : 2; }
    // "None", "50/15", "Reserved" or "CCITT J 17".
    const char* emphasisName() const;
    // The bit rate of the version and layer in kbit/s; 0 for index 0 (free
    // format), index 15, the reserved version or layer.
    int bitrateKbps() const;
    // 0 for index 3 and the reserved version.
    int sampleRateHz() const {
        constexpr int kRates[4] = {44100, 48000, 32000, 0};
        const int rate = kRates[sampleRateIndex() & 3];
        switch (mpegVersion()) {
            case 1:
                return rate;
            case 2:
                return rate / 2;
            case 25:
                return rate / 4;
            default:
                return 0;
        }
    }

    // 1152 or 576 for Layer III, 1152 for Layer II, 384 for Layer I.
    int samplesPerFrame() const {
        switch (layer()) {
            case 1:
                return 384;
            case 2:
                return 1152;
            case 3:
                return mpegVersion() == 1 ? 1152 : 576;
            default:
                return 0;
        }
    }
    // The frame's whole length in bytes, header included; 0 when the header
    // gives none (free format, reserved values).
    int frameLength() const;
    // A free-format frame (bit-rate index 0) has the length of the stream's
    // frames without padding, which only the distance between two frames
    // tells, plus its padding.
    int freeFormatLength(int unpaddedLength) const {
        return unpaddedLength + static_cast<int>(paddingBit()) * (layer() == 1 ? 4 : 1);
    }
    // The longest free-format frame of this version, layer and sample rate
    // that is looked for: the length of a frame at 640 kbit/s, the highest
    // rate encoders write in free format; 0 without a sample rate.
    int longestFreeFormatLength() const;
    // The bit rate in kbit/s, rounded, that frames of this length without
    // padding make; 0 without a sample rate.
    int kbpsOfLength(int unpaddedLength) const;
    // The bytes in front of a Layer III frame's main data: header, CRC and
    // side information.
    int layer3DataOffset() const { return 4 + (hasCrc() ? 2 : 0) + sideInfoLength(); }
    // Layer III: the bytes of side information behind the header (and its CRC).
    int sideInfoLength() const {
        if (mpegVersion() == 1) {
            return channels() == 1 ? 17 : 32;
        }
        return channels() == 1 ? 9 : 17;
    }

    // A complete Layer III header of any version with a bit rate and sample
    // rate from the tables: the frames the joiner keeps.
    bool isLayer3Audio() const;
    // The same with bit-rate index 0: a frame of a free-format stream.
    bool isLayer3FreeFormat() const;
    bool isFreeFormat() const { return bitrateIndex() == 0; }
    // Same version, layer, sample rate and channel count: frames of one stream.
    bool sameStreamAs(const MpegFrameHeader& other) const {
        return versionIndex() == other.versionIndex() && layerIndex() == other.layerIndex() &&
               sampleRateIndex() == other.sampleRateIndex() && channels() == other.channels();
    }

    // The header with one field set to value.
    MpegFrameHeader withField(int position, int count, std::uint32_t value) const;
    // The bit-rate index of this version and layer for a rate, or 0.
    int bitrateIndexFor(int kbps) const;
    std::uint32_t bits() const { return bits_; }
    std::array<std::uint8_t, 4> bytes() const {
        return {static_cast<std::uint8_t>(bits_ >> 24), static_cast<std::uint8_t>(bits_ >> 16),
                static_cast<std::uint8_t>(bits_ >> 8), static_cast<std::uint8_t>(bits_)};
    }

private:
    // Layers II and III: the bytes of a frame per bit/s of the rate, times the
    // sample rate (144 for 1152 samples a frame, 72 for 576).
    int perSampleBytes() const { return layer() == 3 && mpegVersion() != 1 ? 72 : 144; }

    std::uint32_t bits_ = 0;
    int knownBits_ = 32;
};
