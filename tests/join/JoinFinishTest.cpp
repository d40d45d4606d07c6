#include <gtest/gtest.h>

#include <QUrl>

#include "join/FinishWizard.h"
#include "join/JoinRunTestBed.h"
#include "platform/Shell.h"

namespace {
class JoinFinishTest : public ::testing::Test {
protected:
    void SetUp() override {
        output = bed.media + QStringLiteral("/a, b & 'c'.mp3");
        bed.setOutput(output);
        bed.makeMp3List({});
        bed.state.setTimerEnabled(true);
        bed.state.setElapsedTimerEnabled(true);
        bed.state.setOperationText(QStringLiteral("Operation 2 of 2"));
        bed.state.setProgressMax(5000.0F);
        bed.state.setProgressValue(1000.0F);
        bed.state.setWindowCaption(QStringLiteral("Join Wizard (20%)"));
        bed.state.setWrittenSizeText(QStringLiteral("1 KB"));
    }
    JoinRunTestBed bed;
    QString output;
};
}  // namespace

TEST_F(JoinFinishTest, Finished_SetsEveryValue) {
    JoinRunTestBed::writeFile(output, QByteArray(4096, 'x'));
    const QString log = bed.dir.path() + QStringLiteral("/debug.log");
    StartLogging(log, 2);
    FinishWizard(bed.model, bed.state, JoinEnd::Finished);
    StopLogging();
    EXPECT_EQ(JoinRunTestBed::readFile(log), QByteArray("Operation2 Size=1 KB\n"));
    EXPECT_FALSE(bed.state.timerEnabled());
    EXPECT_FALSE(bed.state.elapsedTimerEnabled());
    EXPECT_EQ(bed.state.windowCaption(), QStringLiteral("Join Wizard"));
    EXPECT_EQ(bed.state.headerSubText(), QStringLiteral("You may now close this wizard..."));
    EXPECT_EQ(bed.state.elapsedTimeCaption(), QStringLiteral("Time taken:"));
    EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral("4 KB"));
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
    EXPECT_EQ(bed.state.progressValue(), 5000.0F);
    EXPECT_EQ(bed.state.cancelButtonCaption(), QStringLiteral("&Close"));
    EXPECT_TRUE(bed.state.cancelButtonEnabled());
    EXPECT_TRUE(bed.state.optionsButtonEnabled());
    EXPECT_TRUE(bed.state.launchFileEnabled());
    EXPECT_TRUE(bed.state.openFolderEnabled());
    EXPECT_TRUE(bed.state.setID3TagEnabled());
}

TEST_F(JoinFinishTest, OutputUnderHalfKB_ShowsKBAlone) {
    JoinRunTestBed::writeFile(output, QByteArray(300, 'x'));
    FinishWizard(bed.model, bed.state, JoinEnd::Finished);
    EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral(" KB"));
}

TEST_F(JoinFinishTest, Cancelled_ShowsCancelled_OptionsOff) {
    FinishWizard(bed.model, bed.state, JoinEnd::Cancelled);
    EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral("[Cancelled]"));
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Cancelled!"));
    EXPECT_EQ(bed.state.progressValue(), 5000.0F);
    EXPECT_FALSE(bed.state.optionsButtonEnabled());
    EXPECT_EQ(bed.state.cancelButtonCaption(), QStringLiteral("&Close"));
}

TEST_F(JoinFinishTest, Failed_ShowsFailed_BarWhereItStood_OptionsOff) {
    FinishWizard(bed.model, bed.state, JoinEnd::Failed);
    EXPECT_FALSE(bed.state.timerEnabled());
    EXPECT_FALSE(bed.state.elapsedTimerEnabled());
    EXPECT_EQ(bed.state.windowCaption(), QStringLiteral("Join Wizard"));
    EXPECT_EQ(bed.state.headerSubText(), QStringLiteral("You may now close this wizard..."));
    EXPECT_EQ(bed.state.elapsedTimeCaption(), QStringLiteral("Time taken:"));
    EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral("[Failed]"));
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Failed!"));
    EXPECT_EQ(bed.state.progressValue(), 1000.0F);
    EXPECT_FALSE(bed.state.optionsButtonEnabled());
    EXPECT_EQ(bed.state.cancelButtonCaption(), QStringLiteral("&Close"));
    EXPECT_TRUE(bed.state.cancelButtonEnabled());
}

TEST_F(JoinFinishTest, NoOutput_StopsAfterTimeTaken) {
    FinishWizard(bed.model, bed.state, JoinEnd::Finished);
    EXPECT_EQ(bed.state.elapsedTimeCaption(), QStringLiteral("Time taken:"));
    EXPECT_EQ(bed.state.windowCaption(), QStringLiteral("Join Wizard"));
    EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral("1 KB"));
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Operation 2 of 2"));
    EXPECT_EQ(bed.state.progressValue(), 1000.0F);
    EXPECT_EQ(bed.state.cancelButtonCaption(), QStringLiteral("&Cancel"));
    EXPECT_FALSE(bed.state.optionsButtonEnabled());
}

TEST_F(JoinFinishTest, LaunchFile_OpensOutputWithTheDesktopsProgram) {
    QStringList launched;
    const auto previous = setShellLauncherHook(
        [&](const QString& program, const QStringList& arguments, const QString&) {
            launched << program << arguments;
            return true;
        });
    JoinRun& run = bed.makeRun();
    run.launchFile();
    run.launchFile();  // any number of times
    setShellLauncherHook(previous);
    ASSERT_EQ(launched.size(), 4);
    EXPECT_TRUE(launched[0].endsWith(QStringLiteral("xdg-open")));
    EXPECT_EQ(launched[1], output);
}

TEST_F(JoinFinishTest, OpenFolder_ShowsTheOutputSelected) {
    JoinRunTestBed::writeFile(output, "joined");
    QString method;
    QStringList uris;
    const auto previous = setFileManagerCallHook([&](const QString& m, const QStringList& u) {
        method = m;
        uris = u;
        return true;
    });
    JoinRun& run = bed.makeRun();
    run.openFolder();
    setFileManagerCallHook(previous);
    EXPECT_EQ(method, QStringLiteral("ShowItems"));
    ASSERT_EQ(uris.size(), 1);
    EXPECT_EQ(QUrl(uris[0]).toLocalFile(), output);
}

TEST_F(JoinFinishTest, SetID3Tag_HandsOutputToTheTagEditor) {
    QString asked;
    QObject::connect(&bed.state, &JoinWizardState::tagEditorRequested,
                     [&](const QString& path) { asked = path; });
    JoinRun& run = bed.makeRun();
    run.setID3Tag();
    EXPECT_EQ(asked, output);
}
