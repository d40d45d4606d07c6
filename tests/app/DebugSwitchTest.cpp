#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <functional>

#include "app/Startup.h"

namespace {

// The program as built, beside the test programs.
QString programPath() {
    return QCoreApplication::applicationDirPath() + QStringLiteral("/velmora");
}

// Runs the program with its own per-user folder and the given arguments until
// the condition on that folder holds or the time is up; then ends it.
class ProgramRun {
public:
    explicit ProgramRun(const QStringList& arguments) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_DATA_HOME"), home_.path());
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        process_.setProcessEnvironment(environment);
        process_.setProcessChannelMode(QProcess::MergedChannels);
        process_.start(programPath(), arguments);
    }
    ~ProgramRun() {
        process_.kill();
        process_.waitForFinished(5000);
    }
    bool started() { return process_.waitForStarted(10000); }
    QString appData() const { return home_.path() + QStringLiteral("/Kestor/Velmora"); }
    QStringList logs() const {
        return QDir(appData()).entryList({QStringLiteral("*.log")}, QDir::Files);
    }
    bool waitFor(const std::function<bool()>& condition) {
        QDeadlineTimer deadline(20000);
        while (!deadline.hasExpired()) {
            if (condition()) {
                return true;
            }
            if (process_.state() == QProcess::NotRunning) {
                return condition();
            }
            QThread::msleep(50);
        }
        return condition();
    }

private:
    QTemporaryDir home_;
    QProcess process_;
};

TEST(CommandLineOf, KeepsEveryArgumentInItsOrder) {
    const char* argv[] = {"velmora", "-style", "fusion", "/debug"};
    EXPECT_EQ(CommandLineOf(4, argv), (QStringList{"velmora", "-style", "fusion", "/debug"}));
    EXPECT_FALSE(IsDebugCommandLine(CommandLineOf(4, argv)));
    const char* alone[] = {"velmora", "/debug"};
    EXPECT_TRUE(IsDebugCommandLine(CommandLineOf(2, alone)));
}

TEST(DebugSwitch, ProgramStartedWithDebugAlone_StartsALog) {
    ASSERT_TRUE(QFileInfo(programPath()).isExecutable()) << qPrintable(programPath());
    ProgramRun run({QStringLiteral("/debug")});
    ASSERT_TRUE(run.started());
    EXPECT_TRUE(run.waitFor([&] { return !run.logs().isEmpty(); }));
}

TEST(DebugSwitch, ProgramStartedWithAToolkitOptionBeforeDebug_StartsNoLog) {
    ASSERT_TRUE(QFileInfo(programPath()).isExecutable()) << qPrintable(programPath());
    ProgramRun run({QStringLiteral("-style"), QStringLiteral("fusion"), QStringLiteral("/debug")});
    ASSERT_TRUE(run.started());
    // The settings are copied after the debug step: once they are there, a
    // log would have been made already.
    ASSERT_TRUE(run.waitFor([&] { return QFileInfo::exists(run.appData() + "/Settings.ini"); }));
    EXPECT_EQ(run.logs(), QStringList());
}

}  // namespace
