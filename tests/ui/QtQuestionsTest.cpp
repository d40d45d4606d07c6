#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <functional>

#include "ui/QtClipboard.h"
#include "ui/QtQuestions.h"

namespace {

// Runs an action on the first modal window of the given kind once it shows.
template <typename Window>
void whenShown(std::function<void(Window*)> action) {
    auto* timer = new QTimer;
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer, action]() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* window = qobject_cast<Window*>(widget);
            if (window && window->isVisible()) {
                timer->stop();
                timer->deleteLater();
                action(window);
                return;
            }
        }
    });
    timer->start();
}

void touch(const QString& path) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
}

TEST(QtFileDialogFilters, PairsBecomeQtFilters) {
    EXPECT_EQ(QtFileDialogFilters("MP3 Files|*.mp3;*.MP3|All Files|*.*"),
              (QStringList{"MP3 Files (*.mp3 *.MP3)", "All Files (*)"}));
    EXPECT_EQ(QtFileDialogFilters("MPEG File|*.mpg"), QStringList{"MPEG File (*.mpg)"});
    EXPECT_TRUE(QtFileDialogFilters("").isEmpty());
}

TEST(MessageBoxStyle, ButtonsIconsAndDefaults) {
    EXPECT_EQ(MessageBoxButtons(Msg::OkOnly), QMessageBox::StandardButtons(QMessageBox::Ok));
    EXPECT_EQ(MessageBoxButtons(Msg::YesNoCancel + Msg::Question),
              QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    EXPECT_EQ(MessageBoxButtons(Msg::YesNo + Msg::Exclamation), QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(MessageBoxIcon(Msg::OkOnly + Msg::Critical), QMessageBox::Critical);
    EXPECT_EQ(MessageBoxIcon(Msg::YesNo + Msg::Question), QMessageBox::Question);
    EXPECT_EQ(MessageBoxIcon(Msg::OkOnly + Msg::Exclamation), QMessageBox::Warning);
    EXPECT_EQ(MessageBoxIcon(Msg::OkOnly + Msg::Information), QMessageBox::Information);
    EXPECT_EQ(MessageBoxIcon(Msg::OkOnly), QMessageBox::NoIcon);
    EXPECT_EQ(MessageBoxDefaultButton(Msg::YesNo), QMessageBox::Yes);
    EXPECT_EQ(MessageBoxDefaultButton(Msg::YesNo + 256), QMessageBox::No);
    EXPECT_EQ(MessageBoxDefaultButton(Msg::YesNoCancel + 512), QMessageBox::Cancel);
    EXPECT_EQ(MessageBoxAnswer(QMessageBox::Yes), Msg::Yes);
    EXPECT_EQ(MessageBoxAnswer(QMessageBox::No), Msg::No);
    EXPECT_EQ(MessageBoxAnswer(QMessageBox::Cancel), Msg::Cancel);
    EXPECT_EQ(MessageBoxAnswer(QMessageBox::Ok), Msg::Ok);
}

TEST(StoreDialogChoice, OneFileGivesFullPathAndName) {
    CommonDialog dialog;
    StoreDialogChoice(dialog, {"/music/a/01 Song.mp3"});
    EXPECT_EQ(dialog.fileName, QStringLiteral("/music/a/01 Song.mp3"));
    EXPECT_EQ(dialog.fileTitle, QStringLiteral("01 Song.mp3"));
}

TEST(StoreDialogChoice, SeveralFilesGiveFolderAndNamesSeparatedByZero) {
    CommonDialog dialog;
    StoreDialogChoice(dialog, {"/music/a/1.mp3", "/music/a/2.mp3", "/music/a/3.mp3"});
    EXPECT_EQ(dialog.fileName, QStringLiteral("/music/a") + QChar(0) + "1.mp3" + QChar(0) +
                                   "2.mp3" + QChar(0) + "3.mp3");
    EXPECT_EQ(dialog.fileTitle, QStringLiteral("1.mp3"));
}

TEST(StoreDialogChoice, NothingChosenEmptiesBoth) {
    CommonDialog dialog;
    dialog.fileName = "/old/x.mp3";
    dialog.fileTitle = "x.mp3";
    StoreDialogChoice(dialog, {});
    EXPECT_TRUE(dialog.fileName.isEmpty());
    EXPECT_TRUE(dialog.fileTitle.isEmpty());
}

TEST(QtQuestions, MsgBox_EmptyTitleIsTheProgramsAndAnswerIsTheClickedButton) {
    QtQuestions questions;
    QString seenTitle, seenText;
    QMessageBox::Icon seenIcon = QMessageBox::NoIcon;
    whenShown<QMessageBox>([&](QMessageBox* box) {
        seenTitle = box->windowTitle();
        seenText = box->text();
        seenIcon = box->icon();
        box->button(QMessageBox::No)->click();
    });
    const int answer =
        questions.msgBox("Would you like to save your list?", Msg::YesNoCancel + Msg::Question);
    EXPECT_EQ(answer, Msg::No);
    EXPECT_EQ(seenTitle, QStringLiteral("Velmora"));
    EXPECT_EQ(seenText, QStringLiteral("Would you like to save your list?"));
    EXPECT_EQ(seenIcon, QMessageBox::Question);
}

TEST(QtQuestions, MsgBox_NamedTitleIsShownAndEscapeAnswersCancel) {
    QtQuestions questions;
    QString seenTitle;
    whenShown<QMessageBox>([&](QMessageBox* box) {
        seenTitle = box->windowTitle();
        box->reject();
    });
    EXPECT_EQ(questions.msgBox("text", Msg::YesNoCancel, "File Already Exists!"), Msg::Cancel);
    EXPECT_EQ(seenTitle, QStringLiteral("File Already Exists!"));
}

TEST(QtQuestions, ShowOpen_MultiSelectGivesFolderAndNames) {
    QTemporaryDir dir;
    touch(dir.path() + "/a.mp3");
    touch(dir.path() + "/b.mp3");
    QtQuestions questions;
    CommonDialog dialog;
    dialog.dialogTitle = "Add File(s)";
    dialog.initDir = dir.path();
    dialog.filter = "MP3 Files|*.mp3|All Files|*.*";
    dialog.flags = DialogFlags::AllowMultiSelect | DialogFlags::Explorer;
    QString seenTitle, seenFolder;
    QFileDialog::FileMode seenMode = QFileDialog::AnyFile;
    bool native = true;
    whenShown<QFileDialog>([&](QFileDialog* fileDialog) {
        seenTitle = fileDialog->windowTitle();
        seenFolder = fileDialog->directory().absolutePath();
        seenMode = fileDialog->fileMode();
        native = !fileDialog->testOption(QFileDialog::DontUseNativeDialog);
        fileDialog->selectFile("\"a.mp3\" \"b.mp3\"");
        QMetaObject::invokeMethod(fileDialog, "accept");
    });
    questions.showOpen(dialog);
    EXPECT_EQ(seenTitle, QStringLiteral("Add File(s)"));
    EXPECT_EQ(seenFolder, dir.path());
    EXPECT_EQ(seenMode, QFileDialog::ExistingFiles);
    EXPECT_FALSE(native);
    const QStringList parts = dialog.fileName.split(QChar(0));
    ASSERT_EQ(parts.size(), 3) << dialog.fileName.toStdString();
    EXPECT_EQ(parts[0], dir.path());
    EXPECT_EQ(QStringList(parts.mid(1)).size(), 2);
    EXPECT_TRUE(parts.contains("a.mp3"));
    EXPECT_TRUE(parts.contains("b.mp3"));
    EXPECT_EQ(dialog.fileTitle, parts[1]);
}

TEST(QtQuestions, ShowOpen_OneFileGivesItsFullPath) {
    QTemporaryDir dir;
    touch(dir.path() + "/list.vlr");
    QtQuestions questions;
    CommonDialog dialog;
    dialog.initDir = dir.path();
    dialog.filter = "Velmora List|*.vlr";
    whenShown<QFileDialog>([&](QFileDialog* fileDialog) {
        fileDialog->selectFile(dir.path() + "/list.vlr");
        QMetaObject::invokeMethod(fileDialog, "accept");
    });
    questions.showOpen(dialog);
    EXPECT_EQ(dialog.fileName, dir.path() + "/list.vlr");
    EXPECT_EQ(dialog.fileTitle, QStringLiteral("list.vlr"));
}

TEST(QtQuestions, ShowSave_CancelEmptiesNameAndTitle) {
    QtQuestions questions;
    CommonDialog dialog;
    dialog.fileName = "/tmp/earlier.mp3";
    dialog.fileTitle = "earlier.mp3";
    whenShown<QFileDialog>([](QFileDialog* fileDialog) { fileDialog->reject(); });
    questions.showSave(dialog);
    EXPECT_TRUE(dialog.fileName.isEmpty());
    EXPECT_TRUE(dialog.fileTitle.isEmpty());
}

TEST(QtQuestions, ShowSave_OverwriteQuestionOnlyWithFlagTwo) {
    QtQuestions questions;
    for (int flags : {DialogFlags::HideReadOnly, DialogFlags::OverwritePrompt}) {
        CommonDialog dialog;
        dialog.flags = flags;
        bool confirms = false;
        QFileDialog::AcceptMode mode = QFileDialog::AcceptOpen;
        whenShown<QFileDialog>([&](QFileDialog* fileDialog) {
            confirms = !fileDialog->testOption(QFileDialog::DontConfirmOverwrite);
            mode = fileDialog->acceptMode();
            fileDialog->reject();
        });
        questions.showSave(dialog);
        EXPECT_EQ(confirms, flags == DialogFlags::OverwritePrompt);
        EXPECT_EQ(mode, QFileDialog::AcceptSave);
    }
}

TEST(QtQuestions, ShowSave_ChosenNameIsStored) {
    QTemporaryDir dir;
    QtQuestions questions;
    CommonDialog dialog;
    dialog.initDir = dir.path();
    dialog.filter = "MP3 File|*.mp3";
    whenShown<QFileDialog>([&](QFileDialog* fileDialog) {
        fileDialog->selectFile(dir.path() + "/joined.mp3");
        QMetaObject::invokeMethod(fileDialog, "accept");
    });
    questions.showSave(dialog);
    EXPECT_EQ(dialog.fileName, dir.path() + "/joined.mp3");
    EXPECT_EQ(dialog.fileTitle, QStringLiteral("joined.mp3"));
}

TEST(QtClipboard, TextRoundTripsAndClears) {
    QtClipboard clipboard;
    clipboard.setText(QStringLiteral("VLR:a|b|c|/x/y.mp3"));
    EXPECT_EQ(clipboard.text(), QStringLiteral("VLR:a|b|c|/x/y.mp3"));
    clipboard.clear();
    EXPECT_TRUE(clipboard.text().isEmpty());
}

}  // namespace
