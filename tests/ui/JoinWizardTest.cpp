#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>

#include "WindowPicture.h"
#include "app/AppPaths.h"
#include "join/JoinWizardState.h"
#include "join/StartJoin.h"
#include "list/FillListItem.h"
#include "list/ListFunctions.h"
#include "list/ListTotals.h"
#include "list/MainModel.h"
#include "media/ID3Reader.h"
#include "platform/ProcessKiller.h"
#include "platform/Shell.h"
#include "support/FolderEntries.h"
#include "support/MediaMaker.h"
#include "support/MemoryClipboard.h"
#include "support/ScriptedQuestions.h"
#include "ui/ID3Tag.h"
#include "ui/JoinWizard.h"
#include "ui/TextFitCheck.h"

namespace {

QRect twips(int left, int top, int width, int height) {
    return QRect(qRound(left / 15.0), qRound(top / 15.0), qRound(width / 15.0),
                 qRound(height / 15.0));
}

bool waitUntil(const std::function<bool()>& done, int ms) {
    QDeadlineTimer deadline(ms);
    while (!done()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return true;
}

class JoinWizardTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        appData = dir.filePath("appdata");
        install = dir.filePath("install");
        media = dir.filePath("media");
        QDir().mkpath(appData);
        QDir().mkpath(install);
        QDir().mkpath(media);
        SetAppDataFolder(appData);
        SetInstallFolderOverride(install);
        // The real tools under their install names.
        QFile::copy(VELMORA_MP3_FIX_TOOL, install + "/MP3.dll");
        QFile::copy("/usr/bin/mpgtx", install + "/MPEG.dll");
        QFile::copy("/usr/bin/ffmpeg", install + "/MPEG2.dll");
        // Only processes of this test's folders may be ended by name.
        const QString root = dir.path() + u'/';
        previousFilter = setProcessKillFilter(
            [root](qint64 pid) { return ExecutablePathOf(pid).startsWith(root); });
        previousLauncher = setShellLauncherHook(
            [this](const QString& program, const QStringList& arguments, const QString&) {
                launched.append(program + u' ' + arguments.join(u' '));
                return true;
            });
    }
    void TearDown() override {
        setShellLauncherHook(previousLauncher);
        setProcessKillFilter(previousFilter);
        SetInstallFolderOverride(QString());
        SetAppDataFolder(QString());
    }

    void fillList(const QString& listType, const QStringList& paths) {
        NewItemList(model, listType);
        for (const QString& path : paths) {
            const int row = model.items.addRow();
            model.items.setCell(row, 3, path);
            FillListItem(model, 0);
        }
        UpdateListTotals(model);
    }

    QString makeMp3(const QString& name, double seconds, int hz) {
        Mp3Options options;
        options.seconds = seconds;
        options.frequencyHz = hz;
        const QString path = MakeMp3(media, name, options);
        EXPECT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
        return path;
    }

    QString makeMpeg2(const QString& name, double seconds) {
        MpegOptions options;
        options.mpegVersion = 2;
        options.seconds = seconds;
        const QString path = MakeMpeg(media, name, options);
        EXPECT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
        return path;
    }

    // Holds the first script after its copies: its shell sleeps before the
    // line that removes the marker, so that the run stays in its first
    // operation, the shell alive, until the user cancels.
    void holdFirstScript() {
        QFile script(appData + "/TempFile.bat");
        ASSERT_TRUE(script.open(QIODevice::ReadOnly));
        QByteArray text = script.readAll();
        script.close();
        const qsizetype removal = text.indexOf("\nrmdir ");
        ASSERT_GT(removal, 0) << text.toStdString();
        text.insert(removal + 1, "sleep 60\n");
        ASSERT_TRUE(script.open(QIODevice::WriteOnly | QIODevice::Truncate));
        script.write(text);
    }

    QStringList appDataEntries() const {
        QStringList entries = EntriesBelow(appData);
        entries.removeAll("Settings.ini");
        return entries;
    }

    // Records every caption the window shows while the run goes on.
    void watch(JoinWizard& window) {
        QObject::connect(&window.state(), &JoinWizardState::changed, &window, [this, &window] {
            const QString title = window.windowTitle();
            if (titles.isEmpty() || titles.last() != title) {
                titles.append(title);
            }
            const QString operation = window.findChild<QLabel*>("lblOperation")->text();
            if (operations.isEmpty() || operations.last() != operation) {
                operations.append(operation);
            }
            clock = window.findChild<QLabel*>("ElapsedTimeLabel")->text();
        });
    }

    static QString text(JoinWizard& window, const char* name) {
        if (auto* label = window.findChild<QLabel*>(name)) {
            return label->text();
        }
        return window.findChild<QPushButton*>(name)->text();
    }

    // Runs a join through the window from StartJoin to "Finished!".
    void joinToTheEnd(JoinWizard& window, const QString& output) {
        watch(window);
        window.show();
        ASSERT_TRUE(
            waitUntil([&] { return window.state().operationText() == "Finished!"; }, 180000))
            << window.state().operationText().toStdString();
        EXPECT_TRUE(operations.contains("Operation 1 of 2"));
        EXPECT_TRUE(operations.contains("Operation 2 of 2"));
        EXPECT_EQ(operations.last(), "Finished!");
        EXPECT_EQ(window.windowTitle(), "Join Wizard");
        EXPECT_EQ(text(window, "HeaderSubText"), "You may now close this wizard...");
        EXPECT_EQ(text(window, "ElapsedTime"), "Time taken:");
        EXPECT_EQ(text(window, "lblOperation"), "Finished!");
        EXPECT_TRUE(text(window, "WrittenSizeLabel").endsWith(" KB"));
        EXPECT_EQ(text(window, "CancelButton"), "&Close");
        EXPECT_TRUE(window.findChild<QPushButton*>("OptionsButton")->isEnabled());
        auto* bar = window.findChild<QProgressBar*>("ProgressBar");
        EXPECT_EQ(bar->value(), bar->maximum());
        EXPECT_FALSE(window.findChild<QTimer*>("Timer")->isActive());
        EXPECT_FALSE(window.findChild<QTimer*>("ElapsedTimer")->isActive());
        EXPECT_GT(QFileInfo(output).size(), 0);
        EXPECT_FALSE(QFile::exists(output + ".vlr.mp3"));
        EXPECT_FALSE(QFile::exists(output + ".vlr.mpg"));
    }

    void closeWithTheCloseButton(JoinWizard& window) {
        window.findChild<QPushButton*>("CancelButton")->click();
        EXPECT_FALSE(window.isVisible());
        EXPECT_EQ(appDataEntries(), QStringList());
    }

    QTemporaryDir dir;
    QString appData;
    QString install;
    QString media;
    ProcessKillFilter previousFilter;
    ShellLauncher previousLauncher;
    QStringList launched;
    QStringList titles;
    QStringList operations;
    QString clock;
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainModel model{questions, clipboard};
};

TEST_F(JoinWizardTest, Controls_StandInTheirPlacesWithTheirCaptions) {
    JoinWizard window(model);
    EXPECT_TRUE(window.isModal());
    EXPECT_EQ(window.size(), QSize(312, 192));  // 4680 x 2880 twips
    const QString family = window.font().family();
    EXPECT_TRUE(family == "Verdana" || family == "DejaVu Sans") << family.toStdString();
    EXPECT_EQ(window.windowTitle(), "Join Wizard");

    struct Place {
        const char* name;
        QRect rect;
        const char* caption;
    };
    const QList<Place> places = {
        {"HeaderBackground", twips(0, 0, 6375, 735), ""},
        {"HeaderText", twips(1080, 120, 3420, 240), "Join Wizard"},
        {"HeaderSubText", twips(1080, 360, 3420, 255), "Your files are being joined..."},
        {"Frame1", twips(120, 780, 4455, 915), nullptr},
        {"ElapsedTime", twips(720, 240, 1815, 240), "Elapsed time:"},
        {"ElapsedTimeLabel", twips(2640, 240, 1620, 240), "00:00:00"},
        {"WrittenSize", twips(720, 480, 1830, 240), "Total written size:"},
        {"WrittenSizeLabel", twips(2640, 480, 1620, 240), "0 KB"},
        {"lblOperation", twips(120, 1800, 1395, 195), "Initializing..."},
        {"ProgressBar", twips(120, 2040, 4455, 255), nullptr},
        {"CancelButton", twips(1313, 2400, 975, 375), "&Cancel"},
        {"OptionsButton", twips(2393, 2400, 975, 375), "&Options"},
        {"Ford", twips(240, 3840, 1095, 375), "Mondeo (UI)"},
    };
    for (const Place& place : places) {
        QWidget* w = window.findChild<QWidget*>(place.name);
        ASSERT_NE(w, nullptr) << place.name;
        EXPECT_EQ(w->geometry(), place.rect) << place.name;
        if (place.caption != nullptr) {
            EXPECT_EQ(text(window, place.name), QString::fromUtf8(place.caption)) << place.name;
        }
    }
    auto* frame = window.findChild<QGroupBox*>("Frame1");
    for (const char* name :
         {"Image1", "ElapsedTime", "ElapsedTimeLabel", "WrittenSize", "WrittenSizeLabel"}) {
        EXPECT_EQ(window.findChild<QWidget*>(name)->parentWidget(), frame) << name;
    }
    EXPECT_TRUE(window.findChild<QLabel*>("HeaderText")->font().bold());
    EXPECT_FALSE(window.findChild<QPushButton*>("OptionsButton")->isEnabled());
    EXPECT_GE(window.findChild<QPushButton*>("Ford")->geometry().top(), window.height());

    QMenu* menu = window.optionsMenu();
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->objectName(), "OptionsMenu");
    EXPECT_EQ(menu->title(), "&Options");
    const QList<QAction*> actions = menu->actions();
    ASSERT_EQ(actions.size(), 4);
    EXPECT_EQ(actions[0]->objectName(), "OptionsLaunchFile");
    EXPECT_EQ(actions[0]->text(), "&Launch File");
    EXPECT_EQ(actions[1]->objectName(), "OptionsOpenFolder");
    EXPECT_EQ(actions[1]->text(), "&Open Folder");
    EXPECT_TRUE(actions[2]->isSeparator());
    EXPECT_EQ(actions[2]->objectName(), "OptionsSeperator1");
    EXPECT_EQ(actions[3]->objectName(), "OptionsSetID3Tag");
    EXPECT_EQ(actions[3]->text(), "&Set ID3 Tag");

    EXPECT_EQ(window.findChild<QTimer*>("Timer")->interval(), 10);
    EXPECT_EQ(window.findChild<QTimer*>("ElapsedTimer")->interval(), 1000);
    // Nothing runs before the window is shown.
    EXPECT_FALSE(window.findChild<QTimer*>("Timer")->isActive());
    EXPECT_FALSE(QFile::exists(appData + "/JoinTemp"));
}

// The end of each script moves the run on at once: with Timer slowed to an
// hour, the join still goes from its start to "Finished!".
TEST_F(JoinWizardTest, Mp3Join_TimerOfAnHour_ScriptEndsStillCarryItToFinished) {
    if (!HaveFfmpeg()) {
        GTEST_SKIP() << "ffmpeg is needed to make the MP3 files";
    }
    const QStringList sources = {makeMp3("one.mp3", 2, 440), makeMp3("two.mp3", 2, 550)};
    fillList("MP3", sources);
    const QString output = media + "/joined.mp3";
    questions.chooseFile(output);
    ASSERT_TRUE(StartJoin(model));
    JoinWizard window(model);
    window.findChild<QTimer*>("Timer")->setInterval(3600 * 1000);
    watch(window);
    window.show();
    ASSERT_TRUE(waitUntil([&] { return window.state().operationText() == "Finished!"; }, 60000))
        << window.state().operationText().toStdString();
    EXPECT_TRUE(operations.contains("Operation 2 of 2"));
    EXPECT_GT(QFileInfo(output).size(), 0);
    EXPECT_FALSE(QFile::exists(output + ".vlr.mp3"));
    closeWithTheCloseButton(window);
}

TEST_F(JoinWizardTest, Mp3Join_FromStartJoinToFinishedAndClose) {
    if (!HaveFfmpeg()) {
        GTEST_SKIP() << "ffmpeg is needed to make the MP3 files";
    }
    const QStringList sources = {makeMp3("one.mp3", 3, 440), makeMp3("two.mp3", 4, 550)};
    fillList("MP3", sources);
    const QString output = media + "/joined.mp3";
    questions.chooseFile(output);
    ASSERT_TRUE(StartJoin(model));
    JoinWizard window(model);
    joinToTheEnd(window, output);

    // The Options menu pops up at the button; its actions work on the output.
    window.findChild<QPushButton*>("OptionsButton")->click();
    EXPECT_TRUE(window.optionsMenu()->isVisible());
    window.optionsMenu()->hide();
    window.optionsMenu()->actions()[0]->trigger();
    EXPECT_EQ(launched, QStringList{"xdg-open " + output});
    QString editorFile;
    QTimer::singleShot(0, [&] {
        auto* editor = qobject_cast<ID3Tag*>(QApplication::activeModalWidget());
        ASSERT_NE(editor, nullptr);
        editorFile = editor->fileName();
        editor->findChild<QPushButton*>("cmdCancel")->click();
    });
    window.optionsMenu()->actions()[3]->trigger();
    EXPECT_EQ(editorFile, output);
    EXPECT_TRUE(window.isVisible());  // the window stays open after the actions

    closeWithTheCloseButton(window);
    EXPECT_GT(QFileInfo(output).size(), 0);
}

TEST_F(JoinWizardTest, ResultActions_EachUsedThreeTimesInARow_WindowStaysOpen) {
    if (!HaveFfmpeg()) {
        GTEST_SKIP() << "ffmpeg is needed to make the MP3 files";
    }
    QStringList folderCalls;
    const FileManagerCall previousCall =
        setFileManagerCallHook([&](const QString& method, const QStringList& uris) {
            folderCalls.append(method + u' ' + uris.join(u' '));
            return true;
        });
    fillList("MP3", {makeMp3("one.mp3", 2, 440), makeMp3("two.mp3", 2, 550)});
    const QString output = media + "/joined.mp3";
    questions.chooseFile(output);
    ASSERT_TRUE(StartJoin(model));
    JoinWizard window(model);
    joinToTheEnd(window, output);
    QAction* launch = window.findChild<QAction*>("OptionsLaunchFile");
    QAction* folder = window.findChild<QAction*>("OptionsOpenFolder");
    QAction* tag = window.findChild<QAction*>("OptionsSetID3Tag");
    ASSERT_TRUE(launch && folder && tag);

    for (int round = 1; round <= 3; ++round) {
        launch->trigger();
        EXPECT_TRUE(window.isVisible()) << round;
    }
    EXPECT_EQ(launched, QStringList(3, "xdg-open " + output));

    for (int round = 1; round <= 3; ++round) {
        folder->trigger();
        EXPECT_TRUE(window.isVisible()) << round;
    }
    const QString showItem =
        "ShowItems " + QUrl::fromLocalFile(output).toString(QUrl::FullyEncoded);
    EXPECT_EQ(folderCalls, QStringList(3, showItem));

    // Each use opens a new editor on the output; the last save is what stays.
    for (int round = 1; round <= 3; ++round) {
        QString editorFile;
        QTimer::singleShot(0, [&, round] {
            auto* editor = qobject_cast<ID3Tag*>(QApplication::activeModalWidget());
            ASSERT_NE(editor, nullptr);
            editorFile = editor->fileName();
            editor->findChild<QLineEdit*>("txtTitle")
                ->setText(QStringLiteral("Take %1").arg(round));
            editor->findChild<QPushButton*>("cmdSave")->click();
        });
        tag->trigger();
        EXPECT_EQ(editorFile, output) << round;
        EXPECT_TRUE(window.isVisible()) << round;
        ID3Reader reader;
        reader.setFileName(output);
        EXPECT_EQ(reader.Title(), QStringLiteral("Take %1").arg(round));
    }
    EXPECT_EQ(text(window, "lblOperation"), "Finished!");
    EXPECT_EQ(text(window, "CancelButton"), "&Close");
    setFileManagerCallHook(previousCall);
    closeWithTheCloseButton(window);
}

TEST_F(JoinWizardTest, Mpeg2Join_FromStartJoinToFinishedAndClose) {
    if (!HaveFfmpeg()) {
        GTEST_SKIP() << "ffmpeg is needed to make the MPEG files";
    }
    const QStringList sources = {makeMpeg2("one.mpg", 2), makeMpeg2("two.mpg", 3)};
    fillList("MPEG", sources);
    ASSERT_EQ(model.items.cell(1, 4), "MPEG-2V");
    const QString output = media + "/joined.mpg";
    questions.chooseFile(output);
    ASSERT_TRUE(StartJoin(model));
    JoinWizard window(model);
    joinToTheEnd(window, output);
    closeWithTheCloseButton(window);
}

TEST_F(JoinWizardTest, Mpeg1Join_Operation2ShowsTheOutputGrowing_ThenFinishedAndClose) {
    if (!HaveFfmpeg()) {
        GTEST_SKIP() << "ffmpeg is needed to make the MPEG files";
    }
    // A big source listed six times, so that the remake runs for a while.
    MpegOptions options;
    options.seconds = 10;
    options.videoKbps = 20000;
    const QString source = MakeMpeg(media, "big.mpg", options);
    ASSERT_FALSE(source.isEmpty()) << LastMediaMakerError().toStdString();
    fillList("MPEG", QStringList(6, source));
    ASSERT_EQ(model.items.cell(1, 4), "MPEG-1V");
    const QString output = media + "/joined.mpg";
    questions.chooseFile(output);
    ASSERT_TRUE(StartJoin(model));
    JoinWizard window(model);
    // The figures shown while the remake runs (its marker folder there).
    QStringList sizes;
    QObject::connect(&window.state(), &JoinWizardState::changed, &window, [&] {
        const QString size = text(window, "WrittenSizeLabel");
        if (text(window, "lblOperation") == "Operation 2 of 2" && size != "0 KB" &&
            QFileInfo(appData + "/JoinTemp").isDir() && (sizes.isEmpty() || sizes.last() != size)) {
            sizes << size;
        }
    });
    watch(window);
    window.show();
    ASSERT_TRUE(waitUntil([&] { return !sizes.isEmpty(); }, 120000));
    const QImage image = takePicture(window, "join-wizard-operation2.png");
    EXPECT_TRUE(hasContent(image));
    EXPECT_TRUE(window.windowTitle().startsWith("Join Wizard ("));
    joinToTheEnd(window, output);
    EXPECT_GE(sizes.size(), 2) << sizes.join(", ").toStdString();
    closeWithTheCloseButton(window);
}

TEST_F(JoinWizardTest, HeldJoin_CaptionsFollowTheRunAndCancelLeavesNothing) {
    if (!HaveFfmpeg()) {
        GTEST_SKIP() << "ffmpeg is needed to make the MP3 files";
    }
    const QStringList sources = {makeMp3("one.mp3", 3, 440), makeMp3("two.mp3", 4, 550)};
    fillList("MP3", sources);
    const QString output = media + "/joined.mp3";
    questions.chooseFile(output);
    ASSERT_TRUE(StartJoin(model));
    holdFirstScript();

    JoinWizard window(model);
    watch(window);
    window.show();
    EXPECT_EQ(text(window, "lblOperation"), "Operation 1 of 2");
    EXPECT_TRUE(window.findChild<QTimer*>("Timer")->isActive());
    EXPECT_TRUE(window.findChild<QTimer*>("ElapsedTimer")->isActive());
    // The joined file grows to the list's size: the percentage in the title.
    const QRegularExpression percent("^Join Wizard \\(\\d{1,3}%\\)$");
    ASSERT_TRUE(waitUntil([&] { return percent.match(window.windowTitle()).hasMatch(); }, 30000))
        << window.windowTitle().toStdString();
    // The clock goes on.
    ASSERT_TRUE(waitUntil([&] { return clock == "00:00:02"; }, 10000)) << clock.toStdString();
    EXPECT_EQ(text(window, "ElapsedTimeLabel"), "00:00:02");
    EXPECT_NE(text(window, "WrittenSizeLabel"), "0 KB");
    EXPECT_EQ(text(window, "lblOperation"), "Operation 1 of 2");

    window.findChild<QPushButton*>("CancelButton")->click();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(text(window, "lblOperation"), "Cancelled!");
    EXPECT_EQ(text(window, "WrittenSizeLabel"), "[Cancelled]");
    EXPECT_EQ(text(window, "CancelButton"), "&Close");
    EXPECT_EQ(text(window, "ElapsedTime"), "Time taken:");
    EXPECT_EQ(window.windowTitle(), "Join Wizard");
    EXPECT_FALSE(window.findChild<QPushButton*>("OptionsButton")->isEnabled());
    EXPECT_TRUE(window.findChild<QPushButton*>("Ford")->hasFocus() ||
                QApplication::focusWidget() == window.findChild<QPushButton*>("Ford"));
    EXPECT_FALSE(QFile::exists(output));
    EXPECT_FALSE(QFile::exists(output + ".vlr.mp3"));
    for (const QString& source : sources) {
        EXPECT_TRUE(QFile::exists(source));
    }
    closeWithTheCloseButton(window);
}

TEST_F(JoinWizardTest, CancelRightAway_EndsCancelledAndTheCloseBoxThenCloses) {
    if (!HaveFfmpeg()) {
        GTEST_SKIP() << "ffmpeg is needed to make the MP3 files";
    }
    const QStringList sources = {makeMp3("one.mp3", 3, 440), makeMp3("two.mp3", 4, 550)};
    fillList("MP3", sources);
    const QString output = media + "/joined.mp3";
    questions.chooseFile(output);
    ASSERT_TRUE(StartJoin(model));
    JoinWizard window(model);
    window.show();
    // The close box during the run acts as CancelButton: the window stays.
    window.close();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(text(window, "lblOperation"), "Cancelled!");
    EXPECT_FALSE(QFile::exists(output));
    EXPECT_FALSE(QFile::exists(output + ".vlr.mp3"));
    // Now it says "&Close", and the close box closes.
    window.close();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(appDataEntries(), QStringList());
}

TEST_F(JoinWizardTest, Picture_RunningAndFinished) {
    if (!HaveFfmpeg()) {
        GTEST_SKIP() << "ffmpeg is needed to make the MP3 files";
    }
    const QStringList sources = {makeMp3("one.mp3", 3, 440), makeMp3("two.mp3", 4, 550)};
    fillList("MP3", sources);
    const QString output = media + "/joined.mp3";
    {
        // Held in its first operation, as in the test above.
        questions.chooseFile(output);
        ASSERT_TRUE(StartJoin(model));
        holdFirstScript();
        JoinWizard window(model);
        watch(window);
        window.show();
        ASSERT_TRUE(waitUntil([&] { return clock == "00:00:01"; }, 10000));
        const QImage image = takePicture(window, "join-wizard.png");
        EXPECT_EQ(image.size(), window.size() * window.devicePixelRatio());
        EXPECT_TRUE(hasContent(image));
        // Every text of the running window shows whole.
        const QStringList cuts = TextFitCheck::cutTexts(window);
        EXPECT_TRUE(cuts.isEmpty()) << cuts.join(u'\n').toStdString();
        window.findChild<QPushButton*>("CancelButton")->click();
        closeWithTheCloseButton(window);
    }
    questions.chooseFile(output);
    ASSERT_TRUE(StartJoin(model));
    JoinWizard window(model);
    joinToTheEnd(window, output);
    const QImage image = takePicture(window, "join-wizard-finished.png");
    EXPECT_TRUE(hasContent(image));
    // And of the finished one.
    const QStringList cuts = TextFitCheck::cutTexts(window);
    EXPECT_TRUE(cuts.isEmpty()) << cuts.join(u'\n').toStdString();
    closeWithTheCloseButton(window);
}

}  // namespace
