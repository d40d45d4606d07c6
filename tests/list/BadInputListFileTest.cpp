// List files and clipboard entries far outside what the program writes
// itself: very many rows, very long cells and paths, odd bytes and file names
// with every character a shell treats specially.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include "list/ClipboardModule.h"
#include "list/ListTestModel.h"

namespace {

bool writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// Opens the bytes as a list file through the Open List command.
void openBytes(ListTestModel& list, const QTemporaryDir& folder, const QByteArray& bytes) {
    const QString path = folder.filePath(QStringLiteral("input.vlr"));
    ASSERT_TRUE(writeFile(path, bytes));
    list.questions.chooseFile(path);
    OpenList(list.model);
}

// A path of exactly the given length under the folder, made of folders of
// 200 characters each, and a file at its end.
QString makeLongPath(const QString& folder, int length) {
    QString path = folder;
    while (path.size() + 1 + 200 + 1 + 20 < length) {
        path += u'/' + QString(200, u'd');
    }
    const int rest = length - static_cast<int>(path.size()) - 1;
    path += u'/' + QString(rest - 4, u'f') + QStringLiteral(".mp3");
    return path;
}

// Every character that means something to a shell, a batch file or the
// list file's own syntax, one class per name.
const QStringList kScriptRelevantNames = {
    QStringLiteral("single ' quote.mp3"),
    QStringLiteral("double \" quote.mp3"),
    QStringLiteral("back ` tick $(touch x) ${HOME}.mp3"),
    QStringLiteral("dollar $HOME $1 $$.mp3"),
    QStringLiteral("back \\ slash.mp3"),
    QStringLiteral("semi ; amp & and && or.mp3"),
    QStringLiteral("redirect < > >> 2>&1.mp3"),
    QStringLiteral("paren ( ) brace { } bracket [ ].mp3"),
    QStringLiteral("glob * ? [a-z].mp3"),
    QStringLiteral("tilde ~ hash # bang ! percent %PATH% caret ^ equals =.mp3"),
    QStringLiteral("-leading dash.mp3"),
    QStringLiteral(" leading and trailing blank .mp3"),
    QStringLiteral("tab\there.mp3"),
    QStringLiteral("comma, quote\",\" csv.mp3"),
    QString::fromUtf8("ünïcödé ñ ß 日本 🎵.mp3"),
};

}  // namespace

TEST(BadInputListFile, HundredThousandRowsWithLongCells_OpenWholeAndSaveTheSame) {
    ListTestModel list;
    QTemporaryDir folder;
    const QString longCell(300, u'p');
    const QString veryLongCell(100000, u'v');
    QByteArray bytes = "VLR List v1.0\r\n<MP3>\r\n";
    bytes.reserve(100000 * 400);
    for (int i = 1; i <= 100000; ++i) {
        const QString cell = (i % 10000 == 0) ? veryLongCell : longCell;
        bytes += QStringLiteral(
                     "song %1.mp3|3,000 KB|1/1/2020 10:00 AM|/music/%2/%1.mp3|Artist|"
                     "Title|Album|2020|Rock|00:03:00|128 kbps|44100 (Stereo)\r\n")
                     .arg(i)
                     .arg(cell)
                     .toUtf8();
    }
    openBytes(list, folder, bytes);
    EXPECT_TRUE(list.questions.asked.isEmpty());
    ASSERT_EQ(list.model.items.count(), 100000);
    EXPECT_EQ(list.model.items.cell(1, 3), QStringLiteral("/music/%1/1.mp3").arg(longCell));
    EXPECT_EQ(list.model.items.cell(50000, 3),
              QStringLiteral("/music/%1/50000.mp3").arg(veryLongCell));
    EXPECT_EQ(list.model.items.cell(100000, 11), QStringLiteral("44100 (Stereo)"));
    EXPECT_EQ(ListFileText(list.model), bytes);
}

TEST(BadInputListFile, LineOfManySeparators_FieldsBeyondTheColumnsFallOff) {
    ListTestModel list(QStringLiteral("MPEG"));
    QTemporaryDir folder;
    const QByteArray line =
        "a.mpg|1 KB|date|/x/a.mpg|MPEG-1V|352x288|00:00:02" + QByteArray(100000, '|') + "end";
    openBytes(list, folder, "VLR List v1.0\r\n<MPEG>\r\n" + line + "\r\n");
    ASSERT_EQ(list.model.items.count(), 1);
    EXPECT_EQ(list.model.items.cells(1).size(), 7);
    EXPECT_EQ(list.model.items.cell(1, 6), QStringLiteral("00:00:02"));
}

TEST(BadInputListFile, BinaryBytesAfterTheHeader_RowsOfWhatStandsThere) {
    ListTestModel list;
    QTemporaryDir folder;
    QByteArray garbage;
    for (int i = 0; i < 4096; ++i) {
        garbage += static_cast<char>((i * 37) % 256);
    }
    openBytes(list, folder, "VLR List v1.0\r\n<MP3>\r\n" + garbage);
    EXPECT_TRUE(list.questions.asked.isEmpty());
    // Not UTF-8: read byte for byte as Latin-1, NUL characters included.
    const QString text = QString::fromLatin1(garbage);
    int lines = 0;
    for (const QString& piece : text.split(QRegularExpression(QStringLiteral("\r\n|\r|\n")))) {
        lines += piece.isEmpty() ? 0 : 1;
    }
    EXPECT_EQ(list.model.items.count(), lines);
    EXPECT_TRUE(list.model.items.cell(1, 0).contains(QChar(0)));
}

TEST(BadInputListFile, NoHeaderButGarbage_ShowsTheMessageAndKeepsTheList) {
    ListTestModel list;
    list.addMp3(QStringLiteral("/x/kept.mp3"), QStringLiteral("1 KB"), QStringLiteral("00:00:01"),
                QStringLiteral("44100"));
    QTemporaryDir folder;
    openBytes(list, folder, QByteArray(100000, '\xFF'));
    ASSERT_EQ(list.questions.asked.size(), 1);
    EXPECT_EQ(list.questions.asked[0].prompt, QStringLiteral("Unable to open; Invalid File!"));
    ASSERT_EQ(list.model.items.count(), 1);
    EXPECT_EQ(list.model.items.cell(1, 3), QStringLiteral("/x/kept.mp3"));
}

TEST(BadInputListFile, PathOf4000Characters_SavesOpensAndStaysLive) {
    ListTestModel list;
    QTemporaryDir folder;
    const QString path = makeLongPath(folder.path(), 4000);
    ASSERT_EQ(path.size(), 4000);
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    ASSERT_TRUE(writeFile(path, QByteArray(1000, 'm')));
    list.addMp3(path, QStringLiteral("1 KB"), QStringLiteral("00:00:01"), QStringLiteral("44100"));

    const QString listFile = folder.filePath(QStringLiteral("long.vlr"));
    list.questions.chooseFile(listFile);
    SaveList(list.model, -1);
    ListTestModel reopened;
    reopened.questions.chooseFile(listFile);
    OpenList(reopened.model);
    ASSERT_EQ(reopened.model.items.count(), 1);
    EXPECT_EQ(reopened.model.items.cell(1, 3), path);
    EXPECT_TRUE(IsLiveFile(path));
    RemoveDeadFiles(reopened.model);
    EXPECT_EQ(reopened.model.items.count(), 1);
}

TEST(BadInputListFile, PathBeyondTheSystemLimit_IsADeadFileWithoutACrash) {
    ListTestModel list;
    const QString path = QStringLiteral("/tmp/") + QString(5000, u'x') + QStringLiteral(".mp3");
    list.addMp3(path, QStringLiteral("1 KB"), QStringLiteral("00:00:01"), QStringLiteral("44100"));
    EXPECT_FALSE(IsLiveFile(path));
    RemoveDeadFiles(list.model);
    EXPECT_EQ(list.model.items.count(), 0);
}

TEST(BadInputListFile, ScriptRelevantNames_ComeBackFromTheListFileUnchanged) {
    ListTestModel list;
    QTemporaryDir folder;
    QStringList paths;
    for (const QString& name : kScriptRelevantNames) {
        paths << folder.filePath(name);
        ASSERT_TRUE(writeFile(paths.last(), "x")) << name.toStdString();
        list.addMp3(paths.last(), QStringLiteral("1 KB"), QStringLiteral("00:00:01"),
                    QStringLiteral("44100"));
    }
    const QString listFile = folder.filePath(QStringLiteral("names.vlr"));
    list.questions.chooseFile(listFile);
    SaveList(list.model, -1);
    ListTestModel reopened;
    reopened.questions.chooseFile(listFile);
    OpenList(reopened.model);
    EXPECT_EQ(reopened.column(3), paths);
    RemoveDeadFiles(reopened.model);
    EXPECT_EQ(reopened.column(3), paths);
}

TEST(BadInputListFile, SeparatorAndLineBreakInNames_SplitAsTheFormatReadsThem) {
    // "|" separates cells and a line break ends a row: the list file cannot
    // carry them, and reading gives what the bytes say.
    ListTestModel list;
    QTemporaryDir folder;
    list.addRow({QStringLiteral("ab.mp3"), QStringLiteral("1 KB"), QStringLiteral("date"),
                 QStringLiteral("/m/a|b.mp3"), QStringLiteral("artist")});
    list.addRow({QStringLiteral("line.mp3"), QStringLiteral("1 KB"), QStringLiteral("date"),
                 QStringLiteral("/m/line\nbreak.mp3"), QStringLiteral("artist")});
    ListTestModel reopened;
    openBytes(reopened, folder, ListFileText(list.model));
    EXPECT_TRUE(reopened.questions.asked.isEmpty());
    ASSERT_EQ(reopened.model.items.count(), 3);
    EXPECT_EQ(reopened.model.items.cell(1, 3), QStringLiteral("/m/a"));
    EXPECT_EQ(reopened.model.items.cell(1, 4), QStringLiteral("b.mp3"));
    EXPECT_EQ(reopened.model.items.cell(2, 3), QStringLiteral("/m/line"));
    EXPECT_EQ(reopened.model.items.cell(3, 0), QStringLiteral("break.mp3"));
}

TEST(BadInputClipboard, EntryWithA4000CharacterPath_PastesTheFile) {
    ListTestModel list;
    QTemporaryDir folder;
    const QString path = makeLongPath(folder.path(), 4000);
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    ASSERT_TRUE(writeFile(path, QByteArray(2000, 'm')));
    list.clipboard.setText(QStringLiteral("VLR:x.mp3|1 KB|date|") + path + QStringLiteral("|a"));
    PasteItem(list.model);
    EXPECT_TRUE(list.questions.asked.isEmpty());
    ASSERT_EQ(list.model.items.count(), 1);
    EXPECT_EQ(list.model.items.cell(1, 3), path);
    EXPECT_EQ(list.model.items.cell(1, 0), QFileInfo(path).fileName());
}

TEST(BadInputClipboard, ScriptRelevantNames_PasteTheirOwnFile) {
    ListTestModel list;
    QTemporaryDir folder;
    for (const QString& name : kScriptRelevantNames) {
        const QString path = folder.filePath(name);
        ASSERT_TRUE(writeFile(path, "x"));
        list.clipboard.setText(QStringLiteral("VLR:") + name + QStringLiteral("|1 KB|date|") +
                               path);
        PasteItem(list.model);
        EXPECT_EQ(list.model.items.cell(list.model.items.count(), 3), path);
    }
    EXPECT_TRUE(list.questions.asked.isEmpty());
    EXPECT_EQ(list.model.items.count(), kScriptRelevantNames.size());
}

TEST(BadInputClipboard, HugeAndBinaryTexts_AreInvalidEntries) {
    ListTestModel list;
    for (const QString& text : {QString(1000000, u'x'), QString(3, QChar(0)),
                                QStringLiteral("vlr:/x.mp3"), QStringLiteral(" VLR:a|b|c|/x")}) {
        list.clipboard.setText(text);
        PasteItem(list.model);
    }
    ASSERT_EQ(list.questions.asked.size(), 4);
    for (const auto& asked : list.questions.asked) {
        EXPECT_EQ(asked.prompt, QStringLiteral("Invalid Clipboard Entry."));
    }
    EXPECT_EQ(list.model.items.count(), 0);
}

TEST(BadInputListFile, SizeCellsBeyond64Bits_TotalIsWrittenInFull) {
    // A damaged list file may carry any figure in the size column; the total
    // is still the sum, digit by digit.
    ListTestModel list;
    QTemporaryDir folder;
    const QByteArray row = "a.mp3|100,000,000,000,000,000,000 KB|date|/x/a.mp3\r\n";
    openBytes(list, folder, "VLR List v1.0\r\n<MP3>\r\n" + row + row);
    ASSERT_EQ(list.model.items.count(), 2);
    EXPECT_EQ(list.model.state.sizeCaption(), QStringLiteral("200,000,000,000,000,000,000 KB"));
}

TEST(BadInputListFile, SizeCellOf24PlainDigits_IsReadAsTheNumberItIs) {
    // 2 to the power 77: 24 digits, exact in a double.
    ListTestModel list;
    QTemporaryDir folder;
    const QByteArray row = "a.mp3|151115727451828646838272 KB|date|/x/a.mp3\r\n";
    openBytes(list, folder, "VLR List v1.0\r\n<MP3>\r\n" + row);
    ASSERT_EQ(list.model.items.count(), 1);
    EXPECT_EQ(list.model.state.sizeCaption(), QStringLiteral("151,115,727,451,828,646,838,272 KB"));
}
