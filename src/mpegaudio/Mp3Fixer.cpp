#include "mpegaudio/Mp3Fixer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <vector>

#include "mpegaudio/Mp3FrameWalker.h"
#include "mpegaudio/Mp3HeaderFrame.h"

namespace Mp3Fixer {
namespace {

constexpr std::size_t kBufferBytes = 1 << 20;
// The seek table is made from the positions of every step-th frame; when the
// list is full, every other entry goes and the step doubles.
constexpr std::size_t kTocSamples = 4096;

class FileSource : public Mp3ByteSource {
public:
    explicit FileSource(int fd) : fd_(fd) {}
    long long read(std::uint8_t* to, std::size_t max) override {
        for (;;) {
            const ssize_t got = ::read(fd_, to, max);
            if (got >= 0 || errno != EINTR) {
                return got;
            }
        }
    }

private:
    int fd_;
};

bool writeAll(int fd, const std::uint8_t* data, std::size_t length) {
    while (length > 0) {
        const ssize_t written = ::write(fd, data, length);
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        data += written;
        length -= static_cast<std::size_t>(written);
    }
    return true;
}

bool writeAllAt(int fd, const std::uint8_t* data, std::size_t length, off_t offset) {
    while (length > 0) {
        const ssize_t written = ::pwrite(fd, data, length, offset);
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        data += written;
        offset += written;
        length -= static_cast<std::size_t>(written);
    }
    return true;
}

std::string reason() {
    return std::strerror(errno);
}

// The output file: written through a buffer, removed again when the fix fails
// (only a plain file: a device named as the output is never removed).
class Output {
public:
    explicit Output(std::string path) : path_(std::move(path)) { buffer_.reserve(kBufferBytes); }
    ~Output() {
        if (fd_ >= 0) {
            ::close(fd_);
            removeFile();
        }
    }
    bool open() {
        fd_ = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        struct stat status {};
        plainFile_ = fd_ >= 0 && ::fstat(fd_, &status) == 0 && S_ISREG(status.st_mode);
        return fd_ >= 0;
    }
    bool append(const std::uint8_t* data, std::size_t length) {
        if (buffer_.size() + length > kBufferBytes && !flush()) {
            return false;
        }
        buffer_.insert(buffer_.end(), data, data + length);
        written_ += length;
        return true;
    }
    bool flush() {
        const bool ok = writeAll(fd_, buffer_.data(), buffer_.size());
        buffer_.clear();
        return ok;
    }
    bool rewrite(const std::uint8_t* data, std::size_t length) {
        return writeAllAt(fd_, data, length, 0);
    }
    bool close() {
        const int fd = fd_;
        fd_ = -1;
        if (::close(fd) == 0) {
            return true;
        }
        removeFile();
        return false;
    }
    std::uint64_t written() const { return written_; }

private:
    void removeFile() const {
        if (plainFile_) {
            ::unlink(path_.c_str());
        }
    }

    std::string path_;
    int fd_ = -1;
    bool plainFile_ = false;
    std::vector<std::uint8_t> buffer_;
    std::uint64_t written_ = 0;
};

// What the walk learns of the header frames of the files, for the delay and
// padding of the joined stream.
struct HeaderFrames {
    bool first = false;  // the first file's, before any audio frame
    Mp3HeaderFrame firstFrame;
    bool last = false;  // the latest one met
    Mp3HeaderFrame lastFrame;
    std::uint64_t framesSinceLast = 0;
    bool breakSinceLast = false;      // a tag or junk behind its audio
    bool otherFileSinceLast = false;  // audio behind such a break: another file

    void met(const Mp3HeaderFrame& frame, bool audioBefore) {
        if (!audioBefore && !first) {
            first = true;
            firstFrame = frame;
        }
        last = true;
        lastFrame = frame;
        framesSinceLast = 0;
        breakSinceLast = false;
        otherFileSinceLast = false;
    }
    void audio() {
        ++framesSinceLast;
        if (breakSinceLast) {
            otherFileSinceLast = true;
        }
    }
    void skipped() {
        if (framesSinceLast > 0) {
            breakSinceLast = true;
        }
    }
    bool delayKnown() const { return first && firstFrame.hasLame; }
    // The last file's padding: the latest header frame is that file's when no
    // other file's audio came behind it.
    bool paddingKnown() const {
        return last && lastFrame.hasLame && !otherFileSinceLast &&
               (!lastFrame.hasFrames || framesSinceLast == lastFrame.frames);
    }
};

class SeekTable {
public:
    void frame(std::uint64_t index, std::uint64_t position) {
        if (index % step_ != 0) {
            return;
        }
        if (positions_.size() == kTocSamples) {
            for (std::size_t i = 0; i < kTocSamples / 2; ++i) {
                positions_[i] = positions_[2 * i];
            }
            positions_.resize(kTocSamples / 2);
            step_ *= 2;
            if (index % step_ != 0) {
                return;
            }
        }
        positions_.push_back(position);
    }
    std::array<std::uint8_t, 100> toc(std::uint64_t frames, std::uint64_t bytes) const {
        std::array<std::uint8_t, 100> table{};
        if (positions_.empty() || bytes == 0) {
            return table;
        }
        for (std::uint64_t percent = 0; percent < 100; ++percent) {
            const std::uint64_t index = percent * frames / 100;
            const std::size_t sample = std::min<std::size_t>(
                static_cast<std::size_t>(index / step_), positions_.size() - 1);
            table[percent] = static_cast<std::uint8_t>(
                std::min<std::uint64_t>(255, positions_[sample] * 256 / bytes));
        }
        return table;
    }

private:
    std::vector<std::uint64_t> positions_;
    std::uint64_t step_ = 1;
};

// The header of the new header frame: the first audio frame's version, rate
// and mode, no CRC, no padding, and a bit rate near the stream's that holds
// the header and its LAME extension.
MpegFrameHeader headerFrameHeader(const MpegFrameHeader& first, const HeaderFrames& frames) {
    int wanted = first.bitrateKbps();
    if (frames.first && frames.firstFrame.kind == Mp3HeaderFrame::Kind::Xing &&
        frames.firstFrame.hasFrames && frames.firstFrame.hasBytes && frames.firstFrame.frames > 0) {
        const double seconds = static_cast<double>(frames.firstFrame.frames) *
                               first.samplesPerFrame() / first.sampleRateHz();
        wanted = static_cast<int>(frames.firstFrame.bytes * 8.0 / seconds / 1000.0);
    }
    const MpegFrameHeader plain = first.withField(16, 1, 1).withField(23, 1, 0).withField(27, 2, 0);
    int index = HeaderFrameBitrateIndex(plain, wanted);
    // Snap down to the nearest rate when the rate above is farther away.
    if (index > 1) {
        const MpegFrameHeader below = plain.withField(17, 4, static_cast<std::uint32_t>(index - 1));
        const MpegFrameHeader above = plain.withField(17, 4, static_cast<std::uint32_t>(index));
        if (HeaderFrameBitrateIndex(plain, below.bitrateKbps()) == index - 1 &&
            wanted - below.bitrateKbps() < above.bitrateKbps() - wanted) {
            --index;
        }
    }
    return plain.withField(17, 4, static_cast<std::uint32_t>(index));
}

}  // namespace

Status FixFile(const std::string& input, const std::string& output, std::string& error) {
    const int in = ::open(input.c_str(), O_RDONLY | O_CLOEXEC);
    if (in < 0) {
        error = "cannot read " + input + ": " + reason();
        return UnreadableInput;
    }
    struct InputCloser {
        int fd;
        ~InputCloser() { ::close(fd); }
    } closer{in};
    FileSource source(in);
    Mp3FrameWalker walker(source);
    HeaderFrames headers;

    // Up to the first audio frame: its header shapes the new header frame.
    Mp3FrameWalker::Item item = walker.next();
    for (; item != Mp3FrameWalker::Item::Audio; item = walker.next()) {
        if (item == Mp3FrameWalker::Item::End) {
            error = "no MPEG audio frame in " + input;
            return NoAudioFrame;
        }
        if (item == Mp3FrameWalker::Item::ReadError) {
            error = "cannot read " + input + ": " + reason();
            return UnreadableInput;
        }
        if (item == Mp3FrameWalker::Item::HeaderFrame) {
            headers.met(Mp3HeaderFrame::read(walker.data(), walker.length(), walker.header()),
                        false);
        }
    }
    const MpegFrameHeader first = walker.header();
    const MpegFrameHeader header = headerFrameHeader(first, headers);
    std::vector<std::uint8_t> headerFrame(static_cast<std::size_t>(header.frameLength()));
    Mp3HeaderFrameContent content;
    WriteHeaderFrame(header, content, headerFrame.data());

    Output out(output);
    if (!out.open() || !out.append(headerFrame.data(), headerFrame.size())) {
        error = "cannot write " + output + ": " + reason();
        return WriteError;
    }
    std::uint64_t frames = 0;
    bool oneBitrate = true;
    std::uint16_t musicCrc = 0;
    SeekTable seekTable;
    for (; item != Mp3FrameWalker::Item::End; item = walker.next()) {
        switch (item) {
            case Mp3FrameWalker::Item::Audio:
                seekTable.frame(frames, out.written());
                ++frames;
                headers.audio();
                oneBitrate = oneBitrate &&
                             walker.header().bitrateIndex() == header.bitrateIndex() &&
                             walker.header().sameStreamAs(header);
                musicCrc = Mp3Crc16(musicCrc, walker.data(), walker.length());
                if (!out.append(walker.data(), walker.length())) {
                    error = "cannot write " + output + ": " + reason();
                    return WriteError;
                }
                break;
            case Mp3FrameWalker::Item::HeaderFrame:
                headers.met(Mp3HeaderFrame::read(walker.data(), walker.length(), walker.header()),
                            frames > 0);
                break;
            case Mp3FrameWalker::Item::ReadError:
                error = "cannot read " + input + ": " + reason();
                return UnreadableInput;
            default:
                headers.skipped();
                break;
        }
    }
    if (!out.flush()) {
        error = "cannot write " + output + ": " + reason();
        return WriteError;
    }

    const std::uint64_t bytes = out.written();
    content.info = oneBitrate;
    content.frames = static_cast<std::uint32_t>(std::min<std::uint64_t>(frames, UINT32_MAX));
    content.bytes = static_cast<std::uint32_t>(std::min<std::uint64_t>(bytes, UINT32_MAX));
    content.toc = seekTable.toc(frames, bytes);
    if (headers.first && headers.firstFrame.hasQuality) {
        content.quality = headers.firstFrame.quality;
    }
    const bool delayKnown = headers.delayKnown();
    const bool paddingKnown = headers.paddingKnown();
    if (delayKnown || paddingKnown) {
        content.withLame = true;
        content.lame = delayKnown ? headers.firstFrame.lame : headers.lastFrame.lame;
        content.delay = delayKnown ? headers.firstFrame.delay : 0;
        content.padding = paddingKnown ? headers.lastFrame.padding : 0;
        content.musicLength = content.bytes;
        content.musicCrc = musicCrc;
    }
    WriteHeaderFrame(header, content, headerFrame.data());
    if (!out.rewrite(headerFrame.data(), headerFrame.size()) || !out.close()) {
        error = "cannot write " + output + ": " + reason();
        return WriteError;
    }
    return Fixed;
}

}  // namespace Mp3Fixer
