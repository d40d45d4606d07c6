// Settings files far outside what the program writes itself: 10 MB of
// lines, one endless line, binary bytes, a folder in the file's place, a path
// near the system's limit.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "app/AppPaths.h"
#include "app/IniFile.h"

namespace {

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QString read(const QString& file, const QString& section, const QString& key) {
    QString s = section, k = key, f = file;
    return ReadIniValue(s, k, f);
}

short write(const QString& file, const QString& section, const QString& key, const QString& value) {
    QString s = section, k = key, v = value, f = file;
    return WriteIniValue(s, k, v, f);
}

// About 10 MB: many sections of many keys, the one looked for at the end.
QByteArray tenMegabytes() {
    QByteArray bytes;
    bytes.reserve(10'600'000);
    int section = 0;
    while (bytes.size() < 10'000'000) {
        bytes += "[Section" + QByteArray::number(section++) + "]\r\n";
        for (int key = 0; key < 100; ++key) {
            bytes += "Key" + QByteArray::number(key) + '=' + QByteArray(80, 'v') + "\r\n";
        }
    }
    bytes += "[Last]\r\nWanted=found\r\n";
    return bytes;
}

}  // namespace

TEST(BadInputSettings, TenMegabyteFile_ReadsTheLastKeyAndWritesOneLineOnly) {
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("Settings.ini"));
    const QByteArray bytes = tenMegabytes();
    ASSERT_GE(bytes.size(), 10'000'000);
    ASSERT_TRUE(writeFile(file, bytes));
    EXPECT_EQ(read(file, QStringLiteral("last"), QStringLiteral("WANTED")),
              QStringLiteral("found"));
    EXPECT_EQ(read(file, QStringLiteral("Section7"), QStringLiteral("Key99")), QString(80, u'v'));

    EXPECT_EQ(write(file, QStringLiteral("Section7"), QStringLiteral("Key5"), QStringLiteral("x")),
              -1);
    QByteArray expected = bytes;
    const QByteArray old = "[Section7]\r\n";
    const qsizetype at = expected.indexOf("Key5=", expected.indexOf(old));
    expected.replace(at, 5 + 80, "Key5=x");
    EXPECT_EQ(readFile(file), expected);
    EXPECT_EQ(write(file, QStringLiteral("New"), QStringLiteral("Key"), QStringLiteral("y")), -1);
    EXPECT_EQ(readFile(file), expected + "[New]\r\nKey=y\r\n");
}

TEST(BadInputSettings, OneEndlessLine_NothingFoundAndAWriteAddsTheSection) {
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("Settings.ini"));
    const QByteArray bytes = "[Tips]" + QByteArray(10'000'000, '=');
    ASSERT_TRUE(writeFile(file, bytes));
    EXPECT_EQ(read(file, QStringLiteral("Tips"), QStringLiteral("Count")), QString());
    EXPECT_EQ(write(file, QStringLiteral("Tips"), QStringLiteral("Count"), QStringLiteral("3")),
              -1);
    EXPECT_EQ(read(file, QStringLiteral("Tips"), QStringLiteral("Count")), QStringLiteral("3"));
    EXPECT_TRUE(readFile(file).startsWith(bytes));
}

TEST(BadInputSettings, LongValue_ReadsThe254FirstCharacters) {
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("Settings.ini"));
    const QString value(5'000'000, u'a');
    EXPECT_EQ(write(file, QStringLiteral("S"), QStringLiteral("K"), value), -1);
    EXPECT_EQ(read(file, QStringLiteral("S"), QStringLiteral("K")), value.left(254));
}

TEST(BadInputSettings, BinaryBytes_ReadsWhatStandsThereAndKeepsTheBytesOnWrite) {
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("Settings.ini"));
    QByteArray garbage;
    for (int i = 0; i < 100000; ++i) {
        garbage += static_cast<char>((i * 131) % 256);
    }
    const QByteArray bytes = garbage + "\n[Join]\nFolder=/x\n";
    ASSERT_TRUE(writeFile(file, bytes));
    EXPECT_EQ(read(file, QStringLiteral("Join"), QStringLiteral("Folder")), QStringLiteral("/x"));
    EXPECT_EQ(write(file, QStringLiteral("Join"), QStringLiteral("Folder"), QStringLiteral("/y")),
              -1);
    EXPECT_EQ(readFile(file), garbage + "\n[Join]\nFolder=/y\n");
}

TEST(BadInputSettings, FolderInTheFilesPlace_ReadsEmptyAndWriteFails) {
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("Settings.ini"));
    ASSERT_TRUE(QDir().mkpath(file));
    EXPECT_EQ(read(file, QStringLiteral("Tips"), QStringLiteral("Count")), QString());
    EXPECT_EQ(write(file, QStringLiteral("Tips"), QStringLiteral("Count"), QStringLiteral("1")), 0);
    EXPECT_TRUE(QFileInfo(file).isDir());
}

TEST(BadInputSettings, AppDataPathOf4000Characters_SettingsRoundTrip) {
    QTemporaryDir folder;
    QString deep = folder.path();
    while (deep.size() < 4000 - 220) {
        deep += u'/' + QString(200, u's');
    }
    deep += u'/' + QString(4000 - 13 - deep.size() - 1, u't');
    ASSERT_TRUE(QDir().mkpath(deep));
    SetAppDataFolder(deep);
    ASSERT_EQ(SettingsFile().size(), 4000);
    WriteSetting(QStringLiteral("Commondialog"), QStringLiteral("OpenList"), deep);
    EXPECT_EQ(ReadSetting(QStringLiteral("Commondialog"), QStringLiteral("OpenList")),
              deep.left(254));
    SetAppDataFolder(QString());
}

TEST(BadInputSettings, PathBeyondTheSystemLimit_ReadsEmptyAndWriteFails) {
    const QString file = QStringLiteral("/tmp/") + QString(5000, u'z') + QStringLiteral(".ini");
    EXPECT_EQ(read(file, QStringLiteral("A"), QStringLiteral("B")), QString());
    EXPECT_EQ(write(file, QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")), 0);
}
