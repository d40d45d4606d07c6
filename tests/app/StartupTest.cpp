#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>

#include "app/AppPaths.h"
#include "app/DebugLog.h"
#include "app/Startup.h"
#include "platform/Questions.h"
#include "support/ScriptedQuestions.h"

namespace {

QByteArray readAll(const QString& file) {
    QFile in(file);
    EXPECT_TRUE(in.open(QIODevice::ReadOnly));
    return in.readAll();
}

void writeBytes(const QString& file, const QByteArray& bytes) {
    QFile out(file);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(bytes);
}

// Notes, at the moment of each message box, what the log and the settings file
// hold, so the order of the start-up's steps can be checked.
class ObservingQuestions : public ScriptedQuestions {
public:
    int msgBox(const QString& prompt, int style, const QString& title) override {
        logPathAtBox = LogPath();
        logAtBox = logPathAtBox.isEmpty() ? QByteArray() : readAll(logPathAtBox);
        settingsExistedAtBox = QFile::exists(SettingsFile());
        return ScriptedQuestions::msgBox(prompt, style, title);
    }
    QString logPathAtBox;
    QByteArray logAtBox;
    bool settingsExistedAtBox = true;
};

class StartupTest : public ::testing::Test {
protected:
    void SetUp() override {
        savedXdg = qgetenv("XDG_DATA_HOME");
        hadXdg = qEnvironmentVariableIsSet("XDG_DATA_HOME");
        qputenv("XDG_DATA_HOME", (dir.path() + "/data").toUtf8());
        QDir().mkpath(dir.path() + "/data");
        QDir().mkpath(dir.path() + "/install");
        SetInstallFolderOverride(dir.path() + "/install");
        savedAppData = AppDataFolder();
    }
    void TearDown() override {
        StopLogging();
        SetInstallFolderOverride(QString());
        SetAppDataFolder(savedAppData);
        if (hadXdg) {
            qputenv("XDG_DATA_HOME", savedXdg);
        } else {
            qunsetenv("XDG_DATA_HOME");
        }
    }
    QString appData() const { return dir.path() + "/data/Kestor/Velmora"; }
    void putDefaults(const QByteArray& content = "[Tips]\nCount=1\nTip1=Hello\nShowAtStartup=1\n") {
        writeBytes(dir.path() + "/install/DefaultSettings.ini", content);
    }
    QStringList logFiles() const {
        return QDir(appData()).entryList({QStringLiteral("*.log")}, QDir::Files);
    }

    QTemporaryDir dir;
    QByteArray savedXdg;
    bool hadXdg = false;
    QString savedAppData;
};

TEST_F(StartupTest, PrepareStartup_MakesEveryLevelOfAppDataFolderAndStoresIt) {
    ScriptedQuestions questions;
    const StartupResult result = PrepareStartup({"velmora"}, questions);
    EXPECT_EQ(result.appDataFolder, appData());
    EXPECT_EQ(AppDataFolder(), appData());
    EXPECT_TRUE(QFileInfo(appData()).isDir());
    EXPECT_EQ(SettingsFile(), appData() + "/Settings.ini");
    EXPECT_TRUE(questions.asked.isEmpty());
}

TEST_F(StartupTest, PrepareStartup_MissingDataHome_IsCreatedToo) {
    qputenv("XDG_DATA_HOME", (dir.path() + "/fresh/share").toUtf8());
    ScriptedQuestions questions;
    const StartupResult result = PrepareStartup({"velmora"}, questions);
    EXPECT_EQ(result.appDataFolder, dir.path() + "/fresh/share/Kestor/Velmora");
    EXPECT_TRUE(QFileInfo(result.appDataFolder).isDir());
    EXPECT_TRUE(questions.asked.isEmpty());
}

TEST_F(StartupTest, PrepareStartup_FirstRun_CopiesDefaultSettings) {
    putDefaults();
    ScriptedQuestions questions;
    const StartupResult result = PrepareStartup({"velmora"}, questions);
    EXPECT_TRUE(result.copiedDefaultSettings);
    EXPECT_EQ(readAll(appData() + "/Settings.ini"),
              QByteArray("[Tips]\nCount=1\nTip1=Hello\nShowAtStartup=1\n"));
    EXPECT_TRUE(logFiles().isEmpty());
}

TEST_F(StartupTest, PrepareStartup_ExistingSettings_AreNeverTouched) {
    putDefaults();
    QDir().mkpath(appData());
    writeBytes(appData() + "/Settings.ini", "");
    ScriptedQuestions questions;
    const StartupResult result = PrepareStartup({"velmora"}, questions);
    EXPECT_FALSE(result.copiedDefaultSettings);
    EXPECT_EQ(readAll(appData() + "/Settings.ini"), QByteArray());
}

TEST_F(StartupTest, PrepareStartup_MissingDefaultSettings_GoesOnWithoutSettingsFile) {
    ScriptedQuestions questions;
    const StartupResult result = PrepareStartup({"velmora", "/debug"}, questions);
    EXPECT_FALSE(result.copiedDefaultSettings);
    EXPECT_FALSE(QFile::exists(appData() + "/Settings.ini"));
    ASSERT_FALSE(LogPath().isEmpty());
    const QList<QByteArray> lines = readAll(LogPath()).split('\n');
    ASSERT_EQ(lines.size(), 2);  // one record and the final line end
    EXPECT_TRUE(lines[0].startsWith("LogFile created on: "));
}

TEST_F(StartupTest, PrepareStartup_DebugOnFirstRun_LogFirstThenBoxThenCopyRecord) {
    putDefaults();
    ObservingQuestions questions;
    const StartupResult result = PrepareStartup({"velmora", "/debug"}, questions);
    EXPECT_TRUE(result.debug);

    ASSERT_EQ(questions.asked.size(), 1);
    EXPECT_EQ(questions.asked[0].prompt, QStringLiteral("Velmora is now running in debug-mode."));
    EXPECT_EQ(questions.asked[0].style, Msg::OkOnly + Msg::Information);
    EXPECT_TRUE(questions.asked[0].title.isEmpty());

    // At the box the log holds its first record and the copy has not happened.
    EXPECT_FALSE(questions.logPathAtBox.isEmpty());
    EXPECT_TRUE(questions.logAtBox.startsWith("LogFile created on: "));
    EXPECT_EQ(questions.logAtBox.count('\n'), 1);
    EXPECT_FALSE(questions.settingsExistedAtBox);

    const QList<QByteArray> lines = readAll(LogPath()).split('\n');
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines[0].startsWith("LogFile created on: "));
    EXPECT_EQ(lines[1],
              QByteArray("'DefaultSettings.ini' has been copied to 'AppData\\Settings.ini'."));
    EXPECT_EQ(lines[2], QByteArray());
}

TEST_F(StartupTest, PrepareStartup_Debug_LogLiesInAppDataFolderWithDateTimeName) {
    ScriptedQuestions questions;
    const QDateTime before = QDateTime::currentDateTime();
    PrepareStartup({"velmora", "/debug"}, questions);
    const QDateTime after = QDateTime::currentDateTime();
    const QStringList files = logFiles();
    ASSERT_EQ(files.size(), 1);
    EXPECT_EQ(LogPath(), appData() + u'/' + files[0]);
    const QDateTime named =
        QDateTime::fromString(files[0].left(14), QStringLiteral("ddMMyyyyHHmmss"));
    ASSERT_TRUE(named.isValid()) << files[0].toStdString();
    EXPECT_GE(named.toSecsSinceEpoch(), before.toSecsSinceEpoch());
    EXPECT_LE(named.toSecsSinceEpoch(), after.toSecsSinceEpoch());
}

TEST_F(StartupTest, PrepareStartup_DebugWithExistingSettings_LogHoldsOnlyFirstRecord) {
    putDefaults();
    QDir().mkpath(appData());
    writeBytes(appData() + "/Settings.ini", "[Tips]\nShowAtStartup=0\n");
    ScriptedQuestions questions;
    PrepareStartup({"velmora", "/debug"}, questions);
    const QByteArray log = readAll(LogPath());
    EXPECT_TRUE(log.startsWith("LogFile created on: "));
    EXPECT_EQ(log.count('\n'), 1);
}

struct CommandLineCase {
    QStringList arguments;
    bool debug;
};

class StartupCommandLineTest : public StartupTest,
                               public ::testing::WithParamInterface<CommandLineCase> {};

TEST_P(StartupCommandLineTest, PrepareStartup_OnlyExactlyDebug_StartsTheLog) {
    ScriptedQuestions questions;
    const StartupResult result = PrepareStartup(GetParam().arguments, questions);
    EXPECT_EQ(result.debug, GetParam().debug);
    EXPECT_EQ(!LogPath().isEmpty(), GetParam().debug);
    EXPECT_EQ(logFiles().size(), GetParam().debug ? 1 : 0);
    EXPECT_EQ(questions.asked.size(), GetParam().debug ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(
    CommandLines, StartupCommandLineTest,
    ::testing::Values(CommandLineCase{{"velmora", "/debug"}, true},
                      CommandLineCase{{"velmora"}, false},
                      CommandLineCase{{"velmora", "/DEBUG"}, false},
                      CommandLineCase{{"velmora", "/Debug"}, false},
                      CommandLineCase{{"velmora", "/debug "}, false},
                      CommandLineCase{{"velmora", "/debugx"}, false},
                      CommandLineCase{{"velmora", "debug"}, false},
                      CommandLineCase{{"velmora", "/debug", "/debug"}, false},
                      CommandLineCase{{"velmora", "/debug", "list.vlr"}, false},
                      CommandLineCase{{"velmora", "list.vlr", "/debug"}, false}));

TEST(LogFileNameTest, LogFileNameFor_DayFirstTwentyFourHourClock) {
    const QDateTime moment(QDate(2026, 11, 16), QTime(6, 3, 18));
    EXPECT_EQ(LogFileNameFor(moment), QStringLiteral("16112026060318.log"));
    const QDateTime evening(QDate(2027, 1, 2), QTime(23, 59, 7));
    EXPECT_EQ(LogFileNameFor(evening), QStringLiteral("02012027235907.log"));
}

TEST(LogFileNameTest, LogCreatedRecordFor_UsesLocaleShortDateAndTimeWithSeconds) {
    // The tests pin English (United States).
    const QDateTime moment(QDate(2026, 11, 16), QTime(18, 3, 18));
    EXPECT_EQ(LogCreatedRecordFor(moment),
              QStringLiteral("LogFile created on: 11/16/26 6:03:18 PM"));
}

TEST(LogFileNameTest, LogCreatedRecordFor_FollowsTheDefaultLocale) {
    const QLocale previous;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    const QDateTime moment(QDate(2026, 11, 16), QTime(6, 3, 18));
    const QString record = LogCreatedRecordFor(moment);
    QLocale::setDefault(previous);
    EXPECT_EQ(record, QStringLiteral("LogFile created on: 16.11.26 06:03:18"));
}

}  // namespace

TEST(ListFileOfArgumentsTest, NoArgument_NoListFile) {
    EXPECT_EQ(ListFileOfArguments({QStringLiteral("velmora")}), QString());
    EXPECT_EQ(ListFileOfArguments({}), QString());
}

TEST(ListFileOfArgumentsTest, DebugAlone_NoListFile) {
    EXPECT_EQ(ListFileOfArguments({QStringLiteral("velmora"), QStringLiteral("/debug")}),
              QString());
}

TEST(ListFileOfArgumentsTest, AbsolutePath_IsTheListFile) {
    EXPECT_EQ(
        ListFileOfArguments({QStringLiteral("velmora"), QStringLiteral("/music/My List.vlr")}),
        QStringLiteral("/music/My List.vlr"));
}

TEST(ListFileOfArgumentsTest, RelativePath_IsTakenFromTheCurrentFolder) {
    EXPECT_EQ(ListFileOfArguments({QStringLiteral("velmora"), QStringLiteral("lists/a.vlr")}),
              QDir::currentPath() + QStringLiteral("/lists/a.vlr"));
}

TEST(ListFileOfArgumentsTest, DebugBesideAFile_TheFileIsTheListFile) {
    // "/debug" with a file is no debug run (IsDebugCommandLine), and the file
    // opens all the same, wherever it stands.
    const QString file = QStringLiteral("/music/a.vlr");
    EXPECT_EQ(ListFileOfArguments({QStringLiteral("velmora"), QStringLiteral("/debug"), file}),
              file);
    EXPECT_EQ(ListFileOfArguments({QStringLiteral("velmora"), file, QStringLiteral("/debug")}),
              file);
    EXPECT_FALSE(IsDebugCommandLine({QStringLiteral("velmora"), QStringLiteral("/debug"), file}));
}

TEST(ListFileOfArgumentsTest, SeveralFiles_TheFirstIsTheListFile) {
    EXPECT_EQ(ListFileOfArguments(
                  {QStringLiteral("velmora"), QStringLiteral("/a.vlr"), QStringLiteral("/b.vlr")}),
              QStringLiteral("/a.vlr"));
}
