#include <gtest/gtest.h>

#include <QFile>
#include <QLocale>
#include <QTemporaryDir>

#include "ByteFiles.h"
#include "media/ID3Reader.h"

using bytefiles::Filler;
using bytefiles::FrameHeader;
using bytefiles::Header;

namespace {

class ID3ReaderFrame : public ::testing::Test {
protected:
    QString make(const QByteArray& bytes, const QString& name = QStringLiteral("f.mp3")) {
        const QString path = dir.filePath(name);
        EXPECT_TRUE(bytefiles::Write(path, bytes));
        return path;
    }
    // A file of exactly size bytes that starts with the given bytes.
    QString makeSized(const QByteArray& start, qint64 size,
                      const QString& name = QStringLiteral("f.mp3")) {
        const QString path = dir.filePath(name);
        EXPECT_TRUE(bytefiles::Write(path, start));
        QFile file(path);
        EXPECT_TRUE(file.resize(size));  // sparse: zero bytes
        return path;
    }
    ID3Reader analyse(const QString& path) {
        ID3Reader reader;
        reader.setFileName(path);
        return reader;
    }

    QTemporaryDir dir;
};

const QString kPlainCbrReport = QStringLiteral(
    "Size: 1000000 bytes\r\nLength: 62 seconds\r\nMPEG 1.0 layer 3\r\n128kbit, 0 frames\r\n"
    "44100hz Joint Stereo\r\nPrivate: No\r\nCRCs: No\r\nCopyrighted: No\r\nOriginal: Yes\r\n"
    "Emphasis: None");

}  // namespace

TEST_F(ID3ReaderFrame, NewReader_HasClearedFields) {
    ID3Reader reader;
    EXPECT_EQ(reader.FileName(), QString());
    EXPECT_EQ(reader.FileBytes(), 0);
    EXPECT_EQ(reader.MpegVersion(), 0);
    EXPECT_EQ(reader.Hz(), 0);
    EXPECT_EQ(reader.Mode(), QString());
    EXPECT_EQ(reader.InfoString(), QString());
    EXPECT_EQ(reader.Genre(), 12);
    EXPECT_EQ(reader.Title(), QString());
}

TEST_F(ID3ReaderFrame, HeaderAtPositionOne_BitrateIndex9_MillionBytes_Gives62Seconds) {
    const ID3Reader reader = analyse(makeSized(FrameHeader() + Filler(100), 1000000));
    EXPECT_EQ(reader.FileBytes(), 1000000);
    EXPECT_EQ(reader.MpegVersion(), 1);
    EXPECT_EQ(reader.LayerVersion(), 3);
    EXPECT_EQ(reader.Kbits(), 128);
    EXPECT_EQ(reader.Hz(), 44100);
    EXPECT_EQ(reader.Seconds(), 62);
    EXPECT_EQ(reader.Frames(), 0);
    EXPECT_EQ(reader.Mode(), "Joint Stereo");
    EXPECT_EQ(reader.Channels(), 2);
    EXPECT_EQ(reader.CRCs(), "No");
    EXPECT_EQ(reader.PrivateBit(), "No");
    EXPECT_EQ(reader.Copyrighted(), "No");
    EXPECT_EQ(reader.Original(), "Yes");
    EXPECT_EQ(reader.Emphasis(), "None");
    EXPECT_EQ(reader.InfoString(), kPlainCbrReport);
}

TEST_F(ID3ReaderFrame, EmptyFile_EndsAtSampleRateWithEmptyReport) {
    const ID3Reader reader = analyse(make(QByteArray()));
    EXPECT_FALSE(reader.FileName().isEmpty());
    EXPECT_EQ(reader.FileBytes(), 0);
    EXPECT_EQ(reader.MpegVersion(), 25);
    EXPECT_EQ(reader.LayerVersion(), 0);
    EXPECT_EQ(reader.Mode(), "Stereo");
    EXPECT_EQ(reader.Channels(), 2);
    EXPECT_EQ(reader.Emphasis(), "None");
    EXPECT_EQ(reader.Hz(), 0);
    EXPECT_EQ(reader.Kbits(), 0);
    EXPECT_EQ(reader.Seconds(), 0);
    EXPECT_EQ(reader.CRCs(), QString());
    EXPECT_EQ(reader.Original(), QString());
    EXPECT_EQ(reader.InfoString(), QString());
}

TEST_F(ID3ReaderFrame, NoSyncPair_DecodesFirstThreeBytesWithLeadingZerosDropped) {
    // "RIF" -> bit text 1010010 01001001 01000110 (23 digits): positions 12-13
    // read "10" (MPEG 2), so the analysis ends at the sample rate.
    const ID3Reader reader = analyse(make(QByteArray("RIF") + Filler(7000)));
    EXPECT_EQ(reader.FileBytes(), 7003);
    EXPECT_EQ(reader.MpegVersion(), 2);
    EXPECT_EQ(reader.LayerVersion(), 3);
    EXPECT_EQ(reader.Mode(), "Stereo");
    EXPECT_EQ(reader.Emphasis(), "None");
    EXPECT_EQ(reader.Hz(), 0);
    EXPECT_EQ(reader.Kbits(), 0);
    EXPECT_EQ(reader.PrivateBit(), QString());
    EXPECT_EQ(reader.InfoString(), QString());
}

TEST_F(ID3ReaderFrame, NoSyncPair_TextWithOnesAt12And13_GetsMeaninglessValues) {
    // FF 1A 9D -> 11111111 00011010 10011101: version 1, layer 3, bit-rate
    // index 9, sample-rate index 3, private 1, protection 0; no position 25+.
    const ID3Reader reader =
        analyse(makeSized(QByteArray("\xFF\x1A\x9D", 3) + Filler(100), 1000000));
    EXPECT_EQ(reader.MpegVersion(), 1);
    EXPECT_EQ(reader.LayerVersion(), 3);
    EXPECT_EQ(reader.Hz(), 0);
    EXPECT_EQ(reader.Kbits(), 128);
    EXPECT_EQ(reader.Seconds(), 62);
    EXPECT_EQ(reader.Mode(), "Stereo");
    EXPECT_EQ(reader.PrivateBit(), "Yes");
    EXPECT_EQ(reader.CRCs(), "Yes");
    EXPECT_EQ(reader.Copyrighted(), QString());
    EXPECT_EQ(reader.Original(), QString());
    EXPECT_EQ(reader.InfoString(),
              "Size: 1000000 bytes\r\nLength: 62 seconds\r\nMPEG 1.0 layer 3\r\n"
              "128kbit, 0 frames\r\n0hz Stereo\r\nPrivate: Yes\r\nCRCs: Yes\r\n"
              "Copyrighted: \r\nOriginal: \r\nEmphasis: None");
}

TEST_F(ID3ReaderFrame, ReservedLayer_KbitsIsOneAndAnalysisEnds) {
    // FF 18 91 -> version bits 11, layer bits 00 (reserved), rate index 0.
    const ID3Reader reader = analyse(make(QByteArray("\xFF\x18\x91", 3) + Filler(7000)));
    EXPECT_EQ(reader.MpegVersion(), 1);
    EXPECT_EQ(reader.LayerVersion(), 0);
    EXPECT_EQ(reader.Hz(), 44100);
    EXPECT_EQ(reader.Kbits(), 1);
    EXPECT_EQ(reader.Seconds(), 0);
    EXPECT_EQ(reader.Original(), QString());
    EXPECT_EQ(reader.InfoString(), QString());
}

TEST_F(ID3ReaderFrame, LayerOneAndTwoTables_ReachedThroughTheBitText) {
    // FF 1E E0: layer bits 11 (Layer I), bit-rate index 14.
    EXPECT_EQ(analyse(make(QByteArray("\xFF\x1E\xE0", 3) + Filler(100))).Kbits(), 448);
    EXPECT_EQ(analyse(make(QByteArray("\xFF\x1E\xE0", 3) + Filler(100))).LayerVersion(), 1);
    // FF 1C E0: layer bits 10 (Layer II), bit-rate index 14.
    EXPECT_EQ(analyse(make(QByteArray("\xFF\x1C\xE0", 3) + Filler(100))).Kbits(), 384);
    EXPECT_EQ(analyse(make(QByteArray("\xFF\x1C\x50", 3) + Filler(100))).Kbits(), 80);
    EXPECT_EQ(analyse(make(QByteArray("\xFF\x1E\x50", 3) + Filler(100))).Kbits(), 160);
}

TEST_F(ID3ReaderFrame, LayerThreeTable_EveryIndex) {
    const int expected[] = {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 0};
    for (int index = 0; index < 16; ++index) {
        Header h;
        h.bitrateIndex = index;
        const ID3Reader reader = analyse(make(FrameHeader(h) + Filler(1000)));
        EXPECT_EQ(reader.Kbits(), expected[index]) << "index " << index;
    }
}

TEST_F(ID3ReaderFrame, SampleRateTable_AndIndex3KeepsGoingWithZero) {
    const int expected[] = {44100, 48000, 32000, 0};
    for (int index = 0; index < 4; ++index) {
        Header h;
        h.rateIndex = index;
        const ID3Reader reader = analyse(makeSized(FrameHeader(h), 1000000));
        EXPECT_EQ(reader.Hz(), expected[index]);
        EXPECT_EQ(reader.Kbits(), 128);
        EXPECT_EQ(reader.Seconds(), 62);
    }
    Header h;
    h.rateIndex = 3;
    EXPECT_TRUE(analyse(makeSized(FrameHeader(h), 1000000))
                    .InfoString()
                    .contains(QStringLiteral("\r\n0hz Joint Stereo\r\n")));
}

TEST_F(ID3ReaderFrame, BitrateIndex15_KbitsZero_SecondsZero_ReportSaysZeroSeconds) {
    Header h;
    h.bitrateIndex = 15;
    const ID3Reader reader = analyse(makeSized(FrameHeader(h), 1000000));
    EXPECT_EQ(reader.Kbits(), 0);
    EXPECT_EQ(reader.Seconds(), 0);
    EXPECT_TRUE(reader.InfoString().contains(QStringLiteral("Length: 0 seconds")));
    EXPECT_TRUE(reader.InfoString().contains(QStringLiteral("\r\n0kbit, 0 frames\r\n")));
}

TEST_F(ID3ReaderFrame, FreeFormat_RateFromTheFramesLength_ReportSaysFreeFormat) {
    // Free-format frames of 653 bytes at 44,100 Hz: 200 kbit/s.
    Header h;
    h.bitrateIndex = 0;
    QByteArray frames;
    for (int i = 0; i < 10; ++i) {
        frames += FrameHeader(h) + QByteArray(649, '\0');
    }
    const ID3Reader reader = analyse(makeSized(frames, 1000000));
    EXPECT_TRUE(reader.FreeFormat());
    EXPECT_EQ(reader.Kbits(), 200);
    EXPECT_EQ(reader.Seconds(), 40);  // 8,000,000 bits at 200 kbit/s
    EXPECT_TRUE(
        reader.InfoString().contains(QStringLiteral("\r\n200kbit free format, 0 frames\r\n")))
        << reader.InfoString().toStdString();
    // One frame alone does not tell its length: the rate stays unknown.
    const ID3Reader alone = analyse(makeSized(FrameHeader(h), 1000000, QStringLiteral("g.mp3")));
    EXPECT_TRUE(alone.FreeFormat());
    EXPECT_EQ(alone.Kbits(), 0);
    EXPECT_TRUE(alone.InfoString().contains(QStringLiteral("\r\n0kbit free format, 0 frames\r\n")));
    // A rate from the table is no free format.
    EXPECT_FALSE(analyse(makeSized(FrameHeader(), 1000000, QStringLiteral("h.mp3"))).FreeFormat());
}

TEST_F(ID3ReaderFrame, ModesFlagsAndEmphasis_Decode) {
    Header h;
    h.crc = true;
    h.privateBit = true;
    h.copyright = true;
    h.original = false;
    h.mode = 2;
    h.emphasis = 3;
    ID3Reader reader = analyse(make(FrameHeader(h) + Filler(100)));
    EXPECT_EQ(reader.CRCs(), "Yes");
    EXPECT_EQ(reader.PrivateBit(), "Yes");
    EXPECT_EQ(reader.Copyrighted(), "Yes");
    EXPECT_EQ(reader.Original(), "No");
    EXPECT_EQ(reader.Mode(), "Dual Channel");
    EXPECT_EQ(reader.Channels(), 2);
    EXPECT_EQ(reader.Emphasis(), "CCITT J 17");

    const char* modes[] = {"Stereo", "Joint Stereo", "Dual Channel", "Single Channel"};
    const char* emphases[] = {"None", "50/15", "Reserved", "CCITT J 17"};
    for (int i = 0; i < 4; ++i) {
        Header m;
        m.mode = i;
        m.emphasis = i;
        reader.setFileName(make(FrameHeader(m) + Filler(100)));
        EXPECT_EQ(reader.Mode(), modes[i]);
        EXPECT_EQ(reader.Emphasis(), emphases[i]);
        EXPECT_EQ(reader.Channels(), i == 3 ? 1 : 2);
    }
}

TEST_F(ID3ReaderFrame, SyncAtPosition6000_IsFound) {
    Header h;
    h.crc = true;  // 0xFF 0xFA
    const ID3Reader reader = analyse(make(Filler(5999) + FrameHeader(h) + Filler(100)));
    EXPECT_EQ(reader.MpegVersion(), 1);
    EXPECT_EQ(reader.Kbits(), 128);
    EXPECT_EQ(reader.CRCs(), "Yes");
    const ID3Reader second = analyse(make(Filler(5999) + FrameHeader() + Filler(100)));
    EXPECT_EQ(second.Kbits(), 128);
    EXPECT_EQ(second.CRCs(), "No");
}

TEST_F(ID3ReaderFrame, SyncAtPosition6001_IsNotLookedAt) {
    // The first bytes 0x11 0x11 0x11 give version bits "01": version 0.
    const ID3Reader reader = analyse(make(Filler(6000) + FrameHeader() + Filler(100)));
    EXPECT_EQ(reader.MpegVersion(), 0);
    EXPECT_EQ(reader.Kbits(), 0);
    EXPECT_EQ(reader.Hz(), 0);
    EXPECT_EQ(reader.InfoString(), QString());
}

TEST_F(ID3ReaderFrame, OtherVersionsAndLayers_AreNeverFound) {
    // 0xFF 0xF3 (MPEG-2 Layer III) and 0xFF 0xFD (MPEG-1 Layer II) are passed
    // over; the later 0xFF 0xFB wins.
    QByteArray bytes = QByteArray("\xFF\xF3\x90\x64", 4) + Filler(10) +
                       QByteArray("\xFF\xFD\x90\x64", 4) + Filler(10);
    Header h;
    h.bitrateIndex = 5;
    bytes += FrameHeader(h) + Filler(100);
    const ID3Reader reader = analyse(make(bytes));
    EXPECT_EQ(reader.Kbits(), 64);
    EXPECT_EQ(reader.LayerVersion(), 3);
}

TEST_F(ID3ReaderFrame, PairInsideLeadingId3v2Tag_IsTakenForTheFrame) {
    Header first;
    first.bitrateIndex = 1;
    QByteArray bytes = QByteArray("ID3\x03\x00\x00\x00\x00\x01\x00", 10) + Filler(20) +
                       FrameHeader(first) + Filler(200) + FrameHeader() + Filler(400);
    const ID3Reader reader = analyse(make(bytes));
    EXPECT_EQ(reader.Kbits(), 32);
}

TEST_F(ID3ReaderFrame, XingAtOffset36_GivesFrameCount) {
    QByteArray bytes = FrameHeader() + Filler(32) + "Xing" + QByteArray("\x00\x00\x00\x0F", 4) +
                       QByteArray("\x00\x00\x04\xD2", 4) + Filler(400);
    ASSERT_EQ(bytes.indexOf("Xing"), 36);
    const ID3Reader reader = analyse(make(bytes));
    EXPECT_EQ(reader.Frames(), 1234);
    EXPECT_TRUE(reader.InfoString().contains(QStringLiteral("\r\n128kbit, 1234 frames\r\n")));
}

TEST_F(ID3ReaderFrame, XingBehindLaterSync_IsReadRelativeToIt) {
    QByteArray bytes = Filler(99) + FrameHeader() + Filler(32) + "Xing" + QByteArray(4, '\0') +
                       QByteArray("\x00\x01\x00\x00", 4) + Filler(400);
    EXPECT_EQ(analyse(make(bytes)).Frames(), 65536);
}

TEST_F(ID3ReaderFrame, XingWithoutFramesFlag_TakesTheFourBytesAnyway) {
    QByteArray bytes = FrameHeader() + Filler(32) + "Xing" + QByteArray(4, '\0') +
                       QByteArray("\x11\x22\x33\x44", 4) + Filler(400);
    EXPECT_EQ(analyse(make(bytes)).Frames(), 0x11223344);
}

TEST_F(ID3ReaderFrame, MonoXingAtOffset21_IsMissed) {
    Header h;
    h.mode = 3;
    QByteArray bytes = FrameHeader(h) + Filler(17) + "Xing" + QByteArray("\x00\x00\x00\x0F", 4) +
                       QByteArray("\x00\x00\x04\xD2", 4) + Filler(400);
    ASSERT_EQ(bytes.indexOf("Xing"), 21);
    const ID3Reader reader = analyse(make(bytes));
    EXPECT_EQ(reader.Frames(), 0);
    EXPECT_EQ(reader.Channels(), 1);
    EXPECT_EQ(reader.Mode(), "Single Channel");
}

TEST_F(ID3ReaderFrame, InfoOrLowerCaseXing_IsNotRecognised) {
    const QByteArray count = QByteArray(4, '\0') + QByteArray("\x00\x00\x04\xD2", 4);
    EXPECT_EQ(analyse(make(FrameHeader() + Filler(32) + "Info" + count + Filler(100))).Frames(), 0);
    EXPECT_EQ(analyse(make(FrameHeader() + Filler(32) + "xing" + count + Filler(100))).Frames(), 0);
    EXPECT_EQ(analyse(make(FrameHeader() + Filler(31) + "Xing" + count + Filler(100))).Frames(), 0);
}

TEST_F(ID3ReaderFrame, XingCountOf2Pow31_DoesNotFitAndStaysZero) {
    const auto frames = [&](const QByteArray& count) {
        return analyse(make(FrameHeader() + Filler(32) + "Xing" + QByteArray(4, '\0') + count +
                            Filler(100)))
            .Frames();
    };
    EXPECT_EQ(frames(QByteArray("\x80\x00\x00\x00", 4)), 0);
    EXPECT_EQ(frames(QByteArray("\xFF\xFF\xFF\xFF", 4)), 0);
    EXPECT_EQ(frames(QByteArray("\x7F\xFF\xFF\xFF", 4)), 2147483647);
}

TEST_F(ID3ReaderFrame, XingCountPastTheEnd_ReadsZeros) {
    QByteArray bytes = FrameHeader() + Filler(32) + "Xing" + QByteArray(4, '\0') + "\x01";
    EXPECT_EQ(analyse(make(bytes)).Frames(), 0x01000000);
}

TEST_F(ID3ReaderFrame, File300MB_SecondsZero_ReportStillComposed) {
    const ID3Reader reader = analyse(makeSized(FrameHeader(), 300LL * 1024 * 1024));
    EXPECT_EQ(reader.FileBytes(), 314572800);
    EXPECT_EQ(reader.Seconds(), 0);
    EXPECT_EQ(reader.Kbits(), 128);
    EXPECT_TRUE(reader.InfoString().startsWith(
        QStringLiteral("Size: 314572800 bytes\r\nLength: 0 seconds\r\nMPEG 1.0 layer 3")));
}

TEST_F(ID3ReaderFrame, SizeTimesEight_Overflows32BitsAt268435456Bytes) {
    EXPECT_EQ(analyse(makeSized(FrameHeader(), 268435455)).Seconds(), 16777);
    EXPECT_EQ(analyse(makeSized(FrameHeader(), 268435456)).Seconds(), 0);
}

TEST_F(ID3ReaderFrame, SecondsAbove32767_DoNotFitAndStayZero) {
    Header h;
    h.bitrateIndex = 1;  // 32 kbit/s
    EXPECT_EQ(analyse(makeSized(FrameHeader(h), 131068000)).Seconds(), 32767);
    EXPECT_EQ(analyse(makeSized(FrameHeader(h), 131072000)).Seconds(), 0);
}

TEST_F(ID3ReaderFrame, SecondsCountTheWholeFileIncludingTheTag) {
    // 16,000 bytes at 128 kbit/s are exactly 1 second; the tag makes it more
    // bytes but the whole part stays 1, and 15,999 bytes give 0.
    EXPECT_EQ(analyse(makeSized(FrameHeader(), 16000)).Seconds(), 1);
    EXPECT_EQ(analyse(makeSized(FrameHeader(), 15999)).Seconds(), 0);
    EXPECT_EQ(analyse(makeSized(FrameHeader(), 31999)).Seconds(), 1);
}

TEST_F(ID3ReaderFrame, MissingFile_LeavesFileNameEmptyAndFieldsCleared) {
    ID3Reader reader;
    reader.setFileName(make(FrameHeader() + Filler(100)));
    ASSERT_EQ(reader.Kbits(), 128);
    reader.setFileName(dir.filePath(QStringLiteral("missing.mp3")));
    EXPECT_EQ(reader.FileName(), QString());
    EXPECT_EQ(reader.Kbits(), 0);
    EXPECT_EQ(reader.MpegVersion(), 0);
    EXPECT_EQ(reader.Mode(), QString());
    EXPECT_FALSE(reader.HasTag());
}

TEST_F(ID3ReaderFrame, ReusedReader_KeepsFormerReportWhenNewFileEndsEarly) {
    ID3Reader reader;
    reader.setFileName(makeSized(FrameHeader(), 1000000, QStringLiteral("a.mp3")));
    ASSERT_EQ(reader.InfoString(), kPlainCbrReport);
    reader.setFileName(make(QByteArray(), QStringLiteral("empty.mp3")));
    EXPECT_EQ(reader.FileBytes(), 0);
    EXPECT_EQ(reader.Hz(), 0);
    EXPECT_EQ(reader.InfoString(), kPlainCbrReport);
    reader.setFileName(dir.filePath(QStringLiteral("missing.mp3")));
    EXPECT_EQ(reader.InfoString(), kPlainCbrReport);
}

TEST_F(ID3ReaderFrame, HeaderCutByEndOfFile_ReadsZerosForMissingBytes) {
    const ID3Reader reader = analyse(make(QByteArray("\xFF\xFB", 2)));
    EXPECT_EQ(reader.MpegVersion(), 1);
    EXPECT_EQ(reader.Kbits(), 0);
    EXPECT_EQ(reader.Hz(), 44100);
    EXPECT_EQ(reader.Mode(), "Stereo");
    EXPECT_EQ(reader.Original(), "No");
}

TEST_F(ID3ReaderFrame, VersionFormat_UsesTheLocaleDecimalPoint) {
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    const ID3Reader reader = analyse(makeSized(FrameHeader(), 1000000));
    QLocale::setDefault(before);
    EXPECT_TRUE(reader.InfoString().contains(QStringLiteral("\r\nMPEG 1,0 layer 3\r\n")));
    EXPECT_TRUE(reader.InfoString().startsWith(QStringLiteral("Size: 1000000 bytes")));
}
