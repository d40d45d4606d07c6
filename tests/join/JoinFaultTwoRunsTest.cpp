// Two runs of the program at the same time, sharing AppDataFolder and its
// Settings.ini. The second run is this test program started again in the
// role of a program run (the disabled test below), told by its environment
// where the shared folder is and what to do.
#include <gtest/gtest.h>

#include <QMap>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRandomGenerator>
#include <QSysInfo>

#include "app/IniFile.h"
#include "app/WindowSettings.h"
#include "join/JoinFaultSupport.h"
#include "join/JoinLock.h"
#include "list/ListFunctions.h"

namespace {

const char kRoleVariable[] = "VELMORA_SECOND_RUN_ROLE";
const char kFolderVariable[] = "VELMORA_SECOND_RUN_APPDATA";
const char kNameVariable[] = "VELMORA_SECOND_RUN_NAME";
const char kSourcesVariable[] = "VELMORA_SECOND_RUN_SOURCES";
const char kOutputVariable[] = "VELMORA_SECOND_RUN_OUTPUT";
constexpr int kCloses = 60;

// What a run writes when one of its windows closes: the window's own keys,
// the last folder of a dialog, and a key only this run and this close write.
void closeWindows(const QString& name, int close) {
    TipsControls tips;
    tips.ShowAtStartup = close % 2;
    SaveTipsSettings(tips);
    WriteSetting(QStringLiteral("Commondialog"), QStringLiteral("Folder") + name,
                 QStringLiteral("/media/%1/%2").arg(name).arg(close));
    WriteSetting(QStringLiteral("Run") + name, QStringLiteral("Close%1").arg(close),
                 QString::number(close));
}

QProcess* startSecondRun(const QString& role, const QString& appData, const QString& name,
                         const QStringList& sources = {}, const QString& output = {}) {
    auto* process = new QProcess;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QLatin1String(kRoleVariable), role);
    environment.insert(QLatin1String(kFolderVariable), appData);
    environment.insert(QLatin1String(kNameVariable), name);
    environment.insert(QLatin1String(kSourcesVariable), sources.join(u'\n'));
    environment.insert(QLatin1String(kOutputVariable), output);
    process->setProcessEnvironment(environment);
    process->setProcessChannelMode(QProcess::MergedChannels);
    process->start(QCoreApplication::applicationFilePath(),
                   {QStringLiteral("--gtest_filter=SecondRun.DISABLED_ActsAsAProgramRun"),
                    QStringLiteral("--gtest_also_run_disabled_tests")});
    return process;
}

bool endedWell(QProcess* process) {
    const bool ended = process->waitForFinished(240000);
    if (!ended || process->exitStatus() != QProcess::NormalExit || process->exitCode() != 0) {
        ADD_FAILURE() << "second run failed:\n" << process->readAll().toStdString();
        return false;
    }
    return true;
}

}  // namespace

// The second run. Roles: "closes" closes its windows kCloses times; "join"
// joins the given sources into the output and clicks "&Close".
TEST(SecondRun, DISABLED_ActsAsAProgramRun) {
    const QString role = qEnvironmentVariable(kRoleVariable);
    if (role.isEmpty()) {
        GTEST_SKIP() << "only started by the two-runs tests";
    }
    const QString appData = qEnvironmentVariable(kFolderVariable);
    const QString name = qEnvironmentVariable(kNameVariable);
    if (role == QStringLiteral("closes")) {
        SetAppDataFolder(appData);
        for (int close = 0; close < kCloses; ++close) {
            closeWindows(name, close);
        }
        return;
    }
    if (role == QStringLiteral("refused join")) {
        // A join started while the first run's join holds the lock: one
        // message, and the pre-flight goes no further.
        JoinRunTestBed bed;
        SetAppDataFolder(appData);
        bed.appData = appData;
        bed.makeMpegList(qEnvironmentVariable(kSourcesVariable).split(u'\n'), QString());
        bed.model.state.setListStatusText(QStringLiteral("Green"));
        bed.model.state.setSizeCaption(QStringLiteral("1 KB"));
        bed.questions.chooseFile(qEnvironmentVariable(kOutputVariable));
        bed.questions.answer(Msg::Yes);
        ASSERT_FALSE(StartJoin(bed.model));
        ASSERT_EQ(bed.questions.asked.size(), 1);
        EXPECT_EQ(bed.questions.asked[0].prompt, JoinLockedMessage());
        EXPECT_EQ(bed.questions.asked[0].style, Msg::OkOnly + Msg::Exclamation);
        return;
    }
    ASSERT_EQ(role, QStringLiteral("join"));
    JoinRunTestBed bed;
    bed.putRealTools();
    SetAppDataFolder(appData);
    bed.appData = appData;
    SetFreeBytesSource([](QString&) { return 1e12; });
    bed.makeMpegList(qEnvironmentVariable(kSourcesVariable).split(u'\n'), QString());
    bed.model.state.setListStatusText(QStringLiteral("Green"));
    bed.model.state.setSizeCaption(QStringLiteral("1 KB"));
    bed.questions.chooseFile(qEnvironmentVariable(kOutputVariable));
    ASSERT_TRUE(StartJoin(bed.model));
    bed.makeRun().load(true);
    ASSERT_TRUE(JoinRunTestBed::waitUntil([&] { return bed.finished(); }, 120000));
    ASSERT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
    bed.run->cancelClicked();
    closeWindows(name, kCloses);
    SetFreeBytesSource({});
}

TEST(JoinFaultTwoRunsTest, BothRunsCloseAtOnce_NeitherLosesTheOthersSettings) {
    JoinRunTestBed bed;
    JoinRunTestBed::writeFile(SettingsFile(), "[Tips]\nShowAtStartup=1\n");
    QProcess* first = startSecondRun(QStringLiteral("closes"), bed.appData, QStringLiteral("A"));
    QProcess* second = startSecondRun(QStringLiteral("closes"), bed.appData, QStringLiteral("B"));
    // This run closes its windows at the same time.
    for (int close = 0; close < kCloses; ++close) {
        closeWindows(QStringLiteral("C"), close);
    }
    const bool ended = endedWell(first) && endedWell(second);
    delete first;
    delete second;
    ASSERT_TRUE(ended);

    for (const QString& name : {QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")}) {
        EXPECT_EQ(ReadSetting(QStringLiteral("Commondialog"), QStringLiteral("Folder") + name),
                  QStringLiteral("/media/%1/%2").arg(name).arg(kCloses - 1));
        for (int close = 0; close < kCloses; ++close) {
            EXPECT_EQ(
                ReadSetting(QStringLiteral("Run") + name, QStringLiteral("Close%1").arg(close)),
                QString::number(close))
                << name.toStdString() << " close " << close;
        }
    }
    EXPECT_EQ(ReadSetting(QStringLiteral("Tips"), QStringLiteral("ShowAtStartup")),
              QString::number((kCloses - 1) % 2));
}

TEST(JoinFaultTwoRunsTest, JoinInTheOtherRun_LeavesThisRunsListAndSettings) {
    JoinRunTestBed bed;
    SourceGuard sources;
    QStringList paths;
    for (int i = 0; i < 4; ++i) {
        QByteArray data(40000 + i * 1000, Qt::Uninitialized);
        for (char& c : data) {
            c = static_cast<char>(QRandomGenerator::global()->bounded(256));
        }
        paths << bed.media + QStringLiteral("/part %1.mpg").arg(i);
        JoinRunTestBed::writeFile(paths.last(), data);
        sources.remember(paths.last());
    }
    // This run's list: the same files, saved to a list file.
    NewItemList(bed.model, QStringLiteral("MPEG"));
    for (const QString& path : paths) {
        const int row = bed.model.items.addRow(QFileInfo(path).fileName());
        bed.model.items.setCell(row, 3, path);
    }
    const QString listFile = bed.media + QStringLiteral("/mine.vlr");
    bed.model.commonDialog.fileName = listFile;
    bed.model.state.setListFileName(listFile);
    SaveList(bed.model, 0);
    const QByteArray listBytes = ListFileText(bed.model);
    ASSERT_EQ(JoinRunTestBed::readFile(listFile), listBytes);

    const QString output = bed.dir.path() + QStringLiteral("/other run/joined.mpg");
    QDir().mkpath(QFileInfo(output).path());
    QProcess* other =
        startSecondRun(QStringLiteral("join"), bed.appData, QStringLiteral("J"), paths, output);
    for (int close = 0; close < kCloses; ++close) {
        closeWindows(QStringLiteral("L"), close);
    }
    const bool ended = endedWell(other);
    delete other;
    ASSERT_TRUE(ended);

    // The other run joined and cleaned up after itself.
    QByteArray joined;
    for (const QString& path : paths) {
        joined += JoinRunTestBed::readFile(path);
    }
    EXPECT_EQ(JoinRunTestBed::readFile(output), joined);
    EXPECT_EQ(AppDataLeftovers(bed), QStringList());
    // This run's list, its files and its list file are as they were, and its
    // settings and the other's last close are both there.
    EXPECT_EQ(ListFileText(bed.model), listBytes);
    RemoveDeadFiles(bed.model);
    EXPECT_EQ(bed.model.items.count(), paths.size());
    sources.expectUnchanged();
    bed.questions.chooseFile(listFile);
    OpenList(bed.model);
    EXPECT_EQ(ListFileText(bed.model), listBytes);
    EXPECT_EQ(ReadSetting(QStringLiteral("Commondialog"), QStringLiteral("FolderL")),
              QStringLiteral("/media/L/%1").arg(kCloses - 1));
    EXPECT_EQ(ReadSetting(QStringLiteral("Commondialog"), QStringLiteral("FolderJ")),
              QStringLiteral("/media/J/%1").arg(kCloses));
}

// Every entry of AppDataFolder with its bytes (folders as "<folder>").
static QMap<QString, QByteArray> appDataSnapshot(const JoinRunTestBed& bed) {
    QMap<QString, QByteArray> snapshot;
    for (const QString& entry : bed.appDataEntries()) {
        const QString path = bed.appData + u'/' + entry;
        snapshot.insert(entry, QFileInfo(path).isDir() ? QByteArray("<folder>")
                                                       : JoinRunTestBed::readFile(path));
    }
    return snapshot;
}

TEST(JoinFaultTwoRunsTest, JoinStartedInTheOtherRunWhileThisJoins_IsRefusedAndChangesNothing) {
    JoinRunTestBed bed;
    bed.putRealTools();
    SourceGuard sources;
    SetFreeBytesSource([](QString&) { return 1e12; });
    QStringList paths;
    for (int i = 0; i < 2; ++i) {
        paths << bed.media + QStringLiteral("/part %1.mpg").arg(i);
        JoinRunTestBed::writeFile(paths.last(), QByteArray(30000 + i, char('a' + i)));
        sources.remember(paths.last());
    }
    bed.makeMpegList(paths, QString());
    bed.model.state.setListStatusText(QStringLiteral("Green"));
    bed.model.state.setSizeCaption(QStringLiteral("1 KB"));
    const QString output = bed.dir.path() + QStringLiteral("/joined.mpg");
    bed.questions.chooseFile(output);
    ASSERT_TRUE(StartJoin(bed.model));
    ASSERT_TRUE(JoinLockHeld());
    ASSERT_TRUE(QFile::exists(bed.appData + u'/' + kJoinLockName));

    // The other run wants the same scripts for a join into a file that
    // exists; the Yes to overwrite it is never asked for.
    const QString otherOutput = bed.dir.path() + QStringLiteral("/other.mpg");
    JoinRunTestBed::writeFile(otherOutput, "the other run's old file");
    const QString keyBefore =
        ReadSetting(QStringLiteral("Commondialog"), QStringLiteral("JoinFiles"));
    const QMap<QString, QByteArray> before = appDataSnapshot(bed);
    ASSERT_TRUE(before.contains(QStringLiteral("TempFile.bat")));
    QProcess* other = startSecondRun(QStringLiteral("refused join"), bed.appData,
                                     QStringLiteral("R"), paths, otherOutput);
    const bool ended = endedWell(other);
    delete other;
    ASSERT_TRUE(ended);
    EXPECT_EQ(appDataSnapshot(bed), before);
    EXPECT_EQ(JoinRunTestBed::readFile(otherOutput), QByteArray("the other run's old file"));
    EXPECT_EQ(ReadSetting(QStringLiteral("Commondialog"), QStringLiteral("JoinFiles")), keyBefore);

    // This run's join goes on undisturbed, and its close lets go of the lock.
    bed.makeRun().load(true);
    ASSERT_TRUE(JoinRunTestBed::waitUntil([&] { return bed.finished(); }, 120000));
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
    EXPECT_EQ(JoinRunTestBed::readFile(output),
              JoinRunTestBed::readFile(paths[0]) + JoinRunTestBed::readFile(paths[1]));
    bed.run->cancelClicked();
    EXPECT_FALSE(JoinLockHeld());
    EXPECT_EQ(AppDataLeftovers(bed), QStringList());
    sources.expectUnchanged();
    SetFreeBytesSource({});
}

TEST(JoinLock, LockOfACopyThatIsGone_IsTakenOver) {
    JoinRunTestBed bed;
    ReleaseJoinLock();
    // A lock file whose process no longer runs, as a crash leaves it.
    QProcess gone;
    gone.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), QStringLiteral("echo $$")});
    ASSERT_TRUE(gone.waitForFinished(5000));
    const QByteArray pid = gone.readAllStandardOutput().trimmed();
    ASSERT_FALSE(pid.isEmpty());
    JoinRunTestBed::writeFile(bed.appData + u'/' + kJoinLockName,
                              pid + "\nvelmora\n" + QSysInfo::machineHostName().toUtf8() + '\n');
    EXPECT_TRUE(AcquireJoinLock());
    EXPECT_TRUE(JoinLockHeld());
    ReleaseJoinLock();
    EXPECT_FALSE(QFile::exists(bed.appData + u'/' + kJoinLockName));
}
