#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "mpegaudio/MpegFrameHeader.h"

// Where the walker's bytes come from: a file, or memory in the tests.
class Mp3ByteSource {
public:
    virtual ~Mp3ByteSource() = default;
    // Up to max bytes into to: the count read, 0 at the end, -1 on an error.
    virtual long long read(std::uint8_t* to, std::size_t max) = 0;
};

// Walks an MP3 stream, such as MP3 files put end to end, from the first byte
// to the last and cuts it into items: Layer III audio frames (MPEG-1, 2 and
// 2.5, of a bit rate from the tables or in free format), header frames (Xing, Info, VBRI), tags
// (ID3v2 wherever it stands, ID3v1, APEv2) and junk (anything else: Lyrics3 blocks, stray bytes, a
// frame cut short). Every byte belongs to exactly one item.
//
// A frame is taken where the stream is in step (right behind a frame) and the
// frame is followed by a frame, a tag or the end; after a tag or junk, a frame
// is taken only when the frames behind it confirm it, so that bytes inside a
// picture or a damaged tag are not taken for sound. An ID3v2 tag ends where
// its frames and padding end, also when its size says more (a size that runs
// past the file would otherwise swallow the files behind it).
//
// A free-format frame (bit-rate index 0) does not say how long it is: its
// length is the distance to the next frame header of its kind, which stays
// the same within a stream, plus its padding byte. It is found anew where a
// free-format stream starts and wherever the length found before does not
// hold any more.
//
// Memory stays flat: one buffer of a fixed size, whatever the stream's length.
class Mp3FrameWalker {
public:
    enum class Item { End, ReadError, Audio, HeaderFrame, Id3v2, Id3v1, Ape, Junk };

    explicit Mp3FrameWalker(Mp3ByteSource& source, std::size_t bufferSize = 1 << 20);

    // The next item; End after the last one, ReadError when the source failed.
    Item next();

    // Of the item that next() returned: its position in the stream, its length,
    // and for frames their bytes (valid until the next call) and header.
    std::uint64_t offset() const { return itemOffset_; }
    std::size_t length() const { return itemLength_; }
    const std::uint8_t* data() const { return itemData_; }
    const MpegFrameHeader& header() const { return itemHeader_; }

private:
    // Bytes at hand from the current position (at least want of them unless
    // the stream ends first).
    std::size_t fill(std::size_t want);
    std::size_t available() const { return end_ - begin_; }
    const std::uint8_t* at(std::size_t offset) const { return buffer_.data() + begin_ + offset; }
    void consume(std::size_t count);
    bool skip(std::uint64_t count);  // false on a read error

    // Checks at an offset from the current position, within what is at hand.
    bool headerAt(std::size_t offset, MpegFrameHeader& header) const;
    bool id3v2At(std::size_t offset) const;
    bool tagAt(std::size_t offset) const;
    bool endAt(std::size_t offset) const { return eof_ && offset == available(); }
    bool streamGoesOn(std::size_t offset, const MpegFrameHeader& header, int length, int unpadded,
                      int more) const;
    int freeFormatLengthAt(std::size_t offset, const MpegFrameHeader& header) const;
    bool confirmedAt(std::size_t offset, MpegFrameHeader& header, int& length) const;
    bool followedWell(std::size_t offset, int length) const;
    bool cutShort(int length) const;

    Item frameInStep(const MpegFrameHeader& header);
    Item frameItem(const MpegFrameHeader& header, int frameLength);
    Item skippedItem(Item kind, std::uint64_t length);
    Item id3v2Item();
    Item junkItem(std::size_t from);

    Mp3ByteSource& source_;
    std::vector<std::uint8_t> buffer_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    bool eof_ = false;
    bool error_ = false;
    std::uint64_t position_ = 0;  // stream position of begin_
    bool inStep_ = false;
    MpegFrameHeader last_;
    int freeFormatLength_ = 0;  // of the last frame, without padding, when free format

    std::uint64_t itemOffset_ = 0;
    std::size_t itemLength_ = 0;
    const std::uint8_t* itemData_ = nullptr;
    MpegFrameHeader itemHeader_;
};
