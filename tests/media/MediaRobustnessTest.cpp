#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>

#include "ByteFiles.h"
#include "list/FillListItem.h"
#include "list/MainModel.h"
#include "media/ID3Reader.h"
#include "support/MediaMaker.h"
#include "support/MemoryClipboard.h"
#include "support/ScriptedQuestions.h"
#include "support/TestEnvironment.h"

namespace {

constexpr int kInputs = 10000;
constexpr int kBatch = 500;

// Real files to cut and damage: generated media when ffmpeg is there, the
// sample media, and a byte-built frame with a Xing header and a tag.
QList<QByteArray> Seeds(const QString& folder) {
    QList<QByteArray> seeds;
    seeds.append(bytefiles::FrameHeader() + bytefiles::Filler(32) + "Xing" +
                 QByteArray("\x00\x00\x00\x0F\x00\x00\x04\xD2", 8) + bytefiles::Filler(3000) +
                 bytefiles::Tag("Title", "Artist", "Album", "2001", "Comment", 17));
    if (HaveFfmpeg()) {
        Mp3Options tagged;
        tagged.seconds = 1;
        tagged.id3v1 = true;
        tagged.metadata = {{"title", "Fuzz"}};
        Mp3Options vbr;
        vbr.seconds = 1;
        vbr.vbrQuality = 2;
        MpegOptions mpeg1;
        mpeg1.seconds = 0.5;
        mpeg1.width = 160;
        mpeg1.height = 120;
        MpegOptions mpeg2 = mpeg1;
        mpeg2.mpegVersion = 2;
        for (const QString& path :
             {MakeMp3(folder, "a.mp3", tagged), MakeMp3(folder, "b.mp3", vbr),
              MakeMpeg(folder, "c.mpg", mpeg1), MakeMpeg(folder, "d.mpg", mpeg2)}) {
            if (!path.isEmpty()) {
                seeds.append(bytefiles::Read(path));
            }
        }
    }
    const QDir samples(SampleMediaFolder());
    for (const QString& name : samples.entryList({"*.mp3", "*.mpg", "*.mpeg"}, QDir::Files)) {
        seeds.append(bytefiles::Read(samples.filePath(name)).left(64 * 1024));
    }
    return seeds;
}

QByteArray RandomBytes(QRandomGenerator& random, qsizetype length) {
    QByteArray bytes(length, '\0');
    for (qsizetype i = 0; i < length; ++i) {
        bytes[i] = static_cast<char>(random.bounded(256));
    }
    return bytes;
}

// One input of the given number: random bytes, a cut seed, a damaged seed, a
// planted header with Xing and tag parts, or a length around the tag size.
QByteArray MakeInput(int number, QRandomGenerator& random, const QList<QByteArray>& seeds) {
    const QByteArray& seed = seeds.at(random.bounded(static_cast<int>(seeds.size())));
    switch (number % 5) {
        case 0:
            return RandomBytes(random, random.bounded(9000));
        case 1:
            return seed.left(random.bounded(static_cast<int>(seed.size()) + 1));
        case 2: {
            QByteArray bytes = seed.left(16 * 1024);
            const int flips = 1 + random.bounded(64);
            for (int i = 0; i < flips && !bytes.isEmpty(); ++i) {
                bytes[random.bounded(static_cast<int>(bytes.size()))] =
                    static_cast<char>(random.bounded(256));
            }
            return bytes;
        }
        case 3: {
            QByteArray bytes = RandomBytes(random, random.bounded(6100));
            QByteArray header("\xFF\xFB", 2);
            header[1] = static_cast<char>(random.bounded(2) ? 0xFB : 0xFA);
            header += RandomBytes(random, 2);
            if (random.bounded(2)) {
                header += RandomBytes(random, 32) + "Xing" + RandomBytes(random, 8);
            }
            bytes.insert(random.bounded(static_cast<int>(bytes.size()) + 1), header);
            if (random.bounded(2)) {
                const char* markers[] = {"TAG", "tag", "Tag", "TAX"};
                bytes += markers[random.bounded(4)] + RandomBytes(random, 125);
            }
            return bytes;
        }
        default: {
            QByteArray bytes = RandomBytes(random, 120 + random.bounded(16));
            if (bytes.size() >= 128 && random.bounded(2)) {
                bytes.replace(bytes.size() - 128, 3, "TAG");
            }
            return bytes;
        }
    }
}

void CheckReader(const QString& path, qint64 size, bool marker) {
    ID3Reader reader;
    reader.setFileName(path);
    ASSERT_EQ(reader.FileName(), path);
    EXPECT_EQ(reader.FileBytes(), size);
    const QSet<int> versions{0, 1, 2, 25};
    EXPECT_TRUE(versions.contains(reader.MpegVersion()));
    EXPECT_GE(reader.LayerVersion(), 0);
    EXPECT_LE(reader.LayerVersion(), 3);
    const QSet<int> rates{0, 32000, 44100, 48000};
    EXPECT_TRUE(rates.contains(reader.Hz()));
    EXPECT_GE(reader.Kbits(), 0);
    EXPECT_LE(reader.Kbits(), 448);
    EXPECT_GE(reader.Seconds(), 0);
    EXPECT_GE(reader.Frames(), 0);
    EXPECT_TRUE(reader.Channels() == 1 || reader.Channels() == 2);
    const QString info = reader.InfoString();
    EXPECT_TRUE(info.isEmpty() || info.split(QStringLiteral("\r\n")).size() == 10);
    const bool tagged = reader.HasTag();
    EXPECT_EQ(tagged, marker);
    EXPECT_LE(reader.Title().size(), 30);
    EXPECT_LE(reader.Year().size(), 4);
    EXPECT_FALSE(ID3Reader::GenreText(static_cast<std::int16_t>(reader.Genre())).isEmpty());
    GenreStringList combo;
    std::int16_t which = static_cast<std::int16_t>(reader.Genre());
    ID3Reader::FillComboGenre(combo, which);
    EXPECT_EQ(combo.items.size(), 148);
    // Tag writes keep the length whatever the file holds.
    if (size % 3 == 0) {
        reader.setTitle(QStringLiteral("written"));
        EXPECT_EQ(reader.WriteTag(), size >= 128);
        EXPECT_EQ(reader.ClearTag(), size >= 128);
        EXPECT_EQ(QFileInfo(path).size(), size);
    }
}

}  // namespace

TEST(MediaRobustness, TenThousandRandomAndDamagedFiles_ReaderAndFillSurvive) {
    QTemporaryDir seedDir;
    const QList<QByteArray> seeds = Seeds(seedDir.path());
    ASSERT_FALSE(seeds.isEmpty());
    QRandomGenerator random(20240101u);

    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainModel mp3{questions, clipboard};
    MainModel mpeg{questions, clipboard};
    for (const char* header : {"Filename", "Filesize", "Date Modified", "Filepath", "Artist",
                               "Title", "Album", "Year", "Genre", "Duration", "Bitrate", "Hertz"}) {
        mp3.items.addColumn(header);
    }
    for (const char* header : {"Filename", "Filesize", "Date Modified", "Filepath", "Video Codec",
                               "Video Size", "Duration"}) {
        mpeg.items.addColumn(header);
    }
    mp3.state.setListType("MP3");
    mpeg.state.setListType("MPEG");
    const QRegularExpression size(QStringLiteral("^-?\\d+x-?\\d+$"));

    int done = 0;
    for (int start = 0; start < kInputs; start += kBatch) {
        // Thousands of small files are made and removed: a memory file system
        // keeps that cheap where there is one.
        const bool memory = QFileInfo(QStringLiteral("/dev/shm")).isWritable();
        QTemporaryDir batch = memory
                                  ? QTemporaryDir(QStringLiteral("/dev/shm/velmora-media-XXXXXX"))
                                  : QTemporaryDir();
        ASSERT_TRUE(batch.isValid());
        QStringList paths;
        QList<qint64> sizes;
        QList<bool> markers;
        for (int i = start; i < start + kBatch; ++i) {
            const QByteArray bytes = MakeInput(i, random, seeds);
            const QString path = batch.filePath(QStringLiteral("in%1.%2").arg(i).arg(
                i % 2 ? QStringLiteral("mp3") : QStringLiteral("mpg")));
            ASSERT_TRUE(bytefiles::Write(path, bytes));
            paths.append(path);
            sizes.append(bytes.size());
            markers.append(bytes.size() >= 128 &&
                           bytes.mid(bytes.size() - 128, 3).toUpper() == QByteArrayLiteral("TAG"));
        }
        for (int k = 0; k < paths.size(); ++k) {
            const QString& path = paths[k];
            CheckReader(path, sizes[k], markers[k]);
            MainModel& model = k % 2 ? mp3 : mpeg;
            model.items.clearRows();
            const int row = model.items.addRow();
            model.items.setCell(row, 3, path);
            FillListItem(model, 0);
            EXPECT_EQ(model.items.cell(row, 0), QFileInfo(path).fileName());
            EXPECT_TRUE(model.items.cell(row, 1).endsWith(QStringLiteral(" KB")));
            if (&model == &mp3) {
                EXPECT_TRUE(model.items.cell(row, 10).endsWith(QStringLiteral(" kbps")));
            } else {
                EXPECT_TRUE(size.match(model.items.cell(row, 5)).hasMatch())
                    << model.items.cell(row, 5).toStdString();
                EXPECT_TRUE(model.items.cell(row, 6).endsWith(QStringLiteral(" seconds")));
            }
            ++done;
            if (::testing::Test::HasFailure()) {
                FAIL() << "first failing input: " << path.toStdString();
            }
        }
    }
    EXPECT_EQ(done, kInputs);
}
