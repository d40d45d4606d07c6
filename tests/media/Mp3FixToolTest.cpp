// The MP3 fix tool as the scripts run it: its exit status, its one line on
// standard error, and no output when it fails.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include "mpegaudio/JoinSources.h"
#include "mpegaudio/Mp3Crc16.h"
#include "mpegaudio/Mp3HeaderFrame.h"
#include "mpegaudio/MpegFrameHeader.h"
#include "support/FileSizeLimit.h"
#include "support/MediaMaker.h"

namespace {

struct ToolRun {
    int status = -1;
    QString error;
};

ToolRun fix(const QStringList& arguments) {
    QProcess process;
    process.start(QStringLiteral(VELMORA_MP3_FIX_TOOL), arguments);
    process.waitForFinished(60000);
    ToolRun run;
    run.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.error = QString::fromUtf8(process.readAllStandardError());
    return run;
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The tool's one line on standard error: its name, the file, the reason.
QString errorLine(const QString& file, const QString& reason) {
    return QFileInfo(QStringLiteral(VELMORA_MP3_FIX_TOOL)).fileName() + QStringLiteral(": ") +
           file + QStringLiteral(": ") + reason + u'\n';
}

// Silent frames (side information and data all zero, which decoders play as
// silence): MPEG-1 Layer III, 44,100 Hz, joint stereo, at 128 kbit/s (417
// bytes), or in free format at 653 bytes a frame (200 kbit/s).
QByteArray silentFrames(int count) {
    QByteArray bytes;
    for (int i = 0; i < count; ++i) {
        bytes += QByteArray("\xFF\xFB\x90\x64", 4) + QByteArray(413, '\0');
    }
    return bytes;
}
QByteArray silentFreeFormatFrames(int count, int length = 653) {
    QByteArray bytes;
    for (int i = 0; i < count; ++i) {
        bytes += QByteArray("\xFF\xFB\x00\x64", 4) + QByteArray(length - 4, '\0');
    }
    return bytes;
}

// Writes the sources into folder one by one, their raw join as raw.mp3 and
// the sources file as JoinSources.txt; gives the paths of the sources.
QStringList writeJoin(const QString& folder, const QList<QPair<QString, QByteArray>>& sources) {
    QByteArray raw;
    std::vector<JoinSource> listed;
    QStringList paths;
    for (const auto& [name, bytes] : sources) {
        const QString path = folder + u'/' + name;
        QDir().mkpath(QFileInfo(path).path());
        writeFile(path, bytes);
        raw += bytes;
        listed.push_back({static_cast<std::uint64_t>(bytes.size()), path.toStdString()});
        paths << path;
    }
    writeFile(folder + QStringLiteral("/raw.mp3"), raw);
    writeFile(folder + QStringLiteral("/JoinSources.txt"),
              QByteArray::fromStdString(FormatJoinSources(listed)));
    return paths;
}

}  // namespace

TEST(Mp3FixTool, NoMpegAudioFrame_Status3OneLineNoOutput) {
    QTemporaryDir dir;
    writeFile(dir.filePath("in.mp3"), QByteArray(20000, 'x'));
    const ToolRun run = fix({dir.filePath("in.mp3"), dir.filePath("out.mp3")});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.error, errorLine(dir.filePath("in.mp3"), "no MPEG audio Layer III frame in it"));
    EXPECT_FALSE(QFile::exists(dir.filePath("out.mp3")));
}

TEST(Mp3FixTool, UnreadableInput_Status2OneLine) {
    QTemporaryDir dir;
    const ToolRun run = fix({dir.filePath("missing.mp3"), dir.filePath("out.mp3")});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.error, errorLine(dir.filePath("missing.mp3"), "No such file or directory"));
    EXPECT_FALSE(QFile::exists(dir.filePath("out.mp3")));
}

TEST(Mp3FixTool, WriteFailsHalfWay_Status4AndTheOutputIsRemoved) {
    ASSERT_TRUE(HaveFfmpeg());
    QTemporaryDir dir;
    Mp3Options options;
    options.seconds = 10;
    const QString input = MakeMp3(dir.path(), "in.mp3", options);
    ASSERT_FALSE(input.isEmpty());
    ToolRun run;
    {
        FileSizeLimit limit(50000);  // the tool inherits it
        ASSERT_TRUE(limit.active());
        run = fix({input, dir.filePath("out.mp3")});
    }
    EXPECT_EQ(run.status, 4);
    EXPECT_EQ(run.error.count(u'\n'), 1);
    EXPECT_TRUE(run.error.startsWith(errorLine(dir.filePath("out.mp3"), QString()).chopped(1)))
        << run.error.toStdString();
    EXPECT_FALSE(QFile::exists(dir.filePath("out.mp3")));
}

TEST(Mp3FixTool, OptionsOfTheOldFixLine_AreAcceptedAndOtherCallsAreUsageErrors) {
    ASSERT_TRUE(HaveFfmpeg());
    QTemporaryDir dir;
    const QString input = MakeMp3(dir.path(), "in.mp3");
    ASSERT_FALSE(input.isEmpty());
    const ToolRun run = fix({"--removedId3v1", "--removeId3v2", "--removeUnknown", "--keepLame",
                             input, dir.filePath("out.mp3")});
    EXPECT_EQ(run.status, 0) << run.error.toStdString();
    EXPECT_EQ(run.error, "");
    EXPECT_GT(QFileInfo(dir.filePath("out.mp3")).size(), 0);
    EXPECT_EQ(fix({input}).status, 1);
}

TEST(Mp3FixTool, SourceWithoutAudioFrames_Status3NamesThatSourceNoOutput) {
    QTemporaryDir dir;
    const QStringList paths =
        writeJoin(dir.path(), {{"one.mp3", silentFrames(30)},
                               {"Live: Tokyo/two: no.mp3", QByteArray(5000, 'x')},
                               {"three.mp3", silentFrames(30)}});
    for (const QString& tag : {QString(), QStringLiteral("--no-tag")}) {
        QStringList arguments{QStringLiteral("--sources"), dir.filePath("JoinSources.txt")};
        if (!tag.isEmpty()) {
            arguments << tag;
        }
        const ToolRun run =
            fix(arguments + QStringList{dir.filePath("raw.mp3"), dir.filePath("out.mp3")});
        EXPECT_EQ(run.status, 3);
        EXPECT_EQ(run.error,
                  errorLine(paths[1], "no MPEG audio Layer III frame could be read in it"));
        EXPECT_FALSE(QFile::exists(dir.filePath("out.mp3")));
    }
}

TEST(Mp3FixTool, LastOrEmptySourceWithoutAudioFrames_IsNamedToo) {
    QTemporaryDir dir;
    QStringList paths = writeJoin(
        dir.path(),
        {{"one.mp3", silentFrames(30)}, {"tail.mp3", QByteArray("TAG") + QByteArray(125, ' ')}});
    const QStringList arguments{QStringLiteral("--sources"), dir.filePath("JoinSources.txt"),
                                dir.filePath("raw.mp3"), dir.filePath("out.mp3")};
    ToolRun run = fix(arguments);
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.error, errorLine(paths[1], "no MPEG audio Layer III frame could be read in it"));
    paths = writeJoin(dir.path(), {{"one.mp3", silentFrames(30)},
                                   {"empty.mp3", QByteArray()},
                                   {"three.mp3", silentFrames(30)}});
    run = fix(arguments);
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.error, errorLine(paths[1], "no MPEG audio Layer III frame could be read in it"));
    EXPECT_FALSE(QFile::exists(dir.filePath("out.mp3")));
}

TEST(Mp3FixTool, NoTag_SourcesCheckedOutputHasOnlyTheAudio) {
    QTemporaryDir dir;
    writeJoin(dir.path(), {{"one.mp3", silentFrames(30)}, {"two.mp3", silentFrames(20)}});
    const ToolRun run =
        fix({QStringLiteral("--no-tag"), QStringLiteral("--sources"),
             dir.filePath("JoinSources.txt"), dir.filePath("raw.mp3"), dir.filePath("out.mp3")});
    EXPECT_EQ(run.status, 0) << run.error.toStdString();
    EXPECT_EQ(run.error, "");
    const QByteArray out = readFile(dir.filePath("out.mp3"));
    // A header frame of 417 bytes and the 50 frames; no tag in front.
    EXPECT_EQ(out.size(), 51 * 417);
    EXPECT_TRUE(out.startsWith("\xFF\xFB"));
}

TEST(Mp3FixTool, FreeFormatSourceBetweenOrdinaryOnes_EveryFrameJoinedAndDecoded) {
    QTemporaryDir dir;
    writeJoin(dir.path(), {{"one.mp3", silentFrames(30)},
                           {"free.mp3", silentFreeFormatFrames(25)},
                           {"three.mp3", silentFrames(20)}});
    const ToolRun run = fix({QStringLiteral("--sources"), dir.filePath("JoinSources.txt"),
                             dir.filePath("raw.mp3"), dir.filePath("out.mp3")});
    EXPECT_EQ(run.status, 0) << run.error.toStdString();
    const Mpg123Decode decoded = DecodeWithMpg123(dir.filePath("out.mp3"));
    EXPECT_EQ(decoded.frames, 75);
    EXPECT_EQ(decoded.complaints.toStdString(), "");
}

TEST(Mp3FixTool, FreeFormatFirst_HeaderFrameIsFreeFormatOfTheStreamsLength) {
    QTemporaryDir dir;
    writeJoin(dir.path(),
              {{"free.mp3", silentFreeFormatFrames(25)}, {"two.mp3", silentFreeFormatFrames(10)}});
    const ToolRun run =
        fix({QStringLiteral("--no-tag"), QStringLiteral("--sources"),
             dir.filePath("JoinSources.txt"), dir.filePath("raw.mp3"), dir.filePath("out.mp3")});
    EXPECT_EQ(run.status, 0) << run.error.toStdString();
    const QByteArray out = readFile(dir.filePath("out.mp3"));
    // The header frame: free format (bit-rate index 0), 653 bytes, "Info"
    // (one rate) with the count of the 35 frames behind it.
    ASSERT_EQ(out.size(), 36 * 653);
    EXPECT_EQ(static_cast<unsigned char>(out.at(2)) >> 4, 0);
    EXPECT_EQ(out.mid(36, 4), "Info");
    EXPECT_EQ(out.mid(44, 4), QByteArray("\0\0\0\x23", 4));
    EXPECT_TRUE(out.mid(653).startsWith("\xFF\xFB\x00\x64"));
    const Mpg123Decode decoded = DecodeWithMpg123(dir.filePath("out.mp3"));
    EXPECT_EQ(decoded.frames, 35);
    EXPECT_EQ(decoded.complaints.toStdString(), "");
}

TEST(Mp3FixTool, FreeFormatSourcesOfTwoLengths_Status5NamesTheSecond) {
    QTemporaryDir dir;
    const QStringList paths =
        writeJoin(dir.path(), {{"free.mp3", silentFreeFormatFrames(25)},
                               {"two.mp3", silentFrames(10)},
                               {"other free.mp3", silentFreeFormatFrames(20, 836)}});
    const ToolRun run = fix({QStringLiteral("--sources"), dir.filePath("JoinSources.txt"),
                             dir.filePath("raw.mp3"), dir.filePath("out.mp3")});
    EXPECT_EQ(run.status, 5);
    EXPECT_EQ(run.error, errorLine(paths[2],
                                   "free format at 256 kbit/s after free format at 200 "
                                   "kbit/s: a joined file holds one free-format rate only"));
    EXPECT_FALSE(QFile::exists(dir.filePath("out.mp3")));
}

// The music CRC of the LAME extension covers exactly the audio behind the
// header frame (not the tag, not the header frame), over more audio than
// one buffer of the tool holds.
TEST(Mp3FixTool, MusicCrcOfTheLameExtension_IsTheCrcOfAllTheAudioBehindTheHeaderFrame) {
    ASSERT_TRUE(HaveFfmpeg());
    QTemporaryDir dir;
    Mp3Options options;
    options.seconds = 40;
    options.id3v2 = true;
    options.metadata = {{QStringLiteral("album"), QStringLiteral("The Album")}};
    QList<QPair<QString, QByteArray>> sources;
    for (int i = 0; i < 3; ++i) {
        options.frequencyHz = 440 + 110 * i;
        const QString name = QStringLiteral("part%1.mp3").arg(i + 1);
        const QString made = MakeMp3(dir.filePath("made"), name, options);
        ASSERT_FALSE(made.isEmpty()) << LastMediaMakerError().toStdString();
        sources.append({name, readFile(made)});
    }
    writeJoin(dir.path(), sources);
    const ToolRun run = fix({QStringLiteral("--sources"), dir.filePath("JoinSources.txt"),
                             dir.filePath("raw.mp3"), dir.filePath("out.mp3")});
    ASSERT_EQ(run.status, 0) << run.error.toStdString();
    const QByteArray out = readFile(dir.filePath("out.mp3"));
    ASSERT_TRUE(out.startsWith("ID3"));
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(out.constData());
    const qsizetype tagLength =
        10 + ((bytes[6] << 21) | (bytes[7] << 14) | (bytes[8] << 7) | bytes[9]);
    const std::uint8_t* data = bytes + tagLength;
    const MpegFrameHeader header = MpegFrameHeader::fromBytes(data);
    ASSERT_TRUE(header.isLayer3Audio());
    const int frameLength = header.frameLength();
    ASSERT_TRUE(Mp3HeaderFrame::read(data, static_cast<std::size_t>(frameLength), header).hasLame);
    const std::uint8_t* lame = data + 4 + header.sideInfoLength() + kXingHeaderBytes;
    const qsizetype audio = out.size() - tagLength - frameLength;
    ASSERT_GT(audio, qsizetype{1} << 20);
    EXPECT_EQ((lame[32] << 8) | lame[33],
              Mp3Crc16ByTables(0, data + frameLength, static_cast<std::size_t>(audio)));
}
