#include "mpegaudio/MpegFrameHeader.h"

namespace {

// Bit rates in kbit/s by bit-rate index, index 0 (free format) and 15 (bad)
// without a rate.
constexpr int kMpeg1Layer1[16] = {0,   32,  64,  96,  128, 160, 192, 224,
                                  256, 288, 320, 352, 384, 416, 448, 0};
constexpr int kMpeg1Layer2[16] = {0,   32,  48,  56,  64,  80,  96,  112,
                                  128, 160, 192, 224, 256, 320, 384, 0};
constexpr int kMpeg1Layer3[16] = {0,   32,  40,  48,  56,  64,  80,  96,
                                  112, 128, 160, 192, 224, 256, 320, 0};
constexpr int kMpeg2Layer1[16] = {0,   32,  48,  56,  64,  80,  96,  112,
                                  128, 144, 160, 176, 192, 224, 256, 0};
constexpr int kMpeg2Layer23[16] = {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160, 0};

const int* bitrateTable(int version, int layer) {
    if (version == 1) {
        return layer == 1 ? kMpeg1Layer1 : layer == 2 ? kMpeg1Layer2 : kMpeg1Layer3;
    }
    return layer == 1 ? kMpeg2Layer1 : kMpeg2Layer23;
}

}  // namespace

const char* MpegFrameHeader::modeName() const {
    static const char* const kModes[4] = {"Stereo", "Joint Stereo", "Dual Channel",
                                          "Single Channel"};
    return kModes[modeIndex() & 3];
}

const char* MpegFrameHeader::emphasisName() const {
    static const char* const kEmphases[4] = {"None", "50/15", "Reserved", "CCITT J 17"};
    return kEmphases[emphasisIndex() & 3];
}

int MpegFrameHeader::bitrateKbps() const {
    const int version = mpegVersion();
    const int layerNumber = layer();
    if (version == 0 || layerNumber == 0) {
        return 0;
    }
    return bitrateTable(version, layerNumber)[bitrateIndex() & 15];
}

int MpegFrameHeader::frameLength() const {
    const int kbps = bitrateKbps();
    const int rate = sampleRateHz();
    if (kbps == 0 || rate == 0) {
        return 0;
    }
    const int padding = static_cast<int>(paddingBit());
    if (layer() == 1) {
        return (12 * kbps * 1000 / rate + padding) * 4;
    }
    return perSampleBytes() * kbps * 1000 / rate + padding;
}

int MpegFrameHeader::longestFreeFormatLength() const {
    constexpr int kHighestFreeFormatKbps = 640;
    const int rate = sampleRateHz();
    if (rate == 0) {
        return 0;
    }
    if (layer() == 1) {
        return (12 * kHighestFreeFormatKbps * 1000 / rate + 1) * 4;
    }
    return perSampleBytes() * kHighestFreeFormatKbps * 1000 / rate + 1;
}

int MpegFrameHeader::kbpsOfLength(int unpaddedLength) const {
    const int rate = sampleRateHz();
    if (rate == 0 || layer() == 0) {
        return 0;
    }
    const double bytesPerSecond =
        layer() == 1 ? unpaddedLength / 4.0 / 12.0 * rate
                     : static_cast<double>(unpaddedLength) / perSampleBytes() * rate;
    return static_cast<int>(bytesPerSecond / 1000.0 + 0.5);
}

bool MpegFrameHeader::isLayer3Audio() const {
    return knownBits_ == 32 && number(1, 11) == 0x7FF && mpegVersion() != 0 && layer() == 3 &&
           bitrateKbps() != 0 && sampleRateHz() != 0;
}

bool MpegFrameHeader::isLayer3FreeFormat() const {
    return knownBits_ == 32 && number(1, 11) == 0x7FF && mpegVersion() != 0 && layer() == 3 &&
           isFreeFormat() && sampleRateHz() != 0;
}

MpegFrameHeader MpegFrameHeader::withField(int position, int count, std::uint32_t value) const {
    const int shift = 32 - (position + count - 1);
    const std::uint32_t mask = ((count >= 32 ? 0 : (std::uint32_t{1} << count)) - 1) << shift;
    return MpegFrameHeader((bits_ & ~mask) | ((value << shift) & mask), knownBits_);
}

int MpegFrameHeader::bitrateIndexFor(int kbps) const {
    for (int index = 1; index < 15; ++index) {
        if (withField(17, 4, static_cast<std::uint32_t>(index)).bitrateKbps() == kbps) {
            return index;
        }
    }
    return 0;
}
