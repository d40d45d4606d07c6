// MP3 files too short to hold a frame or a tag, paths near the system's
// limit and names with every character a shell treats specially, through the
// reader and the filling of a list row.
#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include "app/AppPaths.h"
#include "list/FillListItem.h"
#include "list/ListFunctions.h"
#include "list/MainModel.h"
#include "media/ByteFiles.h"
#include "media/ID3Reader.h"
#include "support/MediaMaker.h"
#include "support/MemoryClipboard.h"
#include "support/ScriptedQuestions.h"

namespace {

class BadInputMedia : public ::testing::Test {
protected:
    void SetUp() override {
        SetAppDataFolder(appData.path());
        NewItemList(model, QStringLiteral("MP3"));
    }
    void TearDown() override { SetAppDataFolder(QString()); }

    QString file(const QString& name, const QByteArray& bytes) {
        const QString path = folder.filePath(name);
        EXPECT_TRUE(bytefiles::Write(path, bytes));
        return path;
    }
    // A row for the path, filled from the file as adding does it.
    int fill(const QString& path) {
        const int row = model.items.addRow(QFileInfo(path).fileName());
        model.items.setCell(row, 3, path);
        FillListItem(model, 0);
        return row;
    }

    QTemporaryDir folder;
    QTemporaryDir appData;
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainModel model{questions, clipboard};
};

QByteArray tagOnly() {
    QByteArray tag = "TAG";
    tag += QByteArray("Title").leftJustified(30, ' ');
    tag += QByteArray("Artist").leftJustified(30, ' ');
    tag += QByteArray("Album").leftJustified(30, ' ');
    tag += "1999";
    tag += QByteArray("Comment").leftJustified(30, ' ');
    tag += char(17);
    return tag;
}

}  // namespace

TEST_F(BadInputMedia, EmptyFile_ValuesOfNoSyncAndNoTag) {
    const QString path = file(QStringLiteral("empty.mp3"), QByteArray());
    ID3Reader reader;
    reader.setFileName(path);
    EXPECT_EQ(reader.FileBytes(), 0);
    EXPECT_EQ(reader.Hz(), 0);
    EXPECT_EQ(reader.MpegVersion(), 25);
    EXPECT_EQ(reader.LayerVersion(), 0);
    EXPECT_EQ(reader.Mode(), QStringLiteral("Stereo"));
    EXPECT_EQ(reader.Channels(), 2);
    EXPECT_EQ(reader.Emphasis(), QStringLiteral("None"));
    EXPECT_EQ(reader.InfoString(), QString());
    EXPECT_FALSE(reader.HasTag());
    EXPECT_FALSE(reader.WriteTag());
    EXPECT_FALSE(reader.ClearTag());
    EXPECT_EQ(bytefiles::Read(path), QByteArray());
}

TEST_F(BadInputMedia, OneAnd127Bytes_TagOperationsFailAndLeaveTheFileAsItWas) {
    for (const int size : {1, 127}) {
        const QByteArray bytes(size, '\xFF');
        const QString path = file(QStringLiteral("short%1.mp3").arg(size), bytes);
        ID3Reader reader;
        reader.setFileName(path);
        EXPECT_EQ(reader.FileBytes(), size);
        EXPECT_FALSE(reader.HasTag()) << size;
        reader.setTitle(QStringLiteral("New"));
        EXPECT_FALSE(reader.WriteTag()) << size;
        EXPECT_FALSE(reader.ClearTag()) << size;
        EXPECT_EQ(bytefiles::Read(path), bytes) << size;
    }
    // A failed tag operation affects only itself: the next file's tag works.
    const QString good = file(QStringLiteral("good.mp3"), QByteArray(1000, '\0') + tagOnly());
    ID3Reader reader;
    reader.setFileName(good);
    EXPECT_TRUE(reader.HasTag());
    EXPECT_EQ(reader.Title(), QStringLiteral("Title"));
    reader.setTitle(QStringLiteral("Changed"));
    EXPECT_TRUE(reader.WriteTag());
    ID3Reader again;
    again.setFileName(good);
    EXPECT_EQ(again.Title(), QStringLiteral("Changed"));
}

TEST_F(BadInputMedia, Exactly128Bytes_TagIsWrittenOverTheWholeFile) {
    const QString path = file(QStringLiteral("128.mp3"), QByteArray(128, '\xFF'));
    ID3Reader reader;
    reader.setFileName(path);
    EXPECT_FALSE(reader.HasTag());
    reader.setTitle(QStringLiteral("Only Tag"));
    EXPECT_TRUE(reader.WriteTag());
    EXPECT_EQ(QFileInfo(path).size(), 128);
    ID3Reader again;
    again.setFileName(path);
    EXPECT_TRUE(again.HasTag());
    EXPECT_EQ(again.Title(), QStringLiteral("Only Tag"));
    EXPECT_TRUE(again.ClearTag());
    EXPECT_FALSE(again.HasTag());
    EXPECT_EQ(QFileInfo(path).size(), 128);
}

TEST_F(BadInputMedia, TinyFilesInAnMp3List_RowsStayWithOneKB) {
    for (const int size : {0, 1, 127, 128}) {
        const QByteArray bytes = size == 128 ? tagOnly() : QByteArray(size, '\xFB');
        const int row = fill(file(QStringLiteral("tiny%1.mp3").arg(size), bytes));
        EXPECT_EQ(model.items.cell(row, 1), QStringLiteral("1 KB")) << size;
    }
    EXPECT_EQ(model.items.count(), 4);
    EXPECT_TRUE(questions.asked.isEmpty());
    // The tag of the file that is nothing but a tag shows in its row.
    EXPECT_TRUE(model.items.cells(4).contains(QStringLiteral("Artist")));
}

TEST_F(BadInputMedia, PathOf4000Characters_IsReadLikeAnyOther) {
    Mp3Options options;
    options.seconds = 1;
    options.id3v1 = true;
    options.metadata = {{QStringLiteral("title"), QStringLiteral("Deep")}};
    const QString made = MakeMp3(folder.path(), QStringLiteral("made.mp3"), options);
    ASSERT_FALSE(made.isEmpty()) << LastMediaMakerError().toStdString();
    QString deep = folder.path();
    while (deep.size() < 4000 - 220) {
        deep += u'/' + QString(200, u'd');
    }
    ASSERT_TRUE(QDir().mkpath(deep));
    const QString path = deep + u'/' + QString(4000 - deep.size() - 5, u'f') + ".mp3";
    ASSERT_EQ(path.size(), 4000);
    ASSERT_TRUE(QFile::copy(made, path));

    ID3Reader reference;
    reference.setFileName(made);
    ID3Reader reader;
    reader.setFileName(path);
    EXPECT_EQ(reader.FileName(), path);
    EXPECT_EQ(reader.InfoString(), reference.InfoString());
    EXPECT_TRUE(reader.Title().startsWith(QStringLiteral("Deep")));
    EXPECT_EQ(reader.Title(), reference.Title());
    const int row = fill(path);
    const int referenceRow = fill(made);
    for (int cell = 1; cell < model.items.headerCount(); ++cell) {
        if (cell == 3 || cell == 2) {
            continue;  // the path and the date of the copy
        }
        EXPECT_EQ(model.items.cell(row, cell), model.items.cell(referenceRow, cell)) << cell;
    }
}

TEST_F(BadInputMedia, PathBeyondTheSystemLimit_ClearedValuesAndARow) {
    const QString path = folder.path() + u'/' + QString(5000, u'x') + ".mp3";
    ID3Reader reader;
    reader.setFileName(path);
    EXPECT_EQ(reader.Hz(), 0);
    EXPECT_FALSE(reader.HasTag());
    EXPECT_FALSE(reader.WriteTag());
    const int row = fill(path);
    EXPECT_EQ(model.items.cell(row, 1), QStringLiteral("1 KB"));
}

TEST_F(BadInputMedia, ScriptRelevantNames_FillTheirRowsLikeAPlainName) {
    Mp3Options options;
    options.seconds = 1;
    const QString plain = MakeMp3(folder.path(), QStringLiteral("plain.mp3"), options);
    ASSERT_FALSE(plain.isEmpty()) << LastMediaMakerError().toStdString();
    const int plainRow = fill(plain);
    const QStringList names = {QStringLiteral("q ' \" ` $(x) ${y} $z.mp3"),
                               QStringLiteral("s \\ ; & | < > ( ).mp3"),
                               QStringLiteral("g * ? [a] { } ~ # ! % ^ =.mp3"),
                               QStringLiteral("-dash.mp3"),
                               QStringLiteral("tab\tand\nnewline.mp3"),
                               QString::fromUtf8("ü 日本 🎵.mp3"),
                               QStringLiteral("%PATH% %1 !x!.mp3")};
    for (const QString& name : names) {
        const QString path = folder.filePath(name);
        ASSERT_TRUE(QFile::copy(plain, path)) << name.toStdString();
        const int row = fill(path);
        EXPECT_EQ(model.items.cell(row, 3), path);
        for (const int cell : {1, 9, 10, 11}) {
            EXPECT_EQ(model.items.cell(row, cell), model.items.cell(plainRow, cell))
                << name.toStdString() << " cell " << cell;
        }
    }
}

TEST_F(BadInputMedia, TagWasRead_AgreesWithHasTagForEveryShapeOfFile) {
    QByteArray lowerCase = tagOnly();
    lowerCase.replace(0, 3, "tAg");
    const QList<std::pair<QString, QByteArray>> files = {
        {QStringLiteral("empty.mp3"), QByteArray()},
        {QStringLiteral("127.mp3"), tagOnly().left(127)},
        {QStringLiteral("128.mp3"), tagOnly()},
        {QStringLiteral("lower.mp3"), QByteArray(500, '\xFF') + lowerCase},
        {QStringLiteral("inside.mp3"), tagOnly() + QByteArray(500, '\xFF')},
        {QStringLiteral("untagged.mp3"), QByteArray(2000, '\xFF')},
    };
    for (const auto& [name, bytes] : files) {
        ID3Reader reader;
        reader.setFileName(file(name, bytes));
        EXPECT_EQ(reader.TagWasRead(), reader.HasTag()) << name.toStdString();
        EXPECT_EQ(reader.Title() == QStringLiteral("Title"), reader.HasTag()) << name.toStdString();
    }
}
