#include <gtest/gtest.h>

#include <sys/stat.h>
#include <QByteArray>
#include <QFileInfo>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "media/ProgramStreamScan.h"
#include "support/ProgramStreamBytes.h"
#include "support/RequireFfmpeg.h"

namespace {

using namespace psbytes;

// Bytes handed out in pieces of the given sizes, in turn.
ByteReader readerOf(const QByteArray& bytes, std::vector<int> pieces = {1 << 20}) {
    auto at = std::make_shared<qsizetype>(0);
    auto turn = std::make_shared<std::size_t>(0);
    return [bytes, pieces = std::move(pieces), at, turn](char* data, std::int64_t size) {
        const qsizetype piece = pieces[(*turn)++ % pieces.size()];
        const qsizetype count = std::min({static_cast<qsizetype>(size), piece, bytes.size() - *at});
        std::copy_n(bytes.constData() + *at, count, data);
        *at += count;
        return static_cast<std::int64_t>(count);
    };
}

ProgramStreamMap scan(const QByteArray& bytes) {
    return ScanProgramStream(readerOf(bytes));
}

std::vector<std::pair<int, std::int64_t>> idsAndOffsets(const ProgramStreamMap& map) {
    std::vector<std::pair<int, std::int64_t>> found;
    for (const StreamAppearance& stream : map.streams) {
        found.emplace_back(stream.id, stream.offset);
    }
    return found;
}

// The start of a DVD title: a pack with the system header and a navigation
// packet, then packs of video, AC-3 and MPEG audio, and more of the same.
struct DvdBytes {
    QByteArray bytes;
    std::int64_t nav = 0, video = 0, ac3 = 0, mp2 = 0;

    DvdBytes() {
        bytes = mpeg2Pack(0) + systemHeader();
        nav = bytes.size();
        bytes += navPacket() + mpeg2Pack(900);
        video = bytes.size();
        bytes += mpeg2Packet(0xe0, QByteArray(2000, 'v')) + mpeg2Pack(1800);
        ac3 = bytes.size();
        bytes += privatePacket(0x80, 1500) + padding(200) + mpeg2Pack(2700);
        mp2 = bytes.size();
        bytes += mpeg2Packet(0xc0, QByteArray(768, 'm')) + mpeg2Pack(3600) +
                 mpeg2Packet(0xe0, QByteArray(2000, 'v')) + privatePacket(0x80);
    }
};

}  // namespace

TEST(ProgramStreamScan, DvdPacks_NameEachStreamWhereItsFirstPacketStarts) {
    const DvdBytes dvd;
    const ProgramStreamMap map = scan(dvd.bytes);
    EXPECT_EQ(idsAndOffsets(map),
              (std::vector<std::pair<int, std::int64_t>>{
                  {0x1bf, dvd.nav}, {0x1e0, dvd.video}, {0x80, dvd.ac3}, {0x1c0, dvd.mp2}}));
    EXPECT_EQ(map.packs, 5);
    EXPECT_EQ(map.bytes, dvd.bytes.size());
    EXPECT_TRUE(map.complete);
    ASSERT_NE(map.find(0x80), nullptr);
    EXPECT_EQ(map.find(0x80)->offset, dvd.ac3);
    EXPECT_EQ(map.find(0x1be), nullptr);  // padding is no stream
    EXPECT_EQ(map.find(0x1bb), nullptr);  // nor is the system header
}

TEST(ProgramStreamScan, PrivateStream1_EachSubStreamIsAStreamOfItsOwn) {
    QByteArray bytes = mpeg2Pack(0);
    std::vector<std::pair<int, std::int64_t>> expected;
    for (const int sub : {0x80, 0x81, 0x20, 0xa0, 0x88}) {
        expected.emplace_back(sub, bytes.size());
        bytes += privatePacket(sub) + privatePacket(sub);
    }
    EXPECT_EQ(idsAndOffsets(scan(bytes)), expected);
}

TEST(ProgramStreamScan, Mpeg1SystemStream_ReadsItsPacksAndPacketHeaders) {
    QByteArray bytes = mpeg1Pack(0) + systemHeader();
    const std::int64_t video = bytes.size();
    bytes += mpeg1Packet(0xe0, QByteArray(2000, 'v')) + mpeg1Pack(90000);
    const std::int64_t audio = bytes.size();
    bytes += mpeg1Packet(0xc1, QByteArray(400, 'm'));
    const std::int64_t privateOne = bytes.size();
    bytes += mpeg1Packet(0xbd, QByteArray("\x81payload", 8)) + startCode(0xb9);
    const ProgramStreamMap map = scan(bytes);
    EXPECT_EQ(idsAndOffsets(map), (std::vector<std::pair<int, std::int64_t>>{
                                      {0x1e0, video}, {0x1c1, audio}, {0x81, privateOne}}));
    EXPECT_EQ(map.packs, 2);
    EXPECT_DOUBLE_EQ(map.clockSeconds, 1.0);
    EXPECT_DOUBLE_EQ(map.streams[1].clockSeconds, 1.0);
}

TEST(ProgramStreamScan, Clock_SumsTheStepsOfTheClockReferenceFromPackToPack) {
    QByteArray bytes = mpeg2Pack(450000) + mpeg2Packet(0xe0, "v");
    bytes += mpeg2Pack(495000, 150) + privatePacket(0x80);  // half a second and 150 / 27 MHz
    bytes += mpeg2Pack(540000) + mpeg2Packet(0xc0, "m");    // a second after the first
    const ProgramStreamMap map = scan(bytes);
    ASSERT_EQ(map.streams.size(), 3U);
    EXPECT_DOUBLE_EQ(map.streams[0].clockSeconds, 0.0);
    EXPECT_DOUBLE_EQ(map.streams[1].clockSeconds, 0.5 + 150.0 / 27e6);
    EXPECT_DOUBLE_EQ(map.streams[2].clockSeconds, 1.0);
    EXPECT_DOUBLE_EQ(map.clockSeconds, 1.0);
}

TEST(ProgramStreamScan, ClockThatStartsAgainJumpsOrWraps_CountsAtMostASecondAStep) {
    constexpr std::int64_t kWrap = std::int64_t{1} << 33;
    QByteArray bytes = mpeg2Pack(900000) + mpeg2Pack(945000);  // half a second
    bytes += mpeg2Pack(0);                                     // starts again
    bytes += mpeg2Pack(90000 * 3600);                          // an hour ahead
    bytes += mpeg2Pack(kWrap - 9000) + mpeg2Pack(9000);        // wraps: a fifth of a second
    EXPECT_DOUBLE_EQ(scan(bytes).clockSeconds, 0.5 + 1.0 + 1.0 + 1.0 + 0.2);
}

TEST(ProgramStreamScan, TruncatedFile_CountsThePacketCutShortWhereItStarts) {
    const DvdBytes dvd;
    const QByteArray cut = dvd.bytes.left(dvd.mp2 + 30);
    const ProgramStreamMap map = scan(cut);
    ASSERT_NE(map.find(0x1c0), nullptr);
    EXPECT_EQ(map.find(0x1c0)->offset, dvd.mp2);
    EXPECT_EQ(map.bytes, cut.size());
    EXPECT_TRUE(map.complete);
    // Cut inside a pack header, a start code and a packet's length field: no
    // packet; cut behind the length field: the packet counts.
    for (const std::int64_t at :
         {dvd.mp2 - 12, dvd.mp2 - 2, dvd.mp2 + 2, dvd.mp2 + 5, dvd.mp2 + 6}) {
        const ProgramStreamMap shorter = scan(dvd.bytes.left(at));
        EXPECT_EQ(shorter.streams.size(), at >= dvd.mp2 + 6 ? 4U : 3U) << at;
        EXPECT_EQ(shorter.bytes, at);
    }
}

TEST(ProgramStreamScan, GarbageAndBrokenHeaders_ArePassedOverToTheNextStartCode) {
    QByteArray bytes = QByteArray("a container's own header, then damage ") +
                       QByteArray("\x00\x00\x02\x00\x00", 5);
    bytes += startCode(0xba) + QByteArray(10, '\0');  // a pack header with wrong marker bits
    bytes += QByteArray("\x00\x00\x01\x00\x01", 5);   // a start code of no header
    bytes += mpeg2Pack(0);
    const std::int64_t video = bytes.size();
    bytes += mpeg2Packet(0xe0, "v") + QByteArray(333, '\x5a');
    const std::int64_t audio = bytes.size();
    bytes += mpeg2Packet(0xc0, "m");
    const ProgramStreamMap map = scan(bytes);
    EXPECT_EQ(idsAndOffsets(map),
              (std::vector<std::pair<int, std::int64_t>>{{0x1e0, video}, {0x1c0, audio}}));
    EXPECT_EQ(map.packs, 1);
    EXPECT_TRUE(map.complete);
    // Read in small pieces, a start code lies across the end of what was read.
    for (const int piece : {3, 5, 7, 11}) {
        EXPECT_EQ(idsAndOffsets(ScanProgramStream(readerOf(bytes, {piece}))), idsAndOffsets(map))
            << piece;
    }
}

TEST(ProgramStreamScan, BytesThatAreNoProgramStream_NoPackNoStream) {
    QByteArray noise;
    std::uint32_t value = 12345;
    for (int i = 0; i < 300000; ++i) {
        value = value * 1103515245U + 12345U;
        noise.append(static_cast<char>((value >> 16) & 0xff));
    }
    const ProgramStreamMap map = scan(noise);
    EXPECT_EQ(map.packs, 0);
    EXPECT_EQ(map.bytes, noise.size());
    const ProgramStreamMap empty = scan(QByteArray());
    EXPECT_TRUE(empty.streams.empty());
    EXPECT_EQ(empty.bytes, 0);
    EXPECT_TRUE(empty.complete);
}

TEST(ProgramStreamScan, PacketWithoutLength_IsPassedOverToTheNextStartCode) {
    QByteArray bytes = mpeg2Pack(0) + startCode(0xe0);
    append(bytes, {0x00, 0x00, 0x81, 0x80, 0x05, 0x21, 0x00, 0x01, 0x00, 0x01});
    bytes += QByteArray(500, 'v');
    const std::int64_t audio = bytes.size();
    bytes += mpeg2Packet(0xc0, "m");
    const ProgramStreamMap map = scan(bytes);
    ASSERT_EQ(map.streams.size(), 2U);
    EXPECT_EQ(map.streams[1].offset, audio);
}

TEST(ProgramStreamScan, ReaderGivingFewBytesAtATime_FindsTheSame) {
    const DvdBytes dvd;
    const ProgramStreamMap whole = scan(dvd.bytes);
    const ProgramStreamMap pieces = ScanProgramStream(readerOf(dvd.bytes, {1, 3, 7, 2, 5}));
    EXPECT_EQ(idsAndOffsets(pieces), idsAndOffsets(whole));
    EXPECT_EQ(pieces.packs, whole.packs);
    EXPECT_EQ(pieces.bytes, whole.bytes);
}

TEST(ProgramStreamScan, StreamBeyondSeveralBuffers_FoundAtItsOffset) {
    // Two and a half megabytes of 2048-byte packs, and then a new stream.
    QByteArray bytes;
    std::int64_t clock = 0;
    while (bytes.size() < 2500000) {
        const QByteArray pack = mpeg2Pack(clock += 300, 0, 2);
        bytes += pack + mpeg2Packet(0xe0, QByteArray(2048 - pack.size() - 14, 'v'));
    }
    const std::int64_t late = bytes.size();
    bytes += mpeg2Pack(clock) + systemHeader();
    const std::int64_t audio = bytes.size();
    bytes += privatePacket(0x81);
    const ProgramStreamMap map = ScanProgramStream(readerOf(bytes, {65536, 1000000, 4097}));
    ASSERT_NE(map.find(0x81), nullptr);
    EXPECT_EQ(map.find(0x81)->offset, audio);
    EXPECT_GT(audio, late);
    EXPECT_EQ(map.packs, late / 2048 + 1);
    EXPECT_EQ(map.bytes, bytes.size());
}

TEST(ProgramStreamScan, StopAsked_EndsTheScanIncomplete) {
    const DvdBytes dvd;
    int asked = 0;
    const ProgramStreamMap map =
        ScanProgramStream(readerOf(dvd.bytes, {100}), [&asked] { return ++asked > 3; });
    EXPECT_FALSE(map.complete);
    EXPECT_LT(map.bytes, dvd.bytes.size());
}

TEST(ProgramStreamScan, ReadError_EndsTheScanIncomplete) {
    const DvdBytes dvd;
    ByteReader good = readerOf(dvd.bytes, {500});
    int calls = 0;
    const ProgramStreamMap map = ScanProgramStream([&](char* data, std::int64_t size) {
        return ++calls > 2 ? std::int64_t{-1} : good(data, size);
    });
    EXPECT_FALSE(map.complete);
    EXPECT_EQ(map.bytes, 1000);
}

TEST(ProgramStreamScanFile, PipeOrMissingFile_IsNotRead) {
    QTemporaryDir dir;
    const QString pipe = dir.filePath(QStringLiteral("title.vob"));
    ASSERT_EQ(::mkfifo(pipe.toLocal8Bit().constData(), 0600), 0);
    // Were the pipe opened, the scan would wait for a writer for ever.
    const ProgramStreamMap map = ScanProgramStreamFile(pipe);
    EXPECT_FALSE(map.complete);
    EXPECT_EQ(map.bytes, 0);
    EXPECT_FALSE(ScanProgramStreamFile(dir.filePath(QStringLiteral("gone.vob"))).complete);
}

TEST(ProgramStreamScanFile, TitleMadeByFfmpeg_FindsTheStreamsFfprobeLists) {
    REQUIRE_FFMPEG();
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("VTS_01_1.VOB"));
    ASSERT_TRUE(RunFfmpeg({QStringLiteral("-f"),
                           QStringLiteral("lavfi"),
                           QStringLiteral("-i"),
                           QStringLiteral("testsrc=size=720x576:rate=25:duration=3"),
                           QStringLiteral("-f"),
                           QStringLiteral("lavfi"),
                           QStringLiteral("-i"),
                           QStringLiteral("sine=frequency=440:sample_rate=48000:duration=3"),
                           QStringLiteral("-f"),
                           QStringLiteral("lavfi"),
                           QStringLiteral("-i"),
                           QStringLiteral("sine=frequency=550:sample_rate=48000:duration=3"),
                           QStringLiteral("-map"),
                           QStringLiteral("0"),
                           QStringLiteral("-map"),
                           QStringLiteral("1"),
                           QStringLiteral("-map"),
                           QStringLiteral("2"),
                           QStringLiteral("-c:v"),
                           QStringLiteral("mpeg2video"),
                           QStringLiteral("-c:a:0"),
                           QStringLiteral("ac3"),
                           QStringLiteral("-c:a:1"),
                           QStringLiteral("mp2"),
                           QStringLiteral("-f"),
                           QStringLiteral("dvd"),
                           path}))
        << LastMediaMakerError().toStdString();
    const QString listed =
        RunFfprobe({QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-show_entries"),
                    QStringLiteral("stream=id"), QStringLiteral("-of"),
                    QStringLiteral("default=nw=1:nk=1"), path});
    QStringList probed = listed.split(u'\n', Qt::SkipEmptyParts);
    const ProgramStreamMap map = ScanProgramStreamFile(path);
    QStringList scanned;
    for (const StreamAppearance& stream : map.streams) {
        scanned << QStringLiteral("0x") + QString::number(stream.id, 16);
    }
    probed.sort();
    scanned.sort();
    EXPECT_EQ(scanned, probed);
    EXPECT_EQ(scanned.size(), 4);
    EXPECT_TRUE(map.complete);
    EXPECT_EQ(map.bytes, QFileInfo(path).size());
    EXPECT_NEAR(map.clockSeconds, 3.0, 0.5);
}
