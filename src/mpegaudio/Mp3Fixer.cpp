#include "mpegaudio/Mp3Fixer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <vector>

#include <cmath>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>

#include "mpegaudio/JoinSources.h"
#include "mpegaudio/JoinedTag.h"
#include "mpegaudio/Mp3ByteSources.h"
#include "mpegaudio/Mp3Crc16.h"
#include "mpegaudio/Mp3FrameWalker.h"
#include "mpegaudio/Mp3HeaderFrame.h"
#include "mpegaudio/TagBytes.h"

namespace Mp3Fixer {
namespace {

constexpr std::size_t kBufferBytes = 1 << 20;
// The seek table is made from the positions of every step-th frame; when the
// list is full, every other entry goes and the step doubles.
constexpr std::size_t kTocSamples = 4096;

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
    // The buffer holds up to kBufferBytes; room for expectedBytes of them is
    // made at once (all of a small output, so that a small fix takes little).
    Output(std::string path, std::uint64_t expectedBytes) : path_(std::move(path)) {
        buffer_.reserve(
            static_cast<std::size_t>(std::min<std::uint64_t>(expectedBytes, kBufferBytes)));
    }
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
    // From here on every byte appended counts into sum(): the music CRC of
    // the LAME extension, worked out over each buffer's run of audio as it
    // goes out rather than frame by frame.
    void startSum() {
        summing_ = true;
        sumFrom_ = buffer_.size();
    }
    bool flush() {
        if (summing_) {
            sum_ = Mp3Crc16(sum_, buffer_.data() + sumFrom_, buffer_.size() - sumFrom_);
            sumFrom_ = 0;
        }
        const bool ok = writeAll(fd_, buffer_.data(), buffer_.size());
        buffer_.clear();
        return ok;
    }
    // The CRC of what was appended since startSum(), once it is flushed.
    std::uint16_t sum() const { return sum_; }
    bool rewrite(const std::uint8_t* data, std::size_t length, std::uint64_t at = 0) {
        return writeAllAt(fd_, data, length, static_cast<off_t>(at));
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
    bool summing_ = false;
    std::size_t sumFrom_ = 0;
    std::uint16_t sum_ = 0;
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

// The new header frame: its header and its length.
struct HeaderFrameShape {
    MpegFrameHeader header;
    int length = 0;
};

// The header of the new header frame: the first audio frame's version, rate
// and mode, no CRC, no padding, and a bit rate near the stream's that holds
// the header and its LAME extension. A stream that starts in free format gets
// a free-format header frame of its frames' length, so that a reader that
// learns the length of the stream's frames from its first frame learns the
// right one; where that length cannot hold the header, a bit rate near the
// stream's. firstLength is the length of the first audio frame.
HeaderFrameShape headerFrameShape(const MpegFrameHeader& first, int firstLength,
                                  const HeaderFrames& frames) {
    const MpegFrameHeader plain = first.withField(16, 1, 1).withField(23, 1, 0).withField(27, 2, 0);
    int wanted = first.bitrateKbps();
    if (first.isFreeFormat()) {
        const int unpadded = firstLength - first.freeFormatLength(0);
        if (unpadded >= HeaderFrameLeastLength(plain)) {
            return {plain, unpadded};
        }
        wanted = first.kbpsOfLength(unpadded);
    }
    if (frames.first && frames.firstFrame.kind == Mp3HeaderFrame::Kind::Xing &&
        frames.firstFrame.hasFrames && frames.firstFrame.hasBytes && frames.firstFrame.frames > 0) {
        const double seconds = static_cast<double>(frames.firstFrame.frames) *
                               first.samplesPerFrame() / first.sampleRateHz();
        wanted = static_cast<int>(frames.firstFrame.bytes * 8.0 / seconds / 1000.0);
    }
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
    const MpegFrameHeader header = plain.withField(17, 4, static_cast<std::uint32_t>(index));
    return {header, header.frameLength()};
}

// True when an audio frame has the bit rate of the header frame: the same
// rate from the tables, or free format of the same length.
bool rateOfHeaderFrame(const MpegFrameHeader& frame, int frameLength,
                       const HeaderFrameShape& shape) {
    if (frame.bitrateIndex() != shape.header.bitrateIndex() || !frame.sameStreamAs(shape.header)) {
        return false;
    }
    return !frame.isFreeFormat() || frameLength == frame.freeFormatLength(shape.length);
}

// The walker's buffer: the whole input and one byte more when that is less
// than kBufferBytes (a small join reads as it would with the larger buffer:
// all of it at hand at once), else kBufferBytes.
std::size_t readBufferBytes(int fd) {
    struct stat status {};
    if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode) ||
        static_cast<std::uint64_t>(status.st_size) >= kBufferBytes) {
        return kBufferBytes;
    }
    return static_cast<std::size_t>(status.st_size) + 1;
}

// Up to count bytes of the file at offset (fewer where the file ends).
TagLib::ByteVector readAt(int fd, std::uint64_t offset, std::uint64_t count) {
    TagLib::ByteVector bytes(static_cast<unsigned int>(count), '\0');
    std::size_t got = 0;
    while (got < count) {
        const ssize_t read = ::pread(fd, bytes.data() + got, static_cast<std::size_t>(count) - got,
                                     static_cast<off_t>(offset + got));
        if (read < 0 && errno == EINTR) {
            continue;
        }
        if (read <= 0) {
            break;
        }
        got += static_cast<std::size_t>(read);
    }
    bytes.resize(static_cast<unsigned int>(got));
    return bytes;
}

// The tags of the source that lies at start in the raw join: only their bytes
// are read, the ID3v2 tag at the start and the ID3v1 tag in the last 128 bytes.
JoinSourceTags readSourceTags(int fd, std::uint64_t start, std::uint64_t length,
                              const std::string& name) {
    constexpr std::uint64_t kId3v1Bytes = 128;
    // The largest size an ID3v2 header can state, with header and footer.
    constexpr std::uint64_t kMostId3v2Bytes = (1u << 28) + 20;
    JoinSourceTags tags;
    tags.name = name;
    const TagLib::ByteVector head = readAt(fd, start, std::min<std::uint64_t>(10, length));
    const std::uint64_t tagLength =
        Id3v2TagLength(reinterpret_cast<const std::uint8_t*>(head.data()), head.size());
    if (tagLength > 0) {
        tags.id3v2 = readAt(fd, start, std::min({tagLength, length, kMostId3v2Bytes}));
    }
    if (length >= kId3v1Bytes) {
        TagLib::ByteVector tail = readAt(fd, start + length - kId3v1Bytes, kId3v1Bytes);
        if (tail.startsWith("TAG")) {
            tags.id3v1 = tail;
        }
    }
    return tags;
}

// The sources of the raw join as the sources file gives them: where each
// starts in the input, and its path.
struct Sources {
    std::vector<std::uint64_t> starts;
    std::vector<std::uint64_t> lengths;
    std::vector<std::string> paths;

    // The source in which offset lies, looked for from guess on.
    std::size_t at(std::uint64_t offset, std::size_t guess) const {
        while (guess + 1 < starts.size() && offset >= starts[guess + 1]) {
            ++guess;
        }
        return guess;
    }
};

// The sources in sourcesFile, when they are exactly the input's bytes;
// otherwise nothing, and warning says why.
std::optional<Sources> readSources(int in, const std::string& sourcesFile, std::string& warning) {
    struct stat status {};
    const std::uint64_t inputLength =
        ::fstat(in, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
    std::ifstream file(sourcesFile, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(file)),
                           std::istreambuf_iterator<char>());
    std::vector<JoinSource> listed;
    const bool parsed = ParseJoinSources(text, listed);
    std::uint64_t total = 0;
    bool addsUp = true;
    for (const JoinSource& source : listed) {
        addsUp = addsUp && total + source.length >= total;
        total += source.length;
    }
    if (!parsed || listed.empty() || !addsUp || total != inputLength) {
        warning = !parsed || listed.empty()
                      ? "no chapters: cannot read the sources in " + sourcesFile
                      : "no chapters: the sources' lengths add up to " + std::to_string(total) +
                            " bytes, not the " + std::to_string(inputLength) + " of the input";
        return std::nullopt;
    }
    Sources sources;
    std::uint64_t start = 0;
    for (const JoinSource& source : listed) {
        sources.starts.push_back(start);
        sources.lengths.push_back(source.length);
        sources.paths.push_back(source.name);
        start += source.length;
    }
    return sources;
}

// The check that no source goes missing from the output: every source must
// give at least one audio frame. Told of every item of the walk in order, it
// names the first source that the walk has passed without an audio frame.
class SourceAudio {
public:
    explicit SourceAudio(const Sources& sources) : sources_(sources) {}

    // An item of the walk at offset. False when it lies behind a source that
    // gave no audio frame.
    bool item(std::uint64_t offset, bool audio) {
        const std::size_t source = sources_.at(offset, current_);
        for (; current_ < source; ++current_) {
            if (!audioInCurrent_) {
                return false;
            }
            audioInCurrent_ = false;
        }
        audioInCurrent_ = audioInCurrent_ || audio;
        return true;
    }
    // At the end of the walk: false when a source is left without audio.
    bool end() { return item(UINT64_MAX, false) && audioInCurrent_; }
    // The source of the last item; after a false answer, the source without
    // audio frames.
    const std::string& current() const { return sources_.paths[current_]; }

private:
    const Sources& sources_;
    std::size_t current_ = 0;
    bool audioInCurrent_ = false;
};

// The joined file's tag and the chapter of each audio frame: each source's
// first audio frame starts its chapter, on the clock of the frames written.
class Tagging {
public:
    Tagging(const std::string& output, bool chapters) : tag(output, chapters) {}

    JoinedTag tag;
    std::vector<std::uint64_t> starts;  // of each source in the raw join
    TagLib::ByteVector bytes;           // as first written: its length is fixed

    void audio(std::uint64_t offset, const MpegFrameHeader& header) {
        while (current_ + 1 < starts.size() && offset >= starts[current_ + 1]) {
            ++current_;
        }
        if (current_ < starts.size() && firstSeconds_.size() <= current_) {
            firstSeconds_.resize(current_ + 1, -1.0);
        }
        if (current_ < firstSeconds_.size() && firstSeconds_[current_] < 0) {
            firstSeconds_[current_] = seconds_;
        }
        seconds_ += static_cast<double>(header.samplesPerFrame()) / header.sampleRateHz();
    }

    // The tag with the chapter times, on the playback clock: less the delay
    // before the first sound, and ending before the last padding.
    TagLib::ByteVector finalBytes(double delaySeconds, double paddingSeconds) {
        const auto ms = [](double seconds) {
            return static_cast<std::uint32_t>(
                std::llround(std::clamp(seconds, 0.0, 4294967.0) * 1000.0));
        };
        const double end = seconds_ - delaySeconds - paddingSeconds;
        std::vector<std::uint32_t> startsMs(starts.size());
        // A source without an audio frame starts where the next one does.
        double next = seconds_;
        for (std::size_t i = starts.size(); i-- > 0;) {
            const double first = i < firstSeconds_.size() ? firstSeconds_[i] : -1.0;
            if (first >= 0) {
                next = first;
            }
            startsMs[i] = i == 0 ? 0 : std::min(ms(next - delaySeconds), ms(end));
        }
        return tag.render(startsMs, ms(end));
    }

private:
    std::size_t current_ = 0;
    std::vector<double> firstSeconds_;
    double seconds_ = 0;
};

// The tag of the output: with one chapter per source where the sources are
// known, else without chapters, from the tag at the input's start.
std::unique_ptr<Tagging> prepareTagging(int in, const std::string& output,
                                        const std::optional<Sources>& sources) {
    if (!sources) {
        struct stat status {};
        const std::uint64_t inputLength =
            ::fstat(in, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
        auto tagging = std::make_unique<Tagging>(output, false);
        JoinSourceTags first = readSourceTags(in, 0, inputLength, std::string());
        first.id3v1.clear();
        tagging->tag.addSource(first);
        return tagging;
    }
    auto tagging = std::make_unique<Tagging>(output, true);
    tagging->starts = sources->starts;
    for (std::size_t i = 0; i < sources->starts.size(); ++i) {
        const std::string& path = sources->paths[i];
        tagging->tag.addSource(readSourceTags(in, sources->starts[i], sources->lengths[i],
                                              path.substr(path.rfind('/') + 1)));
    }
    return tagging;
}

// The reason of a failure on a file, as one line: the file, then why.
std::string failure(const std::string& file, const std::string& why) {
    return file + ": " + why;
}

}  // namespace

Status FixFile(const std::string& input, const std::string& output, std::string& error) {
    std::string warning;
    return FixFile(input, output, std::string(), WithTag, error, warning);
}

Status FixFile(const std::string& input, const std::string& output, const std::string& sourcesFile,
               std::string& error, std::string& warning) {
    return FixFile(input, output, sourcesFile, WithTag, error, warning);
}

Status FixFile(const std::string& input, const std::string& output, const std::string& sourcesFile,
               TagMode tagMode, std::string& error, std::string& warning) {
    const int in = ::open(input.c_str(), O_RDONLY | O_CLOEXEC);
    if (in < 0) {
        error = failure(input, reason());
        return UnreadableInput;
    }
    struct InputCloser {
        int fd;
        ~InputCloser() { ::close(fd); }
    } closer{in};
    std::optional<Sources> sources;
    if (!sourcesFile.empty()) {
        std::string unread;
        sources = readSources(in, sourcesFile, unread);
        if (tagMode == WithTag) {
            warning = unread;
        }
    }
    // The tag's length is known before the first byte is written.
    const std::unique_ptr<Tagging> tagging = sourcesFile.empty() || tagMode == WithoutTag
                                                 ? nullptr
                                                 : prepareTagging(in, output, sources);
    if (tagging) {
        tagging->bytes = tagging->tag.render({}, 0);
    }
    const std::uint64_t tagLength = tagging ? tagging->bytes.size() : 0;
    std::optional<SourceAudio> sourceAudio;
    if (sources) {
        sourceAudio.emplace(*sources);
    }
    const auto silentSource = [&sourceAudio](std::string& line) {
        line = failure(sourceAudio->current(), "no MPEG audio Layer III frame could be read in it");
        return NoAudioFrame;
    };
    Mp3FileSource source(in);
    const std::size_t readBuffer = readBufferBytes(in);
    Mp3FrameWalker walker(source, readBuffer);
    HeaderFrames headers;

    // Up to the first audio frame: its header shapes the new header frame.
    Mp3FrameWalker::Item item = walker.next();
    for (; item != Mp3FrameWalker::Item::Audio; item = walker.next()) {
        if (item == Mp3FrameWalker::Item::End) {
            if (sourceAudio) {
                return silentSource(error);
            }
            error = failure(input, "no MPEG audio Layer III frame in it");
            return NoAudioFrame;
        }
        if (item == Mp3FrameWalker::Item::ReadError) {
            error = failure(input, reason());
            return UnreadableInput;
        }
        if (sourceAudio && !sourceAudio->item(walker.offset(), false)) {
            return silentSource(error);
        }
        if (item == Mp3FrameWalker::Item::HeaderFrame) {
            headers.met(Mp3HeaderFrame::read(walker.data(), walker.length(), walker.header()),
                        false);
        }
    }
    const MpegFrameHeader first = walker.header();
    const HeaderFrameShape shape =
        headerFrameShape(first, static_cast<int>(walker.length()), headers);
    std::vector<std::uint8_t> headerFrame(static_cast<std::size_t>(shape.length));
    Mp3HeaderFrameContent content;
    WriteHeaderFrame(shape.header, shape.length, content, headerFrame.data());

    Output out(output, tagLength + headerFrame.size() + readBuffer);
    const bool tagWritten =
        !tagging ||
        (out.open() && out.append(reinterpret_cast<const std::uint8_t*>(tagging->bytes.data()),
                                  tagging->bytes.size()));
    if (!tagWritten || (!tagging && !out.open()) ||
        !out.append(headerFrame.data(), headerFrame.size())) {
        error = failure(output, reason());
        return WriteError;
    }
    out.startSum();
    // A reader learns the length of free-format frames once in a stream: the
    // output holds free-format frames of one length only.
    int freeFormatLength = 0;
    MpegFrameHeader freeFormatHeader;
    const auto otherFreeFormatRate = [&](int unpadded, std::string& line) {
        line = failure(sourceAudio ? sourceAudio->current() : input,
                       "free format at " + std::to_string(walker.header().kbpsOfLength(unpadded)) +
                           " kbit/s after free format at " +
                           std::to_string(freeFormatHeader.kbpsOfLength(freeFormatLength)) +
                           " kbit/s: a joined file holds one free-format rate only");
        return MixedFreeFormat;
    };
    std::uint64_t frames = 0;
    bool oneBitrate = true;
    SeekTable seekTable;
    for (; item != Mp3FrameWalker::Item::End; item = walker.next()) {
        if (item == Mp3FrameWalker::Item::ReadError) {
            error = failure(input, reason());
            return UnreadableInput;
        }
        if (sourceAudio &&
            !sourceAudio->item(walker.offset(), item == Mp3FrameWalker::Item::Audio)) {
            return silentSource(error);
        }
        switch (item) {
            case Mp3FrameWalker::Item::Audio:
                if (walker.header().isFreeFormat()) {
                    const int unpadded =
                        static_cast<int>(walker.length()) - walker.header().freeFormatLength(0);
                    if (freeFormatLength == 0) {
                        freeFormatLength = unpadded;
                        freeFormatHeader = walker.header();
                    }
                    if (unpadded != freeFormatLength) {
                        return otherFreeFormatRate(unpadded, error);
                    }
                }
                seekTable.frame(frames, out.written() - tagLength);
                ++frames;
                if (tagging) {
                    tagging->audio(walker.offset(), walker.header());
                }
                headers.audio();
                oneBitrate =
                    oneBitrate &&
                    rateOfHeaderFrame(walker.header(), static_cast<int>(walker.length()), shape);
                if (!out.append(walker.data(), walker.length())) {
                    error = failure(output, reason());
                    return WriteError;
                }
                break;
            case Mp3FrameWalker::Item::HeaderFrame:
                headers.met(Mp3HeaderFrame::read(walker.data(), walker.length(), walker.header()),
                            frames > 0);
                break;
            default:
                headers.skipped();
                break;
        }
    }
    if (sourceAudio && !sourceAudio->end()) {
        return silentSource(error);
    }
    if (!out.flush()) {
        error = failure(output, reason());
        return WriteError;
    }

    const std::uint64_t bytes = out.written() - tagLength;
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
        content.musicCrc = out.sum();
    }
    WriteHeaderFrame(shape.header, shape.length, content, headerFrame.data());
    bool tagRewritten = true;
    if (tagging) {
        const double rate = first.sampleRateHz();
        const TagLib::ByteVector bytes =
            tagging->finalBytes(content.withLame ? content.delay / rate : 0.0,
                                content.withLame ? content.padding / rate : 0.0);
        // Only the times differ from the tag written first.
        tagRewritten =
            bytes.size() == tagging->bytes.size() &&
            out.rewrite(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    if (!tagRewritten || !out.rewrite(headerFrame.data(), headerFrame.size(), tagLength) ||
        !out.close()) {
        error = failure(output, reason());
        return WriteError;
    }
    return Fixed;
}

}  // namespace Mp3Fixer
