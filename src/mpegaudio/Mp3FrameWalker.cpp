#include "mpegaudio/Mp3FrameWalker.h"

#include <algorithm>
#include <cstring>

#include "mpegaudio/Mp3HeaderFrame.h"

namespace {

// The longest Layer III frame is a free-format frame of MPEG-2.5 at 8000 Hz
// and 640 kbit/s, 5761 bytes; three of them and a tag header are all that any
// decision looks at.
constexpr std::size_t kLongestFrame = 5761;
constexpr std::size_t kLookahead = 3 * kLongestFrame + 64;
constexpr std::size_t kId3v1Bytes = 128;
constexpr std::size_t kEnhancedTagBytes = 227;
constexpr std::size_t kApeHeaderBytes = 32;
constexpr std::uint32_t kApeIsHeader = 1u << 29;
constexpr std::uint32_t kApeLargest = 16u << 20;

std::uint32_t syncSafe(const std::uint8_t* p) {
    return (std::uint32_t{p[0]} << 21) | (std::uint32_t{p[1]} << 14) | (std::uint32_t{p[2]} << 7) |
           std::uint32_t{p[3]};
}

std::uint32_t littleEndian32(const std::uint8_t* p) {
    return std::uint32_t{p[0]} | (std::uint32_t{p[1]} << 8) | (std::uint32_t{p[2]} << 16) |
           (std::uint32_t{p[3]} << 24);
}

bool frameIdChar(std::uint8_t c) {
    return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

}  // namespace

Mp3FrameWalker::Mp3FrameWalker(Mp3ByteSource& source, std::size_t bufferSize)
    : source_(source), buffer_(std::max(bufferSize, 4 * kLookahead)) {}

std::size_t Mp3FrameWalker::fill(std::size_t want) {
    if (available() >= want || eof_) {
        return available();
    }
    if (begin_ > 0) {
        std::memmove(buffer_.data(), buffer_.data() + begin_, available());
        end_ -= begin_;
        begin_ = 0;
    }
    while (end_ < buffer_.size() && !eof_) {
        const long long got = source_.read(buffer_.data() + end_, buffer_.size() - end_);
        if (got < 0) {
            error_ = true;
            eof_ = true;
        } else if (got == 0) {
            eof_ = true;
        } else {
            end_ += static_cast<std::size_t>(got);
        }
    }
    return available();
}

void Mp3FrameWalker::consume(std::size_t count) {
    begin_ += count;
    position_ += count;
}

bool Mp3FrameWalker::skip(std::uint64_t count) {
    while (count > 0) {
        if (fill(1) == 0) {
            return !error_;
        }
        const std::size_t step =
            static_cast<std::size_t>(std::min<std::uint64_t>(count, available()));
        consume(step);
        count -= step;
    }
    return true;
}

bool Mp3FrameWalker::headerAt(std::size_t offset, MpegFrameHeader& header) const {
    if (offset + 4 > available() || *at(offset) != 0xFF) {
        return false;
    }
    header = MpegFrameHeader::fromBytes(at(offset));
    return header.isLayer3Audio() || header.isLayer3FreeFormat();
}

// "ID3", a version of 2 to 4, no flag that version lacks, a sync-safe size.
bool Mp3FrameWalker::id3v2At(std::size_t offset) const {
    if (offset + 10 > available()) {
        return false;
    }
    const std::uint8_t* p = at(offset);
    if (p[0] != 'I' || p[1] != 'D' || p[2] != '3' || p[3] < 2 || p[3] > 4 || p[4] == 0xFF) {
        return false;
    }
    const std::uint8_t unknownFlags = p[3] == 2 ? 0x3F : p[3] == 3 ? 0x1F : 0x0F;
    return (p[5] & unknownFlags) == 0 && ((p[6] | p[7] | p[8] | p[9]) & 0x80) == 0;
}

bool Mp3FrameWalker::tagAt(std::size_t offset) const {
    if (id3v2At(offset)) {
        return true;
    }
    const std::size_t left = offset <= available() ? available() - offset : 0;
    const std::uint8_t* p = at(offset);
    return (left >= 3 && std::memcmp(p, "TAG", 3) == 0) ||
           (left >= 8 && std::memcmp(p, "APETAGEX", 8) == 0) ||
           (left >= 11 && std::memcmp(p, "LYRICSBEGIN", 11) == 0);
}

// From the frame of the given length at offset on, the next frames of its
// stream follow one another (more of them), or the stream ends at a tag or
// the end with fewer between. A free-format frame behind it has the given
// length without padding; where that is unknown (0), its length must be
// found, which takes frames of its own behind it.
bool Mp3FrameWalker::streamGoesOn(std::size_t offset, const MpegFrameHeader& header, int length,
                                  int unpadded, int more) const {
    std::size_t next = offset + static_cast<std::size_t>(length);
    MpegFrameHeader following;
    for (int frame = 0; frame < more; ++frame) {
        if (next > available()) {
            return false;
        }
        if (endAt(next) || tagAt(next)) {
            return true;
        }
        if (!headerAt(next, following) || !following.sameStreamAs(header)) {
            return false;
        }
        if (following.isFreeFormat() && unpadded == 0) {
            return freeFormatLengthAt(next, following) > 0;
        }
        next +=
            static_cast<std::size_t>(following.isFreeFormat() ? following.freeFormatLength(unpadded)
                                                              : following.frameLength());
    }
    return true;
}

// A free-format frame is as long as the distance to the next frame header of
// its kind (less its padding): the nearest such header behind which two more
// frames of that length follow, or the stream ends. 0 when there is none
// within the longest free-format frame.
int Mp3FrameWalker::freeFormatLengthAt(std::size_t offset, const MpegFrameHeader& header) const {
    const int padding = header.freeFormatLength(0);
    const int least = header.layer3DataOffset() + padding;
    const int most = header.longestFreeFormatLength();
    MpegFrameHeader following;
    for (int distance = least; distance <= most; ++distance) {
        const std::size_t next = offset + static_cast<std::size_t>(distance);
        if (next + 4 > available()) {
            return 0;
        }
        if (*at(next) != 0xFF || !headerAt(next, following) || !following.isFreeFormat() ||
            !following.sameStreamAs(header)) {
            continue;
        }
        const int unpadded = distance - padding;
        if (streamGoesOn(next, following, following.freeFormatLength(unpadded), unpadded, 2)) {
            return unpadded;
        }
    }
    return 0;
}

// A frame whose next one or two frames of the same stream follow, or that
// ends at a tag or the end of the stream with no more than one frame between;
// a free-format frame whose length can be found. Gives the frame's length.
bool Mp3FrameWalker::confirmedAt(std::size_t offset, MpegFrameHeader& header, int& length) const {
    if (!headerAt(offset, header)) {
        return false;
    }
    if (header.isFreeFormat()) {
        const int unpadded = freeFormatLengthAt(offset, header);
        length = header.freeFormatLength(unpadded);
        return unpadded > 0;
    }
    length = header.frameLength();
    return streamGoesOn(offset, header, length, 0, 2);
}

// What stands behind a frame in step: a frame, a tag or the end.
bool Mp3FrameWalker::followedWell(std::size_t offset, int length) const {
    const std::size_t next = offset + static_cast<std::size_t>(length);
    MpegFrameHeader following;
    return next <= available() && (endAt(next) || tagAt(next) || headerAt(next, following));
}

// A frame that a tag or another stream's frames cut short: the file it came
// from ended inside it.
bool Mp3FrameWalker::cutShort(int length) const {
    const std::size_t end = std::min<std::size_t>(available(), static_cast<std::size_t>(length));
    if (static_cast<std::size_t>(length) > available()) {
        return true;  // the stream ends inside the frame
    }
    MpegFrameHeader header;
    int frameLength = 0;
    for (std::size_t offset = 4; offset < end; ++offset) {
        const std::uint8_t c = *at(offset);
        if ((c == 'I' && id3v2At(offset)) ||
            (c == 'A' && offset + 8 <= available() &&
             std::memcmp(at(offset), "APETAGEX", 8) == 0) ||
            (c == 0xFF && confirmedAt(offset, header, frameLength))) {
            return true;
        }
    }
    return false;
}

Mp3FrameWalker::Item Mp3FrameWalker::frameItem(const MpegFrameHeader& header, int frameLength) {
    const std::size_t length = static_cast<std::size_t>(frameLength);
    freeFormatLength_ = header.isFreeFormat() ? frameLength - header.freeFormatLength(0) : 0;
    itemOffset_ = position_;
    itemLength_ = length;
    itemData_ = at(0);
    itemHeader_ = header;
    const Mp3HeaderFrame found = Mp3HeaderFrame::read(at(0), length, header);
    consume(length);
    inStep_ = true;
    last_ = header;
    return found.kind == Mp3HeaderFrame::Kind::None ? Item::Audio : Item::HeaderFrame;
}

// A frame right behind a frame of its stream: taken when a frame, a tag or the
// end follows it, or when nothing inside it shows that it was cut short. A
// free-format frame has the length of the frames before it, or, where that
// does not hold (another file of another rate behind the last), the length
// found anew.
Mp3FrameWalker::Item Mp3FrameWalker::frameInStep(const MpegFrameHeader& header) {
    int length = header.frameLength();
    if (header.isFreeFormat()) {
        length = freeFormatLength_ > 0 ? header.freeFormatLength(freeFormatLength_) : 0;
    }
    if (length > 0 && followedWell(0, length)) {
        return frameItem(header, length);
    }
    if (header.isFreeFormat()) {
        const int unpadded = freeFormatLengthAt(0, header);
        if (unpadded > 0) {
            return frameItem(header, header.freeFormatLength(unpadded));
        }
    }
    if (length > 0 && !cutShort(length)) {
        return frameItem(header, length);
    }
    return junkItem(1);
}

// A tag or junk of the given length, or of what is left of the stream when
// that is less (a tag whose size runs past the end).
Mp3FrameWalker::Item Mp3FrameWalker::skippedItem(Item kind, std::uint64_t length) {
    itemOffset_ = position_;
    itemData_ = nullptr;
    inStep_ = false;
    const bool read = skip(length);
    itemLength_ = static_cast<std::size_t>(position_ - itemOffset_);
    return read ? kind : Item::ReadError;
}

// An ID3v2 tag ends where its frames and padding (and footer) end. Where that
// differs from its stated size, the structure wins: the bytes behind it are
// walked as they are. An unsynchronised tag is not walked: only its header is
// taken, and its body, which holds no frame sync by construction, is junk.
Mp3FrameWalker::Item Mp3FrameWalker::id3v2Item() {
    const std::uint8_t version = *at(3);
    const std::uint8_t flags = *at(5);
    const bool footer = version == 4 && (flags & 0x10);
    const std::uint64_t stated = 10 + std::uint64_t{syncSafe(at(6))} + (footer ? 10 : 0);
    itemOffset_ = position_;
    itemData_ = nullptr;
    inStep_ = false;
    const std::uint64_t start = position_;
    consume(10);
    if (flags & 0x80) {
        itemLength_ = 10;
        return Item::Id3v2;
    }
    const std::uint64_t end = start + stated - (footer ? 10 : 0);
    if ((flags & 0x40) && version >= 3 && fill(10) >= 4) {
        const std::uint64_t extended =
            version == 3 ? 4 + std::uint64_t{(std::uint32_t{*at(0)} << 24) | (*at(1) << 16) |
                                             (*at(2) << 8) | *at(3)}
                         : std::uint64_t{syncSafe(at(0))};
        if (position_ + extended <= end && !skip(extended)) {
            return Item::ReadError;
        }
    }
    const std::size_t headerBytes = version == 2 ? 6 : 10;
    while (position_ + headerBytes <= end && fill(headerBytes) >= headerBytes) {
        const std::uint8_t* p = at(0);
        const std::size_t idBytes = version == 2 ? 3 : 4;
        if (!std::all_of(p, p + idBytes, frameIdChar)) {
            break;
        }
        std::uint64_t size = 0;
        if (version == 2) {
            size = (std::uint32_t{p[3]} << 16) | (p[4] << 8) | p[5];
        } else if (version == 4 && ((p[4] | p[5] | p[6] | p[7]) & 0x80) == 0) {
            size = syncSafe(p + 4);
        } else {
            size = (std::uint32_t{p[4]} << 24) | (std::uint32_t{p[5]} << 16) | (p[6] << 8) | p[7];
        }
        if (position_ + headerBytes + size > end) {
            break;
        }
        if (!skip(headerBytes + size)) {
            return Item::ReadError;
        }
    }
    // Padding: zero bytes up to the stated end.
    while (position_ < end && fill(1) > 0) {
        const std::size_t span =
            static_cast<std::size_t>(std::min<std::uint64_t>(end - position_, available()));
        std::size_t zeros = 0;
        while (zeros < span && *at(zeros) == 0) {
            ++zeros;
        }
        consume(zeros);
        if (zeros < span) {
            break;
        }
    }
    if (footer && position_ == end && fill(10) >= 10 && std::memcmp(at(0), "3DI", 3) == 0) {
        consume(10);
    }
    if (error_) {
        return Item::ReadError;
    }
    itemLength_ = static_cast<std::size_t>(position_ - start);
    return Item::Id3v2;
}

// Junk from the current position up to the next confirmed frame or ID3v2 tag,
// looked for from offset from on.
Mp3FrameWalker::Item Mp3FrameWalker::junkItem(std::size_t from) {
    const std::size_t limit = eof_ ? available() : available() - kLookahead;
    std::size_t offset = from;
    MpegFrameHeader header;
    int length = 0;
    while (offset < limit) {
        const std::uint8_t c = *at(offset);
        if ((c == 0xFF && confirmedAt(offset, header, length)) || (c == 'I' && id3v2At(offset))) {
            break;
        }
        ++offset;
    }
    return skippedItem(Item::Junk, offset);
}

Mp3FrameWalker::Item Mp3FrameWalker::next() {
    if (error_) {
        return Item::ReadError;
    }
    if (fill(kLookahead) == 0) {
        return error_ ? Item::ReadError : Item::End;
    }
    MpegFrameHeader header;
    if (headerAt(0, header)) {
        if (inStep_ && header.sameStreamAs(last_)) {
            return frameInStep(header);
        }
        int length = 0;
        if (confirmedAt(0, header, length)) {
            return frameItem(header, length);
        }
    }
    if (id3v2At(0)) {
        return id3v2Item();
    }
    if (available() >= kEnhancedTagBytes && std::memcmp(at(0), "TAG+", 4) == 0) {
        return skippedItem(Item::Id3v1, kEnhancedTagBytes);
    }
    if (std::memcmp(at(0), "TAG", std::min<std::size_t>(3, available())) == 0 && available() >= 3) {
        return skippedItem(Item::Id3v1, std::min(kId3v1Bytes, available()));
    }
    if (available() >= kApeHeaderBytes && std::memcmp(at(0), "APETAGEX", 8) == 0) {
        const std::uint32_t size = littleEndian32(at(12));
        const std::uint32_t flags = littleEndian32(at(20));
        // A header gives the length of the whole tag; a footer met first (its
        // items went by as junk), or a length beyond reason, only itself.
        const bool whole = (flags & kApeIsHeader) != 0 && size <= kApeLargest;
        return skippedItem(Item::Ape,
                           whole ? kApeHeaderBytes + std::uint64_t{size} : kApeHeaderBytes);
    }
    return junkItem(1);
}
