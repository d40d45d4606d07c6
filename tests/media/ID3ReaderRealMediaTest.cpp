#include <gtest/gtest.h>

#include <QFileInfo>
#include <QTemporaryDir>

#include "ByteFiles.h"
#include "media/ID3Reader.h"
#include "support/MediaMaker.h"
#include "support/TestEnvironment.h"

namespace {

// ffprobe's view of the first audio stream: key=value lines.
struct Probe {
    int sampleRate = -1;
    int channels = -1;
    qint64 bitRate = -1;
    qint64 packets = -1;
};

Probe ProbeAudio(const QString& path) {
    const QString out =
        RunFfprobe({QStringLiteral("-select_streams"), QStringLiteral("a:0"),
                    QStringLiteral("-count_packets"), QStringLiteral("-show_entries"),
                    QStringLiteral("stream=sample_rate,channels,bit_rate,nb_read_packets"),
                    QStringLiteral("-of"), QStringLiteral("default=nw=1"), path});
    Probe probe;
    for (const QString& line : out.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const QString key = line.section(QLatin1Char('='), 0, 0);
        const QString value = line.section(QLatin1Char('='), 1).trimmed();
        if (key == QLatin1String("sample_rate")) {
            probe.sampleRate = value.toInt();
        } else if (key == QLatin1String("channels")) {
            probe.channels = value.toInt();
        } else if (key == QLatin1String("bit_rate")) {
            probe.bitRate = value.toLongLong();
        } else if (key == QLatin1String("nb_read_packets")) {
            probe.packets = value.toLongLong();
        }
    }
    return probe;
}

bool HaveSamples() {
    return QFileInfo::exists(SampleMediaFolder() + "/mimetype-mp3.mp3");
}

}  // namespace

TEST(ID3ReaderRealMedia, CbrFiles_AgreeWithFfprobe) {
    if (!HaveFfmpeg()) {
        GTEST_SKIP() << "ffmpeg not installed";
    }
    QTemporaryDir dir;
    struct Case {
        int kbps;
        int rate;
        int channels;
    };
    const Case cases[] = {{128, 44100, 2}, {96, 44100, 2}, {64, 48000, 1},
                          {320, 48000, 2}, {48, 32000, 1}, {256, 32000, 2}};
    for (const Case& c : cases) {
        Mp3Options options;
        options.bitrateKbps = c.kbps;
        options.sampleRate = c.rate;
        options.channels = c.channels;
        options.seconds = 3;
        options.id3v1 = true;
        options.metadata = {{"title", "t"}};
        const QString name =
            QStringLiteral("c%1_%2_%3.mp3").arg(c.kbps).arg(c.rate).arg(c.channels);
        const QString path = MakeMp3(dir.path(), name, options);
        ASSERT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
        const Probe probe = ProbeAudio(path);
        ASSERT_GT(probe.sampleRate, 0) << name.toStdString();
        ID3Reader reader;
        reader.setFileName(path);
        EXPECT_EQ(reader.MpegVersion(), 1) << name.toStdString();
        EXPECT_EQ(reader.LayerVersion(), 3) << name.toStdString();
        EXPECT_EQ(reader.Hz(), probe.sampleRate) << name.toStdString();
        EXPECT_EQ(reader.Channels(), probe.channels) << name.toStdString();
        EXPECT_EQ(reader.Kbits() * 1000LL, probe.bitRate) << name.toStdString();
        EXPECT_EQ(reader.FileBytes(), QFileInfo(path).size());
        EXPECT_EQ(reader.Seconds(),
                  static_cast<int>(QFileInfo(path).size() * 8.0 / reader.Kbits() / 1000.0));
        EXPECT_TRUE(reader.HasTag());
        EXPECT_EQ(reader.Mode() == "Single Channel", c.channels == 1) << name.toStdString();
    }
}

TEST(ID3ReaderRealMedia, StereoVbrXingCount_EqualsFfprobesFrameCount) {
    if (!HaveFfmpeg()) {
        GTEST_SKIP() << "ffmpeg not installed";
    }
    QTemporaryDir dir;
    for (int quality : {0, 4, 9}) {
        Mp3Options options;
        options.vbrQuality = quality;
        options.seconds = 5;
        const QString path = MakeMp3(dir.path(), QStringLiteral("v%1.mp3").arg(quality), options);
        ASSERT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
        ASSERT_EQ(bytefiles::Read(path).indexOf("Xing"), 36) << "encoder layout changed";
        const Probe probe = ProbeAudio(path);
        ID3Reader reader;
        reader.setFileName(path);
        EXPECT_GT(reader.Frames(), 0);
        EXPECT_EQ(reader.Frames(), probe.packets) << "quality " << quality;
        EXPECT_EQ(reader.Hz(), probe.sampleRate);
    }
}

TEST(ID3ReaderRealMedia, MonoVbr_XingIsMissedAtTheStereoOffset) {
    if (!HaveFfmpeg()) {
        GTEST_SKIP() << "ffmpeg not installed";
    }
    QTemporaryDir dir;
    Mp3Options options;
    options.vbrQuality = 4;
    options.channels = 1;
    const QString path = MakeMp3(dir.path(), QStringLiteral("mono.mp3"), options);
    ASSERT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
    ASSERT_EQ(bytefiles::Read(path).indexOf("Xing"), 21);
    ID3Reader reader;
    reader.setFileName(path);
    EXPECT_EQ(reader.Frames(), 0);
    EXPECT_EQ(reader.Channels(), 1);
    EXPECT_GT(ProbeAudio(path).packets, 0);
}

TEST(ID3ReaderRealMedia, Mpeg1Samples_AgreeWithFfprobe) {
    ASSERT_TRUE(HaveSamples()) << SampleMediaFolder().toStdString();
    const QString folder = SampleMediaFolder();
    {
        const QString path = folder + "/mimetype-mp3.mp3";
        const Probe probe = ProbeAudio(path);
        ID3Reader reader;
        reader.setFileName(path);
        EXPECT_EQ(reader.Hz(), probe.sampleRate);
        EXPECT_EQ(reader.Channels(), probe.channels);
        EXPECT_EQ(reader.Kbits() * 1000LL, probe.bitRate);
        EXPECT_EQ(reader.Seconds(), 27);
        EXPECT_FALSE(reader.HasTag());
    }
    {
        // ID3v2 in front, a Xing frame, an ID3v1 tag behind.
        const QString path = folder + "/filetype-fixture.mp3";
        const Probe probe = ProbeAudio(path);
        ID3Reader reader;
        reader.setFileName(path);
        EXPECT_EQ(reader.Hz(), probe.sampleRate);
        EXPECT_EQ(reader.Channels(), probe.channels);
        EXPECT_EQ(reader.Frames(), probe.packets);
        EXPECT_TRUE(reader.HasTag());
    }
}

TEST(ID3ReaderRealMedia, Mpeg2And25Samples_AreNotSeenByDesign) {
    ASSERT_TRUE(HaveSamples()) << SampleMediaFolder().toStdString();
    // Their frames start 0xFF 0xF3 / 0xFF 0xE3 and are never found. The reader
    // takes the first 0xFF 0xFA / 0xFF 0xFB pair in the audio data instead, if
    // there is one, and never reports the real stream's sample rate.
    for (const char* name : {"mimetype-mp3.v2.notag.mp3", "mimetype-mp3.v2.5.notag.mp3",
                             "filetype-fixture-ffe3.mp3"}) {
        const QString path = SampleMediaFolder() + "/" + name;
        const Probe probe = ProbeAudio(path);
        ASSERT_GT(probe.sampleRate, 0) << name;
        ID3Reader reader;
        reader.setFileName(path);
        EXPECT_NE(reader.Hz(), probe.sampleRate) << name;
        const QByteArray head = bytefiles::Read(path).left(6001);
        qsizetype pair = -1;
        for (qsizetype i = 0; i + 1 < head.size() && pair < 0; ++i) {
            if (head.at(i) == '\xFF' && (head.at(i + 1) == '\xFA' || head.at(i + 1) == '\xFB')) {
                pair = i;
            }
        }
        if (pair >= 0) {
            EXPECT_EQ(reader.MpegVersion(), 1) << name;
            EXPECT_EQ(reader.LayerVersion(), 3) << name;
            EXPECT_FALSE(reader.InfoString().isEmpty()) << name;
        } else {
            EXPECT_EQ(reader.Hz(), 0) << name;
        }
    }
}
