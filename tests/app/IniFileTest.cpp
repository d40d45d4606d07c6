#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "app/AppPaths.h"
#include "app/IniFile.h"
#include "support/FileSizeLimit.h"
#include "support/PlainUser.h"

namespace {

class IniFileTest : public ::testing::Test {
protected:
    QString path(const QString& name = QStringLiteral("Settings.ini")) const {
        return dir.path() + u'/' + name;
    }
    void writeBytes(const QString& file, const QByteArray& bytes) {
        QFile out(file);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(bytes);
    }
    QByteArray readBytes(const QString& file) {
        QFile in(file);
        EXPECT_TRUE(in.open(QIODevice::ReadOnly));
        return in.readAll();
    }
    QString read(const QString& section, const QString& key, const QString& file) {
        QString s = section, k = key, f = file;
        return ReadIniValue(s, k, f);
    }
    short write(const QString& section, const QString& key, const QString& value,
                const QString& file) {
        QString s = section, k = key, v = value, f = file;
        return WriteIniValue(s, k, v, f);
    }
    QTemporaryDir dir;
};

TEST_F(IniFileTest, ReadIniValue_MissingFile_GivesEmptyText) {
    EXPECT_EQ(read("NewList", "ListType", path("missing.ini")), QString());
}

TEST_F(IniFileTest, ReadIniValue_MissingSectionOrKey_GivesEmptyText) {
    writeBytes(path(), "[NewList]\nListType=MPEG\n");
    EXPECT_EQ(read("Tips", "ListType", path()), QString());
    EXPECT_EQ(read("NewList", "DoNotAskMeAgain", path()), QString());
}

TEST_F(IniFileTest, ReadIniValue_KeyOfAnotherSection_IsNotFound) {
    writeBytes(path(), "[Tips]\nCount=3\n[NewList]\nListType=MPEG\n");
    EXPECT_EQ(read("NewList", "Count", path()), QString());
    EXPECT_EQ(read("Tips", "Count", path()), QStringLiteral("3"));
}

TEST_F(IniFileTest, ReadIniValue_SectionAndKeyInAnyCase_AreFound) {
    writeBytes(path(), "[newlist]\nLISTTYPE=MPEG\n");
    EXPECT_EQ(read("NewList", "ListType", path()), QStringLiteral("MPEG"));
    EXPECT_EQ(read("NEWLIST", "listtype", path()), QStringLiteral("MPEG"));
}

TEST_F(IniFileTest, ReadIniValue_BlanksAroundNamesAndValue_AreIgnored) {
    writeBytes(path(), "  [ NewList ]  \n  ListType  =  MPEG  \n");
    EXPECT_EQ(read("NewList", "ListType", path()), QStringLiteral("MPEG"));
}

TEST_F(IniFileTest, ReadIniValue_LongValue_IsCutTo254Characters) {
    const QString longValue(300, u'x');
    writeBytes(path(), "[Tips]\nTip1=" + longValue.toUtf8() + "\n");
    const QString value = read("Tips", "Tip1", path());
    EXPECT_EQ(value.size(), 254);
    EXPECT_EQ(value, longValue.left(254));
}

TEST_F(IniFileTest, ReadIniValue_ValueOfExactly254Characters_IsReadWhole) {
    const QString value254(254, u'y');
    writeBytes(path(), "[Tips]\nTip1=" + value254.toUtf8() + "\n");
    EXPECT_EQ(read("Tips", "Tip1", path()), value254);
}

TEST_F(IniFileTest, ReadIniValue_CrlfFile_GivesValueWithoutCarriageReturn) {
    writeBytes(path(), "[NewList]\r\nListType=MPEG\r\nDoNotAskMeAgain=1\r\n");
    EXPECT_EQ(read("NewList", "ListType", path()), QStringLiteral("MPEG"));
    EXPECT_EQ(read("NewList", "DoNotAskMeAgain", path()), QStringLiteral("1"));
}

TEST_F(IniFileTest, ReadIniValue_QuotedValue_IsReadWithoutQuotes) {
    writeBytes(path(), "[Tips]\nTip1=\"Press F5 to join.\"\n");
    EXPECT_EQ(read("Tips", "Tip1", path()), QStringLiteral("Press F5 to join."));
}

TEST_F(IniFileTest, ReadIniValue_CommentLine_IsNoKey) {
    writeBytes(path(), "[Tips]\n;Count=9\nCount=4\n");
    EXPECT_EQ(read("Tips", "Count", path()), QStringLiteral("4"));
}

TEST_F(IniFileTest, ReadIniValue_Utf8Text_IsReadAsIs) {
    writeBytes(path(), "\xEF\xBB\xBF[Commondialog]\nAddFiles=/home/j\xC3\xBCrgen/M\xC3\xBCsik/\n");
    EXPECT_EQ(read("Commondialog", "AddFiles", path()), QStringLiteral("/home/jürgen/Müsik/"));
}

TEST_F(IniFileTest, ReadIniValue_EmptiesCallersSectionAndKey_KeepsFile) {
    writeBytes(path(), "[NewList]\nListType=MPEG\n");
    QString section = "NewList", key = "ListType", file = path();
    EXPECT_EQ(ReadIniValue(section, key, file), QStringLiteral("MPEG"));
    EXPECT_TRUE(section.isEmpty());
    EXPECT_TRUE(key.isEmpty());
    EXPECT_EQ(file, path());
}

TEST_F(IniFileTest, WriteIniValue_EmptiesCallersSectionKeyAndValue_KeepsFile) {
    QString section = "NewList", key = "ListType", value = "MP3", file = path();
    EXPECT_EQ(WriteIniValue(section, key, value, file), -1);
    EXPECT_TRUE(section.isEmpty());
    EXPECT_TRUE(key.isEmpty());
    EXPECT_TRUE(value.isEmpty());
    EXPECT_EQ(file, path());
}

TEST_F(IniFileTest, WriteIniValue_MissingFile_IsCreatedWithSectionAndKey) {
    EXPECT_EQ(write("Tips", "ShowAtStartup", "1", path()), -1);
    EXPECT_EQ(readBytes(path()), QByteArray("[Tips]\nShowAtStartup=1\n"));
    EXPECT_EQ(read("Tips", "ShowAtStartup", path()), QStringLiteral("1"));
}

TEST_F(IniFileTest, WriteIniValue_MissingFolder_FailsWithZero) {
    EXPECT_EQ(write("Tips", "ShowAtStartup", "1", path("nofolder/Settings.ini")), 0);
    EXPECT_FALSE(QFile::exists(path("nofolder/Settings.ini")));
}

// A write that fails half way (the file size limit is reached) reports the
// failure and leaves the settings file as it was.
TEST_F(IniFileTest, WriteIniValue_WriteFailingHalfWay_FailsAndKeepsTheOldFile) {
    const QByteArray old = "[Join]\nLast=1\n" + QByteArray(60000, ';') + "\n";
    writeBytes(path(), old);
    short written = -1;
    {
        FileSizeLimit limit(65536);
        ASSERT_TRUE(limit.active());
        written = write("Join", "Notes", QString(20000, u'x'), path());
    }
    EXPECT_EQ(written, 0);
    EXPECT_EQ(readBytes(path()), old);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"Settings.ini"});
}

TEST_F(IniFileTest, WriteIniValue_ExistingKey_IsUpdatedInPlace) {
    writeBytes(path(),
               "; my settings\n[NewList]\nDoNotAskMeAgain=0\nListType=MP3\n\n[Tips]\nCount=2\n");
    EXPECT_EQ(write("NewList", "ListType", "MPEG", path()), -1);
    EXPECT_EQ(
        readBytes(path()),
        QByteArray(
            "; my settings\n[NewList]\nDoNotAskMeAgain=0\nListType=MPEG\n\n[Tips]\nCount=2\n"));
}

TEST_F(IniFileTest, WriteIniValue_KeyInOtherCase_IsUpdatedKeepingItsSpelling) {
    writeBytes(path(), "[newlist]\nlisttype=MP3\n");
    write("NewList", "ListType", "MPEG", path());
    EXPECT_EQ(readBytes(path()), QByteArray("[newlist]\nlisttype=MPEG\n"));
}

TEST_F(IniFileTest, WriteIniValue_MissingKey_IsAddedAtEndOfItsSection) {
    writeBytes(path(), "[NewList]\nListType=MP3\n\n[Tips]\nCount=2\n");
    write("NewList", "DoNotAskMeAgain", "1", path());
    EXPECT_EQ(readBytes(path()),
              QByteArray("[NewList]\nListType=MP3\nDoNotAskMeAgain=1\n\n[Tips]\nCount=2\n"));
}

TEST_F(IniFileTest, WriteIniValue_MissingSection_IsAddedAtEnd) {
    writeBytes(path(), "[Tips]\nCount=2\n");
    write("Commondialog", "OpenList", "/home/user/Lists/", path());
    EXPECT_EQ(readBytes(path()),
              QByteArray("[Tips]\nCount=2\n[Commondialog]\nOpenList=/home/user/Lists/\n"));
}

TEST_F(IniFileTest, WriteIniValue_LastLineWithoutLineEnd_GetsOneBeforeNewLines) {
    writeBytes(path(), "[Tips]\nCount=2");
    write("Tips", "ShowAtStartup", "0", path());
    EXPECT_EQ(readBytes(path()), QByteArray("[Tips]\nCount=2\nShowAtStartup=0\n"));
}

TEST_F(IniFileTest, WriteIniValue_CrlfFile_KeepsCrlfOnEveryLine) {
    writeBytes(path(), "[NewList]\r\nListType=MP3\r\n[Tips]\r\nCount=2\r\n");
    write("NewList", "ListType", "MPEG", path());
    write("NewList", "DoNotAskMeAgain", "1", path());
    write("Splashscreen", "DoNotShowAtStartup", "0", path());
    EXPECT_EQ(readBytes(path()),
              QByteArray("[NewList]\r\nListType=MPEG\r\nDoNotAskMeAgain=1\r\n[Tips]\r\nCount=2\r\n"
                         "[Splashscreen]\r\nDoNotShowAtStartup=0\r\n"));
}

TEST_F(IniFileTest, WriteIniValue_OtherLines_AreKeptByteForByte) {
    const QByteArray before =
        "\xEF\xBB\xBF; comment with odd  spacing\r\n[Tips]\r\n  Tip1 =  Caf\xC3\xA9 tips  \r\n"
        "not an entry line\r\n[NewList]\r\nListType=MP3\r\n";
    writeBytes(path(), before);
    write("NewList", "ListType", "MPEG", path());
    QByteArray expected = before;
    expected.replace("ListType=MP3", "ListType=MPEG");
    EXPECT_EQ(readBytes(path()), expected);
}

TEST_F(IniFileTest, WriteIniValue_ReadOnlyFile_BecomesWritableAndIsWritten) {
    writeBytes(path(), "[Tips]\nShowAtStartup=1\n");
    ASSERT_TRUE(QFile::setPermissions(path(), QFile::ReadOwner | QFile::ReadUser));
    EXPECT_EQ(write("Tips", "ShowAtStartup", "0", path()), -1);
    EXPECT_TRUE(QFile::permissions(path()) & QFile::WriteOwner);
    EXPECT_EQ(read("Tips", "ShowAtStartup", path()), QStringLiteral("0"));
}

// A settings file in a folder that takes no new file, the file itself not
// writable either (for a plain user): the file stays as it was and the
// reporter learns the file and the system's reason, once.
TEST_F(IniFileTest, WriteIniValue_FileThatCannotBeWritten_IsReportedOnceWithTheReason) {
    const QString folder = path("closed");
    const QString file = folder + QStringLiteral("/Settings.ini");
    QDir().mkpath(folder);
    writeBytes(file, "[Tips]\nShowAtStartup=1\n");
    QFile::setPermissions(dir.path(), QFileDevice::Permissions(0x7755));
    QFile::setPermissions(file, QFileDevice::Permissions(0x4444));
    QFile::setPermissions(folder, QFileDevice::Permissions(0x5555));
    QStringList reports;
    SetIniWriteFailureReporter(
        [&](const QString& f, const QString& reason) { reports << f + u'|' + reason; });
    short first = 0;
    short second = 0;
    {
        PlainUser user;
        first = write("Tips", "ShowAtStartup", "0", file);
        second = write("Tips", "Other", "1", file);
    }
    SetIniWriteFailureReporter({});
    QFile::setPermissions(folder, QFileDevice::Permissions(0x7755));
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 0);
    EXPECT_EQ(readBytes(file), "[Tips]\nShowAtStartup=1\n");
    ASSERT_EQ(reports.size(), 1);
    EXPECT_TRUE(reports[0].startsWith(file + u'|')) << reports[0].toStdString();
    EXPECT_TRUE(reports[0].endsWith("Permission denied") || reports[0].endsWith("is not writable"))
        << reports[0].toStdString();
}

TEST_F(IniFileTest, WriteIniValue_WorkingWriteAfterAFailure_ReportsTheNextFailureAgain) {
    QStringList reports;
    SetIniWriteFailureReporter([&](const QString& f, const QString&) { reports << f; });
    const QString missing = path("gone/Settings.ini");
    EXPECT_EQ(write("A", "k", "1", missing), 0);
    EXPECT_EQ(write("A", "k", "2", missing), 0);
    EXPECT_EQ(reports.size(), 1);
    ASSERT_TRUE(QDir().mkpath(path("gone")));
    EXPECT_EQ(write("A", "k", "3", missing), -1);
    EXPECT_EQ(reports.size(), 1);
    ASSERT_TRUE(QDir(path("gone")).removeRecursively());
    EXPECT_EQ(write("A", "k", "4", missing), 0);
    EXPECT_EQ(reports, QStringList({missing, missing}));
    SetIniWriteFailureReporter({});
}

TEST(IniWriteFailureMessage, NamesTheFileAndTheReason) {
    EXPECT_EQ(IniWriteFailureMessage("/home/u/Settings.ini", "Disk full"),
              "Unable to save the settings!\r\n/home/u/Settings.ini\r\n\r\nDisk full");
}

TEST_F(IniFileTest, WriteIniValue_ValueWithNonAsciiText_RoundTripsAsUtf8) {
    write("Commondialog", "AddFiles", QStringLiteral("/home/zoë/Музыка/"), path());
    EXPECT_EQ(read("Commondialog", "AddFiles", path()), QStringLiteral("/home/zoë/Музыка/"));
    EXPECT_TRUE(readBytes(path()).contains("zo\xC3\xAB"));
}

TEST_F(IniFileTest, WriteIniValue_EmptyValue_IsStoredAsEmptyEntry) {
    writeBytes(path(), "[Commondialog]\nJoinFiles=/tmp/\n");
    write("Commondialog", "JoinFiles", "", path());
    EXPECT_EQ(readBytes(path()), QByteArray("[Commondialog]\nJoinFiles=\n"));
    EXPECT_EQ(read("Commondialog", "JoinFiles", path()), QString());
}

TEST_F(IniFileTest, WriteIniValue_SameSectionTwice_UsesTheFirst) {
    writeBytes(path(), "[Tips]\nCount=1\n[Tips]\nCount=9\n");
    EXPECT_EQ(read("Tips", "Count", path()), QStringLiteral("1"));
    write("Tips", "Count", "2", path());
    EXPECT_EQ(readBytes(path()), QByteArray("[Tips]\nCount=2\n[Tips]\nCount=9\n"));
}

TEST_F(IniFileTest, WriteSettingAndReadSetting_UseSettingsFileOfAppDataFolder) {
    const QString previous = AppDataFolder();
    SetAppDataFolder(dir.path());
    WriteSetting("NewList", "ListType", "MPEG");
    EXPECT_EQ(ReadSetting("newlist", "listtype"), QStringLiteral("MPEG"));
    EXPECT_EQ(read("NewList", "ListType", dir.path() + "/Settings.ini"), QStringLiteral("MPEG"));
    SetAppDataFolder(previous);
}

}  // namespace
