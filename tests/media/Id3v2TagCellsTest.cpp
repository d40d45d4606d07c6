// The tag cells of an MP3 row for files that carry only an ID3v2 tag
// (versions 2.2, 2.3 and 2.4), built byte by byte.
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "ByteFiles.h"
#include "media/ItemCells.h"
#include "support/TagByteForms.h"
#include "support/TestEnvironment.h"

namespace {

// A text frame of the given tag version; encoding 0 is ISO-8859-1, 3 UTF-8.
QByteArray textFrame(int version, const char* id, const QByteArray& text, char encoding = 0) {
    const QByteArray data = encoding + text;
    if (version == 2) {
        const quint32 size = static_cast<quint32>(data.size());
        return QByteArray(id) + Be32Bytes(size).right(3) + data;
    }
    return QByteArray(id) + (version == 4 ? SyncSafeBytes(data.size()) : Be32Bytes(data.size())) +
           QByteArray(2, '\0') + data;
}

QByteArray tag(int version, const QByteArray& frames) {
    const QByteArray body = frames + QByteArray(32, '\0');
    return QByteArray("ID3") + char(version) + char(0) + char(0) +
           SyncSafeBytes(static_cast<quint32>(body.size())) + body;
}

// A few MPEG-1 Layer III frames of 128 kbit/s behind the tag.
QByteArray audio() {
    QByteArray frames;
    for (int i = 0; i < 8; ++i) {
        frames += bytefiles::FrameHeader() + bytefiles::Filler(413);
    }
    return frames;
}

class Id3v2TagCellsTest : public ::testing::Test {
protected:
    void SetUp() override { PrepareTestEnvironment(); }

    QStringList tagCells(const QString& name, const QByteArray& bytes) {
        const QString path = dir.filePath(name);
        EXPECT_TRUE(bytefiles::Write(path, bytes));
        const ItemCellTexts cells = ItemCells(path, QStringLiteral("MP3"));
        QStringList texts;
        for (int cell = 4; cell <= 8; ++cell) {
            texts << (cells[cell] ? *cells[cell] : QStringLiteral("<untouched>"));
        }
        return texts;
    }

    QTemporaryDir dir;
};

}  // namespace

TEST_F(Id3v2TagCellsTest, Id3v22Only_ShowsArtistTitleAlbumYearAndGenreName) {
    const QByteArray frames = textFrame(2, "TP1", "Band") + textFrame(2, "TT2", "Song") +
                              textFrame(2, "TAL", "Record") + textFrame(2, "TYE", "1987") +
                              textFrame(2, "TCO", "(13)");
    EXPECT_EQ(tagCells(QStringLiteral("v22.mp3"), tag(2, frames) + audio()),
              (QStringList{"Band", "Song", "Record", "1987", "Pop"}));
}

TEST_F(Id3v2TagCellsTest, Id3v23Only_ShowsItsValuesWithTheGenreNumberAsName) {
    const QByteArray frames = textFrame(3, "TPE1", "Ensemble \xD1") +
                              textFrame(3, "TIT2", "Pr\xE9lude") + textFrame(3, "TALB", "Suite") +
                              textFrame(3, "TYER", "2019") + textFrame(3, "TCON", "(17)");
    EXPECT_EQ(tagCells(QStringLiteral("v23.mp3"), tag(3, frames) + audio()),
              (QStringList{"Ensemble Ñ", "Prélude", "Suite", "2019", "Rock"}));
}

TEST_F(Id3v2TagCellsTest, Id3v24Only_ShowsUtf8TextAndTheYearOfAFullDate) {
    const QByteArray frames = textFrame(4, "TPE1", "Ансамбль", 3) +
                              textFrame(4, "TIT2", "Ωmega", 3) + textFrame(4, "TALB", "Σ", 3) +
                              textFrame(4, "TDRC", "2021-04-05") + textFrame(4, "TCON", "Jazz");
    EXPECT_EQ(tagCells(QStringLiteral("v24.mp3"), tag(4, frames) + audio()),
              (QStringList{"Ансамбль", "Ωmega", "Σ", "2021", "Jazz"}));
}

TEST_F(Id3v2TagCellsTest, BothTags_TheId3v1TagIsShownAsBefore) {
    const QByteArray frames = textFrame(3, "TPE1", "Modern") + textFrame(3, "TIT2", "Modern");
    // Fields filled up with blanks, which the reader removes.
    const auto field = [](const char* text) { return QByteArray(text).leftJustified(30, ' '); };
    const QByteArray v1 =
        bytefiles::Tag(field("Old"), field("Older"), field("Oldest"), "1970", field(""), 0);
    EXPECT_EQ(tagCells(QStringLiteral("both.mp3"), tag(3, frames) + audio() + v1),
              (QStringList{"Older", "Old", "Oldest", "1970", "Blues"}));
}

TEST_F(Id3v2TagCellsTest, Id3v2TagWithoutTheFiveValues_LeavesTheCellsAsTheyAre) {
    const QByteArray frames = textFrame(4, "TSSE", "Lavf59.27.100");
    EXPECT_EQ(tagCells(QStringLiteral("encoder only.mp3"), tag(4, frames) + audio()),
              QStringList(5, QStringLiteral("<untouched>")));
}

TEST_F(Id3v2TagCellsTest, Id3v2SizeBeyondTheFile_ReadsWhatIsThere) {
    QByteArray bytes = tag(3, textFrame(3, "TIT2", "Cut"));
    bytes[8] = 0x7F;  // states far more than the file holds
    EXPECT_EQ(tagCells(QStringLiteral("cut.mp3"), bytes).value(1), QStringLiteral("Cut"));
}
