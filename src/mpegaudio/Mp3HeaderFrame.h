#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "mpegaudio/Mp3Crc16.h"
#include "mpegaudio/MpegFrameHeader.h"

// The header frame that an encoder puts before the audio of an MP3 stream: a
// frame of silence whose data holds a "Xing" (variable bit rate) or "Info"
// (constant bit rate) header with the frame and byte counts and a 100-entry
// seek table, often followed by a LAME extension with the encoder delay and
// padding; or a "VBRI" header. Reading finds such a header in a frame;
// writing makes one.
struct Mp3HeaderFrame {
    enum class Kind { None, Xing, Info, Vbri };
    Kind kind = Kind::None;
    bool hasFrames = false;
    std::uint32_t frames = 0;  // audio frames behind the header frame
    bool hasBytes = false;
    std::uint32_t bytes = 0;  // the whole stream, header frame included
    bool hasQuality = false;
    std::uint32_t quality = 0;
    // The LAME extension, when there is one from an encoder whose delay and
    // padding readers trust (its name starts "LAME", "Lavf" or "Lavc").
    bool hasLame = false;
    std::array<std::uint8_t, 36> lame{};
    int delay = 0;    // samples the encoder put before the sound
    int padding = 0;  // samples it put after

    // The header in a whole frame (length bytes from its first header byte).
    static Mp3HeaderFrame read(const std::uint8_t* frame, std::size_t length,
                               const MpegFrameHeader& header);
};

// What the one header frame of a joined stream says.
struct Mp3HeaderFrameContent {
    bool info = false;  // "Info": every frame of one bit rate; else "Xing"
    std::uint32_t frames = 0;
    std::uint32_t bytes = 0;
    std::array<std::uint8_t, 100> toc{};
    std::uint32_t quality = 0;
    bool withLame = false;
    std::array<std::uint8_t, 36> lame{};  // the encoder's extension to start from
    int delay = 0;
    int padding = 0;
    std::uint32_t musicLength = 0;
    std::uint16_t musicCrc = 0;
};

// The bytes of the Xing or Info header and the LAME extension that a header
// frame carries behind its side information.
constexpr int kXingHeaderBytes = 120;
constexpr int kLameExtensionBytes = 36;

// The smallest frame of this header's version, sample rate and mode that holds
// a header frame with a LAME extension, at or above the given rate; its
// bit-rate index (0 when none does).
int HeaderFrameBitrateIndex(const MpegFrameHeader& header, int wantedKbps);

// The bytes a header frame of this header's version, sample rate and mode
// needs for its header and LAME extension.
int HeaderFrameLeastLength(const MpegFrameHeader& header);

// Writes a whole header frame of the given header (its bit rate chosen with
// HeaderFrameBitrateIndex) into frame, which has length bytes: the header's
// frame length, or for a free-format header the length of its stream's frames.
// The LAME extension is the given one with the joined stream's values; in a
// "Xing" frame its bit-rate method never says constant.
void WriteHeaderFrame(const MpegFrameHeader& header, int length,
                      const Mp3HeaderFrameContent& content, std::uint8_t* frame);
