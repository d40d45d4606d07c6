#include "mpegaudio/Mp3HeaderFrame.h"

#include <cstring>

namespace {

constexpr std::uint32_t kFramesFlag = 1;
constexpr std::uint32_t kBytesFlag = 2;
constexpr std::uint32_t kTocFlag = 4;
constexpr std::uint32_t kQualityFlag = 8;
constexpr int kVbriOffset = 4 + 32;
// The LAME extension's byte behind the encoder's name: the tag's revision and,
// in its low half, the encoder's bit-rate method.
constexpr int kLameMethodByte = 9;
constexpr std::uint8_t kMethodUnknown = 0;
constexpr std::uint8_t kMethodConstant = 1;
constexpr std::uint8_t kMethodConstantTwoPasses = 8;

std::uint32_t bigEndian32(const std::uint8_t* p) {
    return (std::uint32_t{p[0]} << 24) | (std::uint32_t{p[1]} << 16) | (std::uint32_t{p[2]} << 8) |
           std::uint32_t{p[3]};
}

void putBigEndian32(std::uint8_t* p, std::uint32_t value) {
    p[0] = static_cast<std::uint8_t>(value >> 24);
    p[1] = static_cast<std::uint8_t>(value >> 16);
    p[2] = static_cast<std::uint8_t>(value >> 8);
    p[3] = static_cast<std::uint8_t>(value);
}

// Where the Xing or Info header of a frame with this header starts.
int xingOffset(const MpegFrameHeader& header) {
    return 4 + (header.hasCrc() ? 2 : 0) + header.sideInfoLength();
}

bool trustedEncoder(const std::uint8_t* name) {
    return std::memcmp(name, "LAME", 4) == 0 || std::memcmp(name, "Lavf", 4) == 0 ||
           std::memcmp(name, "Lavc", 4) == 0;
}

}  // namespace

Mp3HeaderFrame Mp3HeaderFrame::read(const std::uint8_t* frame, std::size_t length,
                                    const MpegFrameHeader& header) {
    Mp3HeaderFrame found;
    const std::size_t at = static_cast<std::size_t>(xingOffset(header));
    if (at + 8 <= length &&
        (std::memcmp(frame + at, "Xing", 4) == 0 || std::memcmp(frame + at, "Info", 4) == 0)) {
        found.kind = frame[at] == 'X' ? Kind::Xing : Kind::Info;
        const std::uint32_t flags = bigEndian32(frame + at + 4);
        std::size_t next = at + 8;
        if ((flags & kFramesFlag) && next + 4 <= length) {
            found.hasFrames = true;
            found.frames = bigEndian32(frame + next);
            next += 4;
        }
        if ((flags & kBytesFlag) && next + 4 <= length) {
            found.hasBytes = true;
            found.bytes = bigEndian32(frame + next);
            next += 4;
        }
        if (flags & kTocFlag) {
            next += 100;
        }
        if ((flags & kQualityFlag) && next + 4 <= length) {
            found.hasQuality = true;
            found.quality = bigEndian32(frame + next);
            next += 4;
        }
        if (next + kLameExtensionBytes <= length && trustedEncoder(frame + next)) {
            found.hasLame = true;
            std::memcpy(found.lame.data(), frame + next, kLameExtensionBytes);
            const std::uint8_t* pads = frame + next + 21;
            found.delay = (pads[0] << 4) | (pads[1] >> 4);
            found.padding = ((pads[1] & 0x0F) << 8) | pads[2];
        }
        return found;
    }
    if (kVbriOffset + 18 <= static_cast<int>(length) &&
        std::memcmp(frame + kVbriOffset, "VBRI", 4) == 0) {
        found.kind = Kind::Vbri;
        found.hasBytes = true;
        found.bytes = bigEndian32(frame + kVbriOffset + 10);
        found.hasFrames = true;
        found.frames = bigEndian32(frame + kVbriOffset + 14);
    }
    return found;
}

int HeaderFrameLeastLength(const MpegFrameHeader& header) {
    return xingOffset(header.withField(16, 1, 1)) + kXingHeaderBytes + kLameExtensionBytes;
}

int HeaderFrameBitrateIndex(const MpegFrameHeader& header, int wantedKbps) {
    const int needed = HeaderFrameLeastLength(header);
    int fallback = 0;
    for (int index = 1; index < 15; ++index) {
        const MpegFrameHeader candidate = header.withField(17, 4, static_cast<std::uint32_t>(index))
                                              .withField(23, 1, 0)
                                              .withField(16, 1, 1);
        if (candidate.frameLength() < needed) {
            continue;
        }
        if (fallback == 0) {
            fallback = index;
        }
        if (candidate.bitrateKbps() >= wantedKbps) {
            return index;
        }
    }
    return fallback;
}

void WriteHeaderFrame(const MpegFrameHeader& header, int length,
                      const Mp3HeaderFrameContent& content, std::uint8_t* frame) {
    std::memset(frame, 0, static_cast<std::size_t>(length));
    const auto headerBytes = header.bytes();
    std::memcpy(frame, headerBytes.data(), 4);
    const int at = xingOffset(header);
    std::memcpy(frame + at, content.info ? "Info" : "Xing", 4);
    putBigEndian32(frame + at + 4, kFramesFlag | kBytesFlag | kTocFlag | kQualityFlag);
    putBigEndian32(frame + at + 8, content.frames);
    putBigEndian32(frame + at + 12, content.bytes);
    std::memcpy(frame + at + 16, content.toc.data(), content.toc.size());
    putBigEndian32(frame + at + 116, content.quality);
    if (!content.withLame) {
        return;
    }
    std::uint8_t* lame = frame + at + kXingHeaderBytes;
    std::memcpy(lame, content.lame.data(), kLameExtensionBytes);
    // A constant bit rate is false of a stream whose frames have more than one
    // (a joined file of several rates, free format among them), and readers
    // that trust it take the length from the size and the first frame's rate.
    const std::uint8_t method = lame[kLameMethodByte] & 0x0F;
    if (!content.info && (method == kMethodConstant || method == kMethodConstantTwoPasses)) {
        lame[kLameMethodByte] = (lame[kLameMethodByte] & 0xF0) | kMethodUnknown;
    }
    lame[21] = static_cast<std::uint8_t>(content.delay >> 4);
    lame[22] = static_cast<std::uint8_t>(((content.delay & 0x0F) << 4) | (content.padding >> 8));
    lame[23] = static_cast<std::uint8_t>(content.padding & 0xFF);
    putBigEndian32(lame + 28, content.musicLength);
    lame[32] = static_cast<std::uint8_t>(content.musicCrc >> 8);
    lame[33] = static_cast<std::uint8_t>(content.musicCrc);
    const std::uint16_t tagCrc =
        Mp3Crc16(0, frame, static_cast<std::size_t>(at + kXingHeaderBytes + 34));
    lame[34] = static_cast<std::uint8_t>(tagCrc >> 8);
    lame[35] = static_cast<std::uint8_t>(tagCrc);
}
