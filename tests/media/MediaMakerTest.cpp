#include <gtest/gtest.h>

#include <QFileInfo>
#include <QTemporaryDir>

#include "support/MediaMaker.h"

TEST(MediaMaker, Mp3Cbr_HasTheAskedStreamValues) {
    if (!HaveFfmpeg()) {
        GTEST_SKIP() << "ffmpeg not installed";
    }
    QTemporaryDir dir;
    Mp3Options options;
    options.bitrateKbps = 96;
    options.sampleRate = 48000;
    options.channels = 1;
    const QString path = MakeMp3(dir.path(), QStringLiteral("a.mp3"), options);
    ASSERT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
    const QString probe = RunFfprobe({QStringLiteral("-show_entries"),
                                      QStringLiteral("stream=sample_rate,channels,bit_rate"),
                                      QStringLiteral("-of"), QStringLiteral("default=nw=1"), path});
    EXPECT_TRUE(probe.contains(QStringLiteral("sample_rate=48000"))) << probe.toStdString();
    EXPECT_TRUE(probe.contains(QStringLiteral("channels=1"))) << probe.toStdString();
    EXPECT_TRUE(probe.contains(QStringLiteral("bit_rate=96000"))) << probe.toStdString();
}

TEST(MediaMaker, Mp3WithId3v1_EndsWithTag) {
    if (!HaveFfmpeg()) {
        GTEST_SKIP() << "ffmpeg not installed";
    }
    QTemporaryDir dir;
    Mp3Options options;
    options.id3v1 = true;
    options.metadata = {{QStringLiteral("title"), QStringLiteral("Song")}};
    const QString path = MakeMp3(dir.path(), QStringLiteral("t.mp3"), options);
    ASSERT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    file.seek(file.size() - 128);
    const QByteArray tag = file.read(128);
    EXPECT_EQ(tag.left(3), QByteArray("TAG"));
    EXPECT_EQ(tag.mid(3, 4), QByteArray("Song"));
}

TEST(MediaMaker, Mpeg2_HasTheAskedPictureSize) {
    if (!HaveFfmpeg()) {
        GTEST_SKIP() << "ffmpeg not installed";
    }
    QTemporaryDir dir;
    MpegOptions options;
    options.mpegVersion = 2;
    options.width = 720;
    options.height = 576;
    const QString path = MakeMpeg(dir.path(), QStringLiteral("v.mpg"), options);
    ASSERT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
    const QString probe = RunFfprobe({QStringLiteral("-show_entries"),
                                      QStringLiteral("stream=codec_name,width,height"),
                                      QStringLiteral("-of"), QStringLiteral("default=nw=1"), path});
    EXPECT_TRUE(probe.contains(QStringLiteral("codec_name=mpeg2video"))) << probe.toStdString();
    EXPECT_TRUE(probe.contains(QStringLiteral("width=720")));
    EXPECT_TRUE(probe.contains(QStringLiteral("height=576")));
    EXPECT_TRUE(probe.contains(QStringLiteral("codec_name=mp2")));
}

TEST(MediaMaker, Mpeg1_IsMpeg1Video) {
    if (!HaveFfmpeg()) {
        GTEST_SKIP() << "ffmpeg not installed";
    }
    QTemporaryDir dir;
    const QString path = MakeMpeg(dir.path(), QStringLiteral("v1.mpg"));
    ASSERT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
    const QString probe =
        RunFfprobe({QStringLiteral("-show_entries"), QStringLiteral("stream=codec_name"),
                    QStringLiteral("-of"), QStringLiteral("default=nw=1"), path});
    EXPECT_TRUE(probe.contains(QStringLiteral("codec_name=mpeg1video"))) << probe.toStdString();
}
