#include <gtest/gtest.h>

#include <QByteArray>
#include <cstring>
#include <vector>

#include "mpegaudio/Mp3FrameWalker.h"
#include "mpegaudio/Mp3HeaderFrame.h"
#include "mpegaudio/MpegFrameHeader.h"

namespace {

using Item = Mp3FrameWalker::Item;

class MemorySource : public Mp3ByteSource {
public:
    explicit MemorySource(QByteArray bytes, std::size_t piece = 1000)
        : bytes_(std::move(bytes)), piece_(piece) {}
    long long read(std::uint8_t* to, std::size_t max) override {
        const std::size_t count =
            std::min({max, piece_, static_cast<std::size_t>(bytes_.size()) - at_});
        std::memcpy(to, bytes_.constData() + at_, count);
        at_ += count;
        return static_cast<long long>(count);
    }

private:
    QByteArray bytes_;
    std::size_t piece_;
    std::size_t at_ = 0;
};

// A frame of the given header bytes, its body filled with fill.
QByteArray frame(const char* header, char fill = '\x11') {
    const MpegFrameHeader parsed =
        MpegFrameHeader::fromBytes(reinterpret_cast<const std::uint8_t*>(header));
    return QByteArray(header, 4) + QByteArray(parsed.frameLength() - 4, fill);
}

// MPEG-1 Layer III, 128 kbit/s, 44100 Hz, joint stereo: 417 bytes.
const char* const kMpeg1 = "\xFF\xFB\x90\x64";
// MPEG-2 Layer III, 64 kbit/s, 22050 Hz, mono: 208 bytes.
const char* const kMpeg2 = "\xFF\xF3\x80\xC4";
// MPEG-2.5 Layer III, 32 kbit/s, 11025 Hz, stereo: 208 bytes.
const char* const kMpeg25 = "\xFF\xE3\x40\x04";

QByteArray frames(const char* header, int count) {
    QByteArray bytes;
    for (int i = 0; i < count; ++i) {
        bytes += frame(header);
    }
    return bytes;
}

QByteArray id3v2(int bodyBytes, quint32 statedBytes) {
    QByteArray tag("ID3\x03\x00\x00", 6);
    for (int shift = 21; shift >= 0; shift -= 7) {
        tag += static_cast<char>((statedBytes >> shift) & 0x7F);
    }
    QByteArray body("TIT2", 4);
    const int data = bodyBytes - 10;
    body += QByteArray("\0\0", 2) + static_cast<char>(data >> 8) + static_cast<char>(data & 0xFF);
    body += QByteArray(2, '\0') + QByteArray(data, '\xFF');  // 0xFF bytes tempt the search
    return tag + body +
           QByteArray(static_cast<int>(statedBytes) - bodyBytes > 0 && statedBytes < 1000000
                          ? static_cast<int>(statedBytes) - bodyBytes
                          : 0,
                      '\0');
}

struct Walked {
    std::vector<Item> items;
    std::vector<std::size_t> lengths;
    std::uint64_t covered = 0;
    bool contiguous = true;
};

Walked walk(const QByteArray& bytes, std::size_t piece = 1000) {
    MemorySource source(bytes, piece);
    Mp3FrameWalker walker(source, 1);
    Walked walked;
    for (Item item = walker.next(); item != Item::End; item = walker.next()) {
        walked.contiguous = walked.contiguous && walker.offset() == walked.covered;
        walked.items.push_back(item);
        walked.lengths.push_back(walker.length());
        walked.covered += walker.length();
        if (item == Item::ReadError) {
            break;
        }
    }
    return walked;
}

int count(const Walked& walked, Item kind) {
    return static_cast<int>(std::count(walked.items.begin(), walked.items.end(), kind));
}

}  // namespace

TEST(MpegFrameHeader, FramesOfEveryVersion_LengthRateAndSamples) {
    const auto header = [](const char* bytes) {
        return MpegFrameHeader::fromBytes(reinterpret_cast<const std::uint8_t*>(bytes));
    };
    EXPECT_EQ(header(kMpeg1).frameLength(), 417);
    EXPECT_EQ(header(kMpeg1).samplesPerFrame(), 1152);
    EXPECT_EQ(header(kMpeg1).sideInfoLength(), 32);
    EXPECT_EQ(header(kMpeg2).mpegVersion(), 2);
    EXPECT_EQ(header(kMpeg2).sampleRateHz(), 22050);
    EXPECT_EQ(header(kMpeg2).frameLength(), 208);
    EXPECT_EQ(header(kMpeg2).samplesPerFrame(), 576);
    EXPECT_EQ(header(kMpeg2).sideInfoLength(), 9);
    EXPECT_EQ(header(kMpeg25).mpegVersion(), 25);
    EXPECT_EQ(header(kMpeg25).sampleRateHz(), 11025);
    EXPECT_EQ(header(kMpeg25).frameLength(), 208);
    EXPECT_TRUE(header(kMpeg25).isLayer3Audio());
    EXPECT_FALSE(header("\xFF\xFB\xF0\x64").isLayer3Audio());  // bit-rate index 15
    EXPECT_FALSE(header("\xFF\xFD\x90\x64").isLayer3Audio());  // Layer II
}

TEST(MpegFrameHeader, ShortDigitText_FieldsHaveOnlyTheDigitsThere) {
    const MpegFrameHeader header(0xB0000000u, 4);  // the digits 1011
    EXPECT_EQ(header.field(1, 2), 2u);
    EXPECT_EQ(header.field(3, 4), 3u);  // only digits 3 and 4 are there
    EXPECT_FALSE(header.field(5, 1).has_value());
    EXPECT_EQ(header.number(12, 2), 0u);
}

TEST(Mp3FrameWalker, TagsAndJunkAroundFrames_EveryByteCoveredOnlyFramesTaken) {
    QByteArray stream = id3v2(300, 300) + QByteArray("junk!junk!junk!") + frames(kMpeg1, 5);
    stream += QByteArray("APETAGEX", 8) + QByteArray(24, '\0');  // a footer
    stream += QByteArray("TAG") + QByteArray(125, ' ');
    stream += frames(kMpeg1, 3);
    const Walked walked = walk(stream);
    EXPECT_TRUE(walked.contiguous);
    EXPECT_EQ(walked.covered, static_cast<std::uint64_t>(stream.size()));
    EXPECT_EQ(count(walked, Item::Audio), 8);
    EXPECT_EQ(count(walked, Item::Id3v2), 1);
    EXPECT_EQ(count(walked, Item::Id3v1), 1);
    EXPECT_EQ(count(walked, Item::Ape), 1);
    EXPECT_EQ(count(walked, Item::Junk), 1);
}

TEST(Mp3FrameWalker, Id3v2SizeRunsPastTheFile_TheFramesBehindItAreKept) {
    // The tag says 5,000,000 bytes; the stream behind it is far shorter.
    const QByteArray stream =
        id3v2(200, 5000000) + frames(kMpeg2, 4) + id3v2(100, 100) + frames(kMpeg2, 6);
    const Walked walked = walk(stream, 77);
    EXPECT_EQ(walked.covered, static_cast<std::uint64_t>(stream.size()));
    EXPECT_EQ(count(walked, Item::Audio), 10);
    EXPECT_EQ(count(walked, Item::Junk), 0);
}

TEST(Mp3FrameWalker, FrameCutShortByTheNextFilesTag_IsJunk) {
    const QByteArray cut = frame(kMpeg25).left(120);
    const QByteArray stream = frames(kMpeg25, 3) + cut + id3v2(150, 150) + frames(kMpeg25, 3);
    const Walked walked = walk(stream);
    EXPECT_EQ(walked.covered, static_cast<std::uint64_t>(stream.size()));
    EXPECT_EQ(count(walked, Item::Audio), 6);
    EXPECT_EQ(count(walked, Item::Junk), 1);
}

TEST(Mp3FrameWalker, JunkThatLooksLikeOneFrame_IsNotTakenWithoutFramesBehindIt) {
    const QByteArray stream = QByteArray("xx") + frame(kMpeg1).left(300) + frames(kMpeg1, 2);
    const Walked walked = walk(stream);
    EXPECT_EQ(count(walked, Item::Audio), 2);
}

TEST(Mp3FrameWalker, XingFrameInFront_IsAHeaderFrameWithItsCounts) {
    QByteArray xing = frame(kMpeg1, '\0');
    const QByteArray fields = QByteArray("Xing\0\0\0\x03\0\0\0\x07\0\0\x0B\xB8", 16);
    xing.replace(36, fields.size(), fields);
    const Walked walked = walk(xing + frames(kMpeg1, 7));
    ASSERT_EQ(walked.items.size(), 8u);
    EXPECT_EQ(walked.items[0], Item::HeaderFrame);
    const auto* data = reinterpret_cast<const std::uint8_t*>(xing.constData());
    const Mp3HeaderFrame read =
        Mp3HeaderFrame::read(data, xing.size(), MpegFrameHeader::fromBytes(data));
    EXPECT_EQ(read.kind, Mp3HeaderFrame::Kind::Xing);
    EXPECT_EQ(read.frames, 7u);
    EXPECT_EQ(read.bytes, 3000u);
}

TEST(Mp3FrameWalker, NoFrameAtAll_AllJunk) {
    const Walked walked = walk(QByteArray(5000, 'x'));
    EXPECT_EQ(count(walked, Item::Audio), 0);
    EXPECT_EQ(walked.covered, 5000u);
}

TEST(Mp3FrameWalker, ApeTagWhoseSizeRunsPastTheEnd_CoversOnlyWhatIsThere) {
    QByteArray ape("APETAGEX\xD0\x07\0\0\x00\x10\0\0\x01\0\0\0\0\0\0\xA0", 24);
    ape += QByteArray(8, '\0') + QByteArray(100, 'a');
    const QByteArray stream = frames(kMpeg1, 3) + ape;
    const Walked walked = walk(stream);
    EXPECT_EQ(walked.covered, static_cast<std::uint64_t>(stream.size()));
    EXPECT_EQ(count(walked, Item::Ape), 1);
}

namespace {

// A free-format frame of the stream of header (its bit-rate index made 0): as
// long as unpadded, and one byte more with the padding bit set.
QByteArray freeFrame(const char* header, int unpadded, bool padding = false, char fill = '\x11') {
    QByteArray bytes(header, 4);
    bytes[2] = static_cast<char>((bytes[2] & 0x0D) | (padding ? 0x02 : 0x00));
    return bytes + QByteArray(unpadded + (padding ? 1 : 0) - 4, fill);
}

// count free-format frames of that length, every third one padded.
QByteArray freeFrames(const char* header, int unpadded, int count) {
    QByteArray bytes;
    for (int i = 0; i < count; ++i) {
        bytes += freeFrame(header, unpadded, i % 3 == 2);
    }
    return bytes;
}

MpegFrameHeader headerOf(const QByteArray& bytes) {
    return MpegFrameHeader::fromBytes(reinterpret_cast<const std::uint8_t*>(bytes.constData()));
}

}  // namespace

TEST(MpegFrameHeader, FreeFormat_LengthFromTheStreamPlusPadding_RateFromTheLength) {
    const MpegFrameHeader plain = headerOf(freeFrame(kMpeg1, 653));
    EXPECT_TRUE(plain.isFreeFormat());
    EXPECT_TRUE(plain.isLayer3FreeFormat());
    EXPECT_FALSE(plain.isLayer3Audio());
    EXPECT_EQ(plain.frameLength(), 0);
    EXPECT_EQ(plain.freeFormatLength(653), 653);
    EXPECT_EQ(headerOf(freeFrame(kMpeg1, 653, true)).freeFormatLength(653), 654);
    // 653 bytes a frame of 1152 samples at 44,100 Hz: 199,979 bit/s.
    EXPECT_EQ(plain.kbpsOfLength(653), 200);
    // MPEG-2 at 22,050 Hz, 576 samples a frame: 200 bytes are 61,250 bit/s.
    EXPECT_EQ(headerOf(freeFrame(kMpeg2, 200)).kbpsOfLength(200), 61);
    // The longest looked for: 640 kbit/s at the version's sample rate.
    EXPECT_EQ(plain.longestFreeFormatLength(), 144 * 640000 / 44100 + 1);
    EXPECT_EQ(headerOf(freeFrame(kMpeg25, 300)).longestFreeFormatLength(), 72 * 640000 / 11025 + 1);
    EXPECT_FALSE(headerOf(freeFrame("\xFF\xFD\x90\x64", 600)).isLayer3FreeFormat());  // Layer II
}

TEST(Mp3FrameWalker, FreeFormatFrames_TakenWithTheDistanceToTheNextHeaderAsLength) {
    const QByteArray stream = freeFrames(kMpeg1, 653, 12);
    const Walked walked = walk(stream);
    EXPECT_EQ(count(walked, Item::Audio), 12);
    EXPECT_EQ(count(walked, Item::Junk), 0);
    EXPECT_TRUE(walked.contiguous);
    EXPECT_EQ(walked.covered, static_cast<std::uint64_t>(stream.size()));
    ASSERT_EQ(walked.lengths.size(), 12u);
    EXPECT_EQ(walked.lengths[0], 653u);
    EXPECT_EQ(walked.lengths[2], 654u);  // padded
}

TEST(Mp3FrameWalker, FreeFormatFileBetweenOrdinaryOnes_EveryFrameTaken) {
    const QByteArray free = freeFrames(kMpeg1, 653, 9);
    const QByteArray tagged = frames(kMpeg1, 5) + id3v2(120, 120) + free + QByteArray("TAG") +
                              QByteArray(125, ' ') + frames(kMpeg1, 4);
    Walked walked = walk(tagged, 333);
    EXPECT_EQ(count(walked, Item::Audio), 18);
    EXPECT_EQ(count(walked, Item::Junk), 0);
    EXPECT_EQ(walked.covered, static_cast<std::uint64_t>(tagged.size()));
    // Frames right behind frames, no tag between the files.
    const QByteArray bare = frames(kMpeg1, 5) + free + frames(kMpeg1, 4);
    walked = walk(bare, 333);
    EXPECT_EQ(count(walked, Item::Audio), 18);
    EXPECT_EQ(count(walked, Item::Junk), 0);
}

TEST(Mp3FrameWalker, FreeFormatFilesOfTwoRatesBackToBack_EachLengthFoundAnew) {
    const QByteArray stream =
        freeFrames(kMpeg2, 300, 7) + freeFrames(kMpeg2, 211, 7) + freeFrames(kMpeg1, 900, 5);
    const Walked walked = walk(stream);
    EXPECT_EQ(count(walked, Item::Audio), 19);
    EXPECT_EQ(count(walked, Item::Junk), 0);
    ASSERT_EQ(walked.lengths.size(), 19u);
    EXPECT_EQ(walked.lengths[6], 300u);
    EXPECT_EQ(walked.lengths[7], 211u);
    EXPECT_EQ(walked.lengths[14], 900u);
}

TEST(Mp3FrameWalker, FreeFormatFrameWhoseLengthCannotBeFound_IsJunk) {
    // One frame alone: no next header tells its length.
    Walked walked = walk(frames(kMpeg1, 3) + id3v2(100, 100) + freeFrame(kMpeg1, 653));
    EXPECT_EQ(count(walked, Item::Audio), 3);
    EXPECT_EQ(count(walked, Item::Junk), 1);
    // Frames longer than 640 kbit/s make: not looked for so far.
    walked = walk(freeFrames(kMpeg1, 2200, 6));
    EXPECT_EQ(count(walked, Item::Audio), 0);
}

TEST(Mp3FrameWalker, JunkFrameFollowedByALoneFreeFormatHeader_IsNotTaken) {
    // A frame header in junk, and at its length a free-format header that no
    // frames follow: two headers are no stream.
    const QByteArray stream =
        QByteArray("xx") + frame(kMpeg1) + freeFrame(kMpeg1, 653) + QByteArray(3000, 'x');
    const Walked walked = walk(stream);
    EXPECT_EQ(count(walked, Item::Audio), 0);
    EXPECT_EQ(walked.covered, static_cast<std::uint64_t>(stream.size()));
}

TEST(Mp3HeaderFrame, SeveralRates_LameMethodNeverSaysConstant) {
    const MpegFrameHeader header = headerOf(QByteArray("\xFF\xFB\x90\x64", 4));
    Mp3HeaderFrameContent content;
    content.withLame = true;
    std::memcpy(content.lame.data(), "LAME3.100", 9);
    content.lame[9] = 0x21;  // revision 2, constant bit rate
    std::vector<std::uint8_t> frame(static_cast<std::size_t>(header.frameLength()));
    const auto methodWritten = [&](bool oneRate) {
        content.info = oneRate;
        WriteHeaderFrame(header, header.frameLength(), content, frame.data());
        const Mp3HeaderFrame read = Mp3HeaderFrame::read(frame.data(), frame.size(), header);
        EXPECT_TRUE(read.hasLame);
        return read.lame[9];
    };
    EXPECT_EQ(methodWritten(true), 0x21);
    EXPECT_EQ(methodWritten(false), 0x20);  // revision kept, method unknown
    content.lame[9] = 0x24;                 // a variable rate stays as it is
    EXPECT_EQ(methodWritten(false), 0x24);
}
