#include "media/ProgramStreamScan.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <array>
#include <cstring>
#include <memory>

namespace {

// The buffer: read a quarter of a megabyte at a time, whatever the size of the file.
constexpr std::int64_t kBufferBytes = std::int64_t{1} << 18;
// The system clock reference counts 27 MHz and wraps at 2^33 of its 90 kHz base.
constexpr std::int64_t kClockHz = 27000000;
constexpr std::int64_t kClockWrap = (std::int64_t{1} << 33) * 300;
// A step of the clock longer than this is a jump, not time that passed.
constexpr std::int64_t kLongestClockStep = kClockHz;

constexpr int kProgramEnd = 0xb9;
constexpr int kPack = 0xba;
constexpr int kPrivateStream1 = 0xbd;
constexpr int kPrivateStream2 = 0xbf;
constexpr int kExtendedStream = 0xfd;
// The longest run of stuffing bytes an MPEG-1 packet header may hold.
constexpr int kMpeg1Stuffing = 16;

// True for the packet streams that carry a stream of their own: private
// stream 1 (by its sub-streams), private stream 2 (DVD navigation), MPEG
// audio and video, and the extended stream id.
bool carriesStream(int code) {
    return code == kPrivateStream1 || code == kPrivateStream2 || (code >= 0xc0 && code <= 0xef) ||
           code == kExtendedStream;
}

class Walker {
public:
    Walker(const ByteReader& read, const ScanStop& stop)
        : read_(read),
          stop_(stop),
          buffer_(std::make_unique_for_overwrite<char[]>(static_cast<std::size_t>(kBufferBytes))) {}

    ProgramStreamMap run();

private:
    bool fill(std::int64_t need);
    int at(std::int64_t index) const {
        return static_cast<unsigned char>(buffer_[static_cast<std::size_t>(pos_ + index)]);
    }
    bool atStartCode() const {
        return at(0) == 0 && at(1) == 0 && at(2) == 1 && at(3) >= kProgramEnd;
    }
    void skip(std::int64_t count);
    bool resync();
    void pack();
    void packet(int code);
    int headerLength();
    void step(std::int64_t ticks);
    void record(int id);

    const ByteReader& read_;
    const ScanStop& stop_;
    std::unique_ptr<char[]> buffer_;
    std::int64_t base_ = 0;  // where buffer_[0] lies in the file
    std::int64_t pos_ = 0;   // the next byte to look at, in buffer_
    std::int64_t end_ = 0;   // the end of the bytes in buffer_
    bool ended_ = false;
    bool broken_ = false;  // stopped, or a read failed
    bool clockSeen_ = false;
    std::int64_t lastClock_ = 0;
    std::int64_t clockTicks_ = 0;
    std::array<bool, 0x200> seen_{};
    ProgramStreamMap map_;
};

// Makes at least need bytes available from pos_ on (need is at most a few
// hundred); false when the bytes end before.
bool Walker::fill(std::int64_t need) {
    if (end_ - pos_ >= need) {
        return true;
    }
    if (pos_ > 0) {
        std::memmove(buffer_.get(), buffer_.get() + pos_, static_cast<std::size_t>(end_ - pos_));
        base_ += pos_;
        end_ -= pos_;
        pos_ = 0;
    }
    while (end_ < need && !ended_) {
        if (stop_ && stop_()) {
            ended_ = broken_ = true;
            break;
        }
        const std::int64_t count = read_(buffer_.get() + end_, kBufferBytes - end_);
        if (count <= 0) {
            ended_ = true;
            broken_ = broken_ || count < 0;
            break;
        }
        end_ += count;
    }
    return end_ - pos_ >= need;
}

// Passes over count bytes; a payload longer than what the buffer holds is
// read through in whole buffers.
void Walker::skip(std::int64_t count) {
    if (count <= end_ - pos_) {
        pos_ += count;
        return;
    }
    count -= end_ - pos_;
    base_ += end_;
    pos_ = end_ = 0;
    while (count > 0 && !ended_) {
        if (stop_ && stop_()) {
            ended_ = broken_ = true;
            return;
        }
        const std::int64_t read = read_(buffer_.get(), kBufferBytes);
        if (read <= 0) {
            ended_ = true;
            broken_ = broken_ || read < 0;
            return;
        }
        if (read > count) {
            pos_ = count;
            end_ = read;
            return;
        }
        base_ += read;
        count -= read;
    }
}

// Moves to the next start code of a header; false when none is left.
bool Walker::resync() {
    while (fill(4)) {
        for (std::int64_t i = pos_; i + 4 <= end_; ++i) {
            pos_ = i;
            if (atStartCode()) {
                return true;
            }
        }
        // Keep the last three bytes: a start code may begin among them.
        pos_ = end_ - 3;
    }
    return false;
}

void Walker::step(std::int64_t ticks) {
    if (clockSeen_) {
        const std::int64_t forward = ((ticks - lastClock_) % kClockWrap + kClockWrap) % kClockWrap;
        clockTicks_ += std::min(forward, kLongestClockStep);
    }
    clockSeen_ = true;
    lastClock_ = ticks;
}

// A pack header: MPEG-2 (14 bytes and stuffing, the clock reference with its
// 27 MHz extension) or MPEG-1 (12 bytes, 90 kHz). One whose marker bits are
// wrong is no header: the walk moves on by a byte.
void Walker::pack() {
    if (!fill(5)) {
        pos_ = end_;
        return;
    }
    const int b4 = at(4);
    std::int64_t ticks = 0;
    std::int64_t length = 0;
    if ((b4 & 0xc0) == 0x40) {
        if (!fill(14)) {
            pos_ = end_;
            return;
        }
        if (!((b4 & 0x04) && (at(6) & 0x04) && (at(8) & 0x04) && (at(9) & 0x01) &&
              (at(12) & 0x03) == 0x03)) {
            ++pos_;
            return;
        }
        const std::int64_t base =
            (std::int64_t{(b4 >> 3) & 0x07} << 30) | (std::int64_t{b4 & 0x03} << 28) |
            (std::int64_t{at(5)} << 20) | (std::int64_t{(at(6) >> 3) & 0x1f} << 15) |
            (std::int64_t{at(6) & 0x03} << 13) | (std::int64_t{at(7)} << 5) | ((at(8) >> 3) & 0x1f);
        const std::int64_t extension = ((at(8) & 0x03) << 7) | (at(9) >> 1);
        ticks = base * 300 + extension;
        length = 14 + (at(13) & 0x07);
    } else if ((b4 & 0xf0) == 0x20) {
        if (!fill(12)) {
            pos_ = end_;
            return;
        }
        if (!((b4 & 0x01) && (at(6) & 0x01) && (at(8) & 0x01) && (at(9) & 0x80) &&
              (at(11) & 0x01))) {
            ++pos_;
            return;
        }
        const std::int64_t base = (std::int64_t{(b4 >> 1) & 0x07} << 30) |
                                  (std::int64_t{at(5)} << 22) | (std::int64_t{at(6) >> 1} << 15) |
                                  (std::int64_t{at(7)} << 7) | (at(8) >> 1);
        ticks = base * 300;
        length = 12;
    } else {
        ++pos_;
        return;
    }
    step(ticks);
    ++map_.packs;
    skip(length);
}

// The bytes of a packet header behind its length field, up to its payload:
// the MPEG-2 form (flags and a header length) or the MPEG-1 form (stuffing,
// buffer size, time stamps); -1 when they are cut short or make no header.
int Walker::headerLength() {
    if (!fill(9)) {
        return -1;
    }
    if ((at(6) & 0xc0) == 0x80) {
        return 3 + at(8);
    }
    int i = 6;
    while (i < 6 + kMpeg1Stuffing && fill(i + 1) && at(i) == 0xff) {
        ++i;
    }
    if (!fill(i + 1)) {
        return -1;
    }
    if ((at(i) & 0xc0) == 0x40) {
        i += 2;
        if (!fill(i + 1)) {
            return -1;
        }
    }
    if ((at(i) & 0xf0) == 0x20) {
        i += 5;
    } else if ((at(i) & 0xf0) == 0x30) {
        i += 10;
    } else if (at(i) == 0x0f) {
        i += 1;
    } else {
        return -1;
    }
    return i - 6;
}

void Walker::record(int id) {
    if (seen_[static_cast<std::size_t>(id)]) {
        return;
    }
    seen_[static_cast<std::size_t>(id)] = true;
    map_.streams.push_back(
        {id, base_ + pos_, static_cast<double>(clockTicks_) / static_cast<double>(kClockHz)});
}

// A packet (or a system header, which has the same length field): its stream
// noted, then passed over. A packet without a length (allowed for video in a
// transport stream only) is passed over up to the next start code.
void Walker::packet(int code) {
    if (!fill(6)) {
        pos_ = end_;
        return;
    }
    const std::int64_t length = (at(4) << 8) | at(5);
    if (code == kPrivateStream1) {
        const int header = headerLength();
        if (header >= 0 && header < length && fill(6 + header + 1)) {
            record(at(6 + header));
        }
    } else if (carriesStream(code)) {
        record(0x100 + code);
    }
    if (length == 0) {
        pos_ += 4;
        return;
    }
    skip(6 + length);
}

ProgramStreamMap Walker::run() {
    while (fill(4)) {
        if (!atStartCode()) {
            if (!resync()) {
                break;
            }
            continue;
        }
        const int code = at(3);
        if (code == kProgramEnd) {
            skip(4);
        } else if (code == kPack) {
            pack();
        } else {
            packet(code);
        }
    }
    map_.bytes = base_ + end_;
    map_.clockSeconds = static_cast<double>(clockTicks_) / static_cast<double>(kClockHz);
    map_.complete = !broken_;
    return map_;
}

}  // namespace

const StreamAppearance* ProgramStreamMap::find(int id) const {
    const auto it = std::find_if(streams.begin(), streams.end(),
                                 [id](const StreamAppearance& s) { return s.id == id; });
    return it == streams.end() ? nullptr : &*it;
}

ProgramStreamMap ScanProgramStream(const ByteReader& read, const ScanStop& stop) {
    return Walker(read, stop).run();
}

ProgramStreamMap ScanProgramStreamFile(const QString& path, const ScanStop& stop) {
    if (!QFileInfo(path).isFile()) {
        return {};
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        return {};
    }
    return ScanProgramStream(
        [&file](char* data, std::int64_t size) { return file.read(data, size); }, stop);
}
