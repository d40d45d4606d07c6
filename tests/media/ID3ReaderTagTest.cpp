#include <gtest/gtest.h>

#include <QFile>
#include <QHash>
#include <QProcess>
#include <QTemporaryDir>

#include "ByteFiles.h"
#include "media/ID3Reader.h"

using bytefiles::Filler;
using bytefiles::FrameHeader;
using bytefiles::Read;
using bytefiles::Tag;

namespace {

class ID3ReaderTag : public ::testing::Test {
protected:
    QString make(const QByteArray& bytes, const QString& name = QStringLiteral("t.mp3")) {
        const QString path = dir.filePath(name);
        EXPECT_TRUE(bytefiles::Write(path, bytes));
        return path;
    }
    QByteArray audio(int length = 4000) { return FrameHeader() + Filler(length - 4); }

    QTemporaryDir dir;
};

// The 148 names of the ID3v1 genres as a reader the project did not write
// (python3-mutagen) knows them, in order.
QStringList IndependentGenreNames() {
    QProcess python;
    python.start(QStringLiteral("/usr/bin/python3"),
                 {QStringLiteral("-c"), QStringLiteral("from mutagen.id3 import TCON\n"
                                                       "print('\\n'.join(TCON.GENRES[:148]))")});
    python.waitForFinished(30000);
    return QString::fromUtf8(python.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
}

}  // namespace

TEST_F(ID3ReaderTag, TaggedFile_FieldsAreReadWithTrailingBlanksRemoved) {
    const QByteArray tag = Tag("Title   ", "  Artist", "Album", "1999", "Comment", 17);
    ID3Reader reader;
    reader.setFileName(make(audio() + tag));
    ASSERT_TRUE(reader.HasTag());
    // Zero padding stays part of the text: only blanks are removed.
    EXPECT_EQ(reader.Title(), QString("Title   ") + QString(22, QChar(0)));
    EXPECT_EQ(reader.Artist(), QString("  Artist") + QString(22, QChar(0)));
    EXPECT_EQ(reader.Year(), "1999");
    EXPECT_EQ(reader.Genre(), 17);
    EXPECT_EQ(ID3Reader::GenreText(static_cast<std::int16_t>(reader.Genre())), "Rock");
}

TEST_F(ID3ReaderTag, BlankPaddedFields_ReadWithoutTheBlanks) {
    QByteArray tag = "TAG";
    tag += QByteArray("Song").append(QByteArray(26, ' '));
    tag += QByteArray("  Band  ").append(QByteArray(22, ' '));
    tag += QByteArray(30, ' ');
    tag += "2001";
    tag += QByteArray("Note").append(QByteArray(26, ' '));
    tag += '\x0D';
    ID3Reader reader;
    reader.setFileName(make(audio() + tag));
    EXPECT_EQ(reader.Title(), "Song");
    EXPECT_EQ(reader.Artist(), "  Band");
    EXPECT_EQ(reader.Album(), "");
    EXPECT_EQ(reader.Year(), "2001");
    EXPECT_EQ(reader.Comments(), "Note");
    EXPECT_EQ(reader.Genre(), 13);
}

TEST_F(ID3ReaderTag, SmallLetterMarker_CountsAsTag) {
    ID3Reader reader;
    reader.setFileName(make(audio() + Tag("lower", "b", "c", "2000", "d", 5, "tag")));
    EXPECT_TRUE(reader.HasTag());
    EXPECT_TRUE(reader.Title().startsWith(QStringLiteral("lower")));
    EXPECT_EQ(reader.Genre(), 5);
    reader.setFileName(make(audio() + Tag("mixed", "b", "c", "2000", "d", 5, "Tag")));
    EXPECT_TRUE(reader.HasTag());
    reader.setFileName(make(audio() + Tag("no", "b", "c", "2000", "d", 5, "TAQ")));
    EXPECT_FALSE(reader.HasTag());
    EXPECT_EQ(reader.Title(), QString());
    EXPECT_EQ(reader.Genre(), 12);
}

TEST_F(ID3ReaderTag, FileWithoutTag_KeepsClearedFields) {
    ID3Reader reader;
    reader.setFileName(make(audio()));
    EXPECT_FALSE(reader.HasTag());
    EXPECT_EQ(reader.Title(), QString());
    EXPECT_EQ(reader.Comments(), QString());
    EXPECT_EQ(reader.Genre(), 12);
}

TEST_F(ID3ReaderTag, ReassigningFileName_ClearsTheFormerTag) {
    ID3Reader reader;
    reader.setFileName(make(audio() + Tag("A", "B", "C", "1", "D", 3), QStringLiteral("a.mp3")));
    ASSERT_TRUE(reader.Title().startsWith('A'));
    reader.setFileName(make(audio(), QStringLiteral("b.mp3")));
    EXPECT_EQ(reader.Title(), QString());
    EXPECT_EQ(reader.Genre(), 12);
}

TEST_F(ID3ReaderTag, Genre147IsSynthpop_148AndOthersAreUnknown) {
    ID3Reader reader;
    reader.setFileName(make(audio() + Tag("a", "b", "c", "d", "e", 147)));
    EXPECT_EQ(ID3Reader::GenreText(static_cast<std::int16_t>(reader.Genre())), "Synthpop");
    EXPECT_EQ(ID3Reader::GenreText(148), "Unknown");
    EXPECT_EQ(ID3Reader::GenreText(255), "Unknown");
    EXPECT_EQ(ID3Reader::GenreText(-1), "Unknown");
    EXPECT_EQ(ID3Reader::GenreText(0), "Blues");
}

TEST_F(ID3ReaderTag, GenreTable_HasThe148NamesInOrder) {
    const QStringList names = IndependentGenreNames();
    ASSERT_EQ(names.size(), 148) << "python3-mutagen is needed";
    // Five names keep the spelling of the first genre lists, where later
    // lists changed it.
    const QHash<int, QString> firstSpelling = {{59, QStringLiteral("Gangsta")},
                                               {67, QStringLiteral("Psychadelic")},
                                               {81, QStringLiteral("Folk/Rock")},
                                               {85, QStringLiteral("Bebob")},
                                               {133, QStringLiteral("Negerpunk")}};
    for (int i = 0; i < 148; ++i) {
        EXPECT_EQ(ID3Reader::GenreText(static_cast<std::int16_t>(i)),
                  firstSpelling.value(i, names.at(i)))
            << i;
    }
}

TEST_F(ID3ReaderTag, TitleOf31Characters_FileGetsTheFirst30) {
    ID3Reader reader;
    const QString path = make(audio() + Tag("old", "b", "c", "d", "e", 1));
    reader.setFileName(path);
    reader.setTitle(QStringLiteral("1234567890123456789012345678901"));
    EXPECT_EQ(reader.Title(), "123456789012345678901234567890");
    ASSERT_TRUE(reader.WriteTag());
    const QByteArray bytes = Read(path);
    EXPECT_EQ(bytes.mid(bytes.size() - 125, 30), "123456789012345678901234567890");
    EXPECT_EQ(bytes.mid(bytes.size() - 95, 30), QByteArray("b").append(QByteArray(29, '\0')));
}

TEST_F(ID3ReaderTag, Year12345_FileGets1234) {
    ID3Reader reader;
    const QString path = make(audio() + Tag("a", "b", "c", "d", "e", 1));
    reader.setFileName(path);
    reader.setYear(QStringLiteral("12345"));
    EXPECT_EQ(reader.Year(), "1234");
    ASSERT_TRUE(reader.WriteTag());
    const QByteArray bytes = Read(path);
    EXPECT_EQ(bytes.mid(bytes.size() - 35, 4), "1234");
}

TEST_F(ID3ReaderTag, ShortAssignments_ArePaddedWithBlanks_EmptyYearIsFourBlanks) {
    ID3Reader reader;
    const QString path = make(audio() + Tag("a", "b", "c", "d", "e", 1));
    reader.setFileName(path);
    reader.setTitle(QStringLiteral("Hi"));
    reader.setArtist(QString());
    reader.setAlbum(QStringLiteral("Al"));
    reader.setYear(QString());
    reader.setComments(QStringLiteral("C"));
    reader.setGenre(20);
    ASSERT_TRUE(reader.WriteTag());
    QByteArray expected = "TAG";
    expected += QByteArray("Hi").append(QByteArray(28, ' '));
    expected += QByteArray(30, ' ');
    expected += QByteArray("Al").append(QByteArray(28, ' '));
    expected += "    ";
    expected += QByteArray("C").append(QByteArray(29, ' '));
    expected += '\x14';
    EXPECT_EQ(Read(path).right(128), expected);
}

TEST_F(ID3ReaderTag, TagText_IsIso88591BothWays) {
    ID3Reader reader;
    const QString path = make(audio() + Tag("Caf\xE9", "Bj\xF6rk", "c", "d", "e", 1));
    reader.setFileName(path);
    EXPECT_TRUE(reader.Title().startsWith(QString::fromUtf8("Café")));
    EXPECT_TRUE(reader.Artist().startsWith(QString::fromUtf8("Björk")));
    reader.setTitle(QString::fromUtf8("Señor"));
    reader.setArtist(QString::fromUtf8("Snow ☃"));  // no Latin-1 form: a question mark
    ASSERT_TRUE(reader.WriteTag());
    const QByteArray bytes = Read(path);
    EXPECT_EQ(bytes.mid(bytes.size() - 125, 5), QByteArray("Se\xF1or"));
    EXPECT_EQ(bytes.mid(bytes.size() - 95, 6), QByteArray("Snow ?"));
}

TEST_F(ID3ReaderTag, GenreAssignment_OutsideByteRangeLeavesItAsItWas) {
    ID3Reader reader;
    reader.setGenre(200);
    EXPECT_EQ(reader.Genre(), 200);
    reader.setGenre(256);
    EXPECT_EQ(reader.Genre(), 200);
    reader.setGenre(-1);
    EXPECT_EQ(reader.Genre(), 200);
    reader.setGenre(255);
    EXPECT_EQ(reader.Genre(), 255);
    reader.setGenre(0);
    EXPECT_EQ(reader.Genre(), 0);
}

TEST_F(ID3ReaderTag, ClearTag_ZeroesMarkerThroughComment_KeepsLengthAndGenreByte) {
    ID3Reader reader;
    const QByteArray original = audio() + Tag("a", "b", "c", "d", "e", 99);
    const QString path = make(original);
    reader.setFileName(path);
    ASSERT_TRUE(reader.ClearTag());
    EXPECT_FALSE(reader.HasTag());
    const QByteArray bytes = Read(path);
    ASSERT_EQ(bytes.size(), original.size());
    EXPECT_EQ(bytes.right(128).left(127), QByteArray(127, '\0'));
    EXPECT_EQ(bytes.right(1), QByteArray(1, '\x63'));
    EXPECT_EQ(bytes.left(original.size() - 128), original.left(original.size() - 128));
    // The object keeps what it read until FileName is assigned again.
    EXPECT_TRUE(reader.Title().startsWith('a'));
}

TEST_F(ID3ReaderTag, ClearTagOnFileWithoutTag_Zeroes127BytesOfAudio) {
    ID3Reader reader;
    const QByteArray original = audio(1000);
    const QString path = make(original);
    reader.setFileName(path);
    ASSERT_TRUE(reader.ClearTag());
    const QByteArray bytes = Read(path);
    ASSERT_EQ(bytes.size(), 1000);
    EXPECT_EQ(bytes.mid(1000 - 128, 127), QByteArray(127, '\0'));
    EXPECT_EQ(bytes.right(1), original.right(1));
    EXPECT_EQ(bytes.left(872), original.left(872));
}

TEST_F(ID3ReaderTag, WriteTagOnFileWithoutTag_OverwritesLast128BytesAndKeepsLength) {
    ID3Reader reader;
    const QByteArray original = audio(1000);
    const QString path = make(original);
    reader.setFileName(path);
    ASSERT_FALSE(reader.HasTag());
    reader.setTitle(QStringLiteral("New"));
    ASSERT_TRUE(reader.WriteTag());
    const QByteArray bytes = Read(path);
    EXPECT_EQ(bytes.size(), 1000);
    EXPECT_TRUE(reader.HasTag());
    EXPECT_EQ(bytes.mid(872, 6), "TAGNew");
    EXPECT_EQ(bytes.right(1), QByteArray(1, '\x0C'));  // the cleared genre, Other
    EXPECT_EQ(bytes.left(872), original.left(872));
}

TEST_F(ID3ReaderTag, ClearThenWrite_LandsOnTheSame128Bytes) {
    ID3Reader reader;
    const QByteArray original = audio() + Tag("a", "b", "c", "d", "e", 9);
    const QString path = make(original);
    reader.setFileName(path);
    ASSERT_TRUE(reader.ClearTag());
    ASSERT_TRUE(reader.WriteTag());
    const QByteArray bytes = Read(path);
    EXPECT_EQ(bytes.size(), original.size());
    ID3Reader again;
    again.setFileName(path);
    EXPECT_TRUE(again.HasTag());
    EXPECT_TRUE(again.Title().startsWith('a'));
    EXPECT_EQ(again.Genre(), 9);
}

TEST_F(ID3ReaderTag, FileUnder128Bytes_TagOperationsFailAndChangeNothing) {
    ID3Reader reader;
    const QByteArray small = QByteArray("TAG") + Filler(100);
    const QString path = make(small, QStringLiteral("small.mp3"));
    reader.setFileName(path);
    EXPECT_FALSE(reader.HasTag());
    EXPECT_FALSE(reader.WriteTag());
    EXPECT_FALSE(reader.ClearTag());
    EXPECT_EQ(Read(path), small);
    // A failed operation leaves nothing behind: the next file works.
    const QString other =
        make(audio() + Tag("x", "y", "z", "2000", "w", 2), QStringLiteral("o.mp3"));
    ID3Reader next;
    next.setFileName(other);
    EXPECT_TRUE(next.HasTag());
    EXPECT_TRUE(next.WriteTag());
    EXPECT_TRUE(next.ClearTag());
    reader.setFileName(other);
    EXPECT_FALSE(reader.HasTag());
}

TEST_F(ID3ReaderTag, FileOfExactly128Bytes_IsAllTag) {
    ID3Reader reader;
    const QString path = make(Tag("only", "b", "c", "d", "e", 4));
    reader.setFileName(path);
    EXPECT_TRUE(reader.HasTag());
    EXPECT_TRUE(reader.Title().startsWith(QStringLiteral("only")));
    EXPECT_TRUE(reader.WriteTag());
    EXPECT_EQ(Read(path).size(), 128);
}

TEST_F(ID3ReaderTag, ReadOnlyFile_WriteAndClearFail_AndLaterOperationsWork) {
    ID3Reader reader;
    const QByteArray original = audio() + Tag("a", "b", "c", "d", "e", 9);
    const QString path = make(original, QStringLiteral("ro.mp3"));
    QFile::setPermissions(path, QFile::ReadOwner);
    reader.setFileName(path);
    EXPECT_TRUE(reader.HasTag());
    reader.setTitle(QStringLiteral("changed"));
    const bool canStillWrite = QFile(path).open(QIODevice::ReadWrite);  // true when run as root
    if (!canStillWrite) {
        EXPECT_FALSE(reader.WriteTag());
        EXPECT_FALSE(reader.ClearTag());
        EXPECT_EQ(Read(path), original);
    }
    EXPECT_TRUE(reader.HasTag());
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
    EXPECT_TRUE(reader.WriteTag());
    EXPECT_TRUE(Read(path).right(128).startsWith("TAGchanged"));
}

TEST_F(ID3ReaderTag, MissingFile_TagOperationsAnswerFalse) {
    ID3Reader reader;
    reader.setFileName(dir.filePath(QStringLiteral("nothere.mp3")));
    EXPECT_FALSE(reader.HasTag());
    EXPECT_FALSE(reader.WriteTag());
    EXPECT_FALSE(reader.ClearTag());
    EXPECT_FALSE(QFile::exists(dir.filePath(QStringLiteral("nothere.mp3"))));
}

TEST_F(ID3ReaderTag, FileDeletedAfterAnalysis_TagOperationsAnswerFalse) {
    ID3Reader reader;
    const QString path = make(audio() + Tag("a", "b", "c", "d", "e", 9));
    reader.setFileName(path);
    ASSERT_TRUE(QFile::remove(path));
    EXPECT_FALSE(reader.HasTag());
    EXPECT_FALSE(reader.WriteTag());
    EXPECT_FALSE(reader.ClearTag());
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(ID3ReaderTag, FillComboGenre_Lists148AndSelectsTheGivenGenre) {
    GenreStringList combo;
    combo.items = {QStringLiteral("stale")};
    std::int16_t which = 17;
    ID3Reader::FillComboGenre(combo, which);
    ASSERT_EQ(combo.items.size(), 148);
    EXPECT_EQ(combo.items.first(), "Blues");
    EXPECT_EQ(combo.items.last(), "Synthpop");
    EXPECT_EQ(combo.currentIndex, 17);
    EXPECT_EQ(which, 17);
    for (int i = 0; i < 148; ++i) {
        EXPECT_EQ(combo.items[i], ID3Reader::GenreText(static_cast<std::int16_t>(i)));
    }
}

TEST_F(ID3ReaderTag, FillComboGenre_With255_SelectsBluesAndResetsCallersValue) {
    GenreStringList combo;
    std::int16_t which = 255;
    ID3Reader reader;
    reader.FillComboGenre(combo, which);
    EXPECT_EQ(combo.currentIndex, 0);
    EXPECT_EQ(which, 0);
    which = -3;
    ID3Reader::FillComboGenre(combo, which);
    EXPECT_EQ(which, 0);
    EXPECT_EQ(combo.items.size(), 148);
    which = 147;
    ID3Reader::FillComboGenre(combo, which);
    EXPECT_EQ(which, 147);
    EXPECT_EQ(combo.currentIndex, 147);
    which = 148;
    ID3Reader::FillComboGenre(combo, which);
    EXPECT_EQ(which, 0);
}

TEST_F(ID3ReaderTag, FillComboGenre_WithoutWhich_SelectsPositionZero) {
    GenreStringList combo;
    ID3Reader::FillComboGenre(combo);
    EXPECT_EQ(combo.currentIndex, 0);
    EXPECT_EQ(combo.items.size(), 148);
}

namespace {
struct FakeCombo {
    QStringList entries;
    int current = -1;
    int clears = 0;
    void clear() {
        entries.clear();
        ++clears;
    }
    void addItem(const QString& text) { entries.append(text); }
    void setCurrentIndex(int index) { current = index; }
};
}  // namespace

TEST_F(ID3ReaderTag, FillComboGenre_ThroughTheAdapter_ReachesAnyComboLikeControl) {
    FakeCombo control;
    control.entries = {QStringLiteral("x")};
    GenreComboAdapter<FakeCombo> adapter(control);
    std::int16_t which = 80;
    ID3Reader::FillComboGenre(adapter, which);
    EXPECT_EQ(control.clears, 1);
    EXPECT_EQ(control.entries.size(), 148);
    EXPECT_EQ(control.entries[80], "Folk");
    EXPECT_EQ(control.current, 80);
}
