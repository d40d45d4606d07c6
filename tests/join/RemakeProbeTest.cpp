#include <gtest/gtest.h>

#include <sys/stat.h>
#include <QFile>
#include <QMap>
#include <QTemporaryDir>
#include <thread>

#include "join/RemakeProbe.h"
#include "join/RemakeProbeScan.h"
#include "support/ProgramStreamBytes.h"

namespace {

using namespace psbytes;

constexpr qint64 kHundredHours = 360000000000;

// A part of a title: a pack each second (seconds packs, so its clock runs
// seconds - 1), video in each, and the given sub-streams of private stream 1
// and MPEG audio streams from the second pack on.
struct Part {
    QByteArray bytes;
    QMap<int, qint64> firstAt;  // stream id -> offset in the part

    Part(int seconds, const QList<int>& privateStreams, const QList<int>& audioStreams) {
        for (int second = 0; second < seconds; ++second) {
            bytes += mpeg2Pack(90000LL * second);
            note(0x1e0);
            bytes += mpeg2Packet(0xe0, QByteArray(1500, 'v'));
            if (second == 0) {
                continue;
            }
            for (const int sub : privateStreams) {
                note(sub);
                bytes += privatePacket(sub, 300);
            }
            for (const int code : audioStreams) {
                note(0x100 + code);
                bytes += mpeg2Packet(code, QByteArray(300, 'm'));
            }
        }
    }
    void note(int id) {
        if (!firstAt.contains(id)) {
            firstAt[id] = bytes.size();
        }
    }
};

class RemakeProbeTest : public ::testing::Test {
protected:
    QString write(const QString& name, const QByteArray& bytes) {
        const QString path = dir.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return path;
    }
    QTemporaryDir dir;
};

}  // namespace

TEST_F(RemakeProbeTest, ScanJoinParts_StreamsOfEveryPart_EachAtItsFirstAppearanceInTheJoin) {
    const Part one(4, {0x80}, {});
    const Part two(3, {0x80}, {});
    const Part three(5, {0x80}, {0xc0});
    const QStringList parts = {write("one.vob", one.bytes), write("two.vob", two.bytes),
                               write("three.vob", three.bytes)};
    const JoinStreamMap map = ScanJoinParts(parts);
    ASSERT_TRUE(map.whole);
    ASSERT_EQ(map.streams.size(), 3U);
    EXPECT_EQ(map.streams[0].id, 0x1e0);
    EXPECT_EQ(map.streams[0].offset, one.firstAt[0x1e0]);
    EXPECT_EQ(map.streams[1].id, 0x80);
    EXPECT_EQ(map.streams[1].part, 1);
    EXPECT_EQ(map.streams[1].offset, one.firstAt[0x80]);
    EXPECT_DOUBLE_EQ(map.streams[1].clockSeconds, 1.0);
    EXPECT_EQ(map.streams[2].id, 0x1c0);
    EXPECT_EQ(map.streams[2].part, 3);
    EXPECT_EQ(map.streams[2].offset, one.bytes.size() + two.bytes.size() + three.firstAt[0x1c0]);
    // Three seconds of clock in the first part, two in the second, one into the third.
    EXPECT_DOUBLE_EQ(map.streams[2].clockSeconds, 6.0);
    EXPECT_EQ(map.bytes, one.bytes.size() + two.bytes.size() + three.bytes.size());
    EXPECT_EQ(map.clockedParts, 3);
    EXPECT_EQ(map.deepest(), &map.streams[2]);
}

TEST_F(RemakeProbeTest, ProbeOfJoin_StreamsAllInTheFirstPart_TheirDepthAndTheMargin) {
    const Part one(6, {0x80}, {0xc0});
    const Part two(6, {0x80}, {0xc0});
    const JoinStreamMap map =
        ScanJoinParts({write("one.vob", one.bytes), write("two.vob", two.bytes)});
    const RemakeProbe probe = ProbeOfJoin(map);
    EXPECT_EQ(probe.probeBytes, one.firstAt[0x1c0] + 5000000);
    EXPECT_TRUE(probe.programStream);
    // Twice the clock there (one second) and half a minute.
    EXPECT_EQ(probe.analyzeMicroseconds, 32000000);
}

TEST_F(RemakeProbeTest, ProbeOfJoin_StreamFirstInTheLastPart_ReachesItThroughTheEarlierParts) {
    const Part one(4, {0x80}, {});
    const Part two(4, {0x80}, {});
    const Part three(4, {0x80, 0x81}, {});
    const JoinStreamMap map =
        ScanJoinParts({write("one.vob", one.bytes), write("two.vob", two.bytes),
                       write("three.vob", three.bytes)});
    const RemakeProbe probe = ProbeOfJoin(map);
    EXPECT_EQ(probe.probeBytes,
              one.bytes.size() + two.bytes.size() + three.firstAt[0x81] + 5000000);
    EXPECT_EQ(probe.analyzeMicroseconds, 2 * 7000000 + 30000000);
}

TEST_F(RemakeProbeTest, ProbeOfJoin_PartBeforeTheDeepestWithoutAClock_AnalysesAHundredHours) {
    // A part whose clock stands still: its bytes tell no time.
    QByteArray still;
    for (int i = 0; i < 20; ++i) {
        still += mpeg2Pack(90000) + mpeg2Packet(0xe0, QByteArray(1500, 'v'));
    }
    const Part late(3, {0x80}, {});
    const JoinStreamMap map =
        ScanJoinParts({write("still.vob", still), write("late.vob", late.bytes)});
    EXPECT_EQ(map.clockedParts, 0);
    const RemakeProbe probe = ProbeOfJoin(map);
    EXPECT_EQ(probe.probeBytes, still.size() + late.firstAt[0x80] + 5000000);
    EXPECT_EQ(probe.analyzeMicroseconds, kHundredHours);
    // Behind the deepest first appearance, a part without a clock does not count.
    const Part early(3, {0x80}, {});
    const JoinStreamMap first =
        ScanJoinParts({write("early.vob", early.bytes), write("still2.vob", still)});
    EXPECT_EQ(first.clockedParts, 1);
    EXPECT_EQ(ProbeOfJoin(first).analyzeMicroseconds, 2 * 1000000 + 30000000);
}

TEST_F(RemakeProbeTest, ProbeOfJoin_PartThatIsNoProgramStreamOrAPipe_ReadsTheWholeJoin) {
    const Part one(3, {0x80}, {});
    const QByteArray noise(6000000, '\x17');
    const QString first = write("one.vob", one.bytes);
    const JoinStreamMap map = ScanJoinParts({first, write("noise.vob", noise)});
    EXPECT_FALSE(map.whole);
    const RemakeProbe probe = ProbeOfJoin(map);
    EXPECT_EQ(probe.probeBytes, one.bytes.size() + noise.size());
    EXPECT_EQ(probe.analyzeMicroseconds, kHundredHours);
    EXPECT_FALSE(probe.programStream);

    const QString pipe = dir.filePath("pipe.vob");
    ASSERT_EQ(::mkfifo(pipe.toLocal8Bit().constData(), 0600), 0);
    EXPECT_FALSE(ScanJoinParts({first, pipe}).whole);
}

TEST_F(RemakeProbeTest, WholeJoinProbe_SmallJoin_ReadsWhatTheToolReadsByItselfAtTheLeast) {
    EXPECT_EQ(WholeJoinProbe(20000).probeBytes, 5000000);
    EXPECT_EQ(WholeJoinProbe(3000000000).probeBytes, 3000000000);
    EXPECT_EQ(WholeJoinProbe(3000000000).analyzeMicroseconds, kHundredHours);
    EXPECT_FALSE(WholeJoinProbe(3000000000).programStream);
}

TEST_F(RemakeProbeTest, ScanJoinParts_StopAsked_MapIsNotWhole) {
    const Part one(3, {0x80}, {});
    const JoinStreamMap map = ScanJoinParts({write("one.vob", one.bytes)}, [] { return true; });
    EXPECT_FALSE(map.whole);
    EXPECT_EQ(ProbeOfJoin(map).probeBytes, 5000000);
}

TEST_F(RemakeProbeTest, JoinStreamRecords_NameEachStreamItsByteAndItsPart) {
    const Part one(3, {}, {});
    const Part two(3, {0x80}, {0xc0});
    const QStringList parts = {write("one.vob", one.bytes), write("VTS_01_2.VOB", two.bytes)};
    const JoinStreamMap map = ScanJoinParts(parts);
    EXPECT_EQ(
        JoinStreamRecords(map, parts),
        QStringList(
            {QStringLiteral("Stream 0x1e0 first at byte %1, in one.vob").arg(one.firstAt[0x1e0]),
             QStringLiteral("Stream 0x80 first at byte %1, in VTS_01_2.VOB")
                 .arg(one.bytes.size() + two.firstAt[0x80]),
             QStringLiteral("Stream 0x1c0 first at byte %1, in VTS_01_2.VOB")
                 .arg(one.bytes.size() + two.firstAt[0x1c0])}));
    JoinStreamMap notWhole;
    EXPECT_EQ(JoinStreamRecords(notWhole, parts),
              QStringList({"Streams not mapped: the remake reads the whole join."}));
}

TEST_F(RemakeProbeTest, RemakeProbeScan_OnItsThread_GivesTheMapOfTheParts) {
    const Part one(3, {0x80}, {});
    const Part two(3, {0x80}, {0xc0});
    const QStringList parts = {write("one.vob", one.bytes), write("two.vob", two.bytes)};
    RemakeProbeScan scan(parts);
    while (!scan.finished()) {
        std::this_thread::yield();
    }
    EXPECT_EQ(scan.parts(), parts);
    EXPECT_TRUE(scan.map().whole);
    EXPECT_EQ(ProbeOfJoin(scan.map()).probeBytes, ProbeOfJoin(ScanJoinParts(parts)).probeBytes);
}
