#include "join/StartJoin.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <cmath>
#include <limits>
#include <optional>

#include "app/AppPaths.h"
#include "app/DebugLog.h"
#include "app/Settings.h"
#include "join/JoinLock.h"
#include "join/JoinScripts.h"
#include "list/CellValues.h"
#include "list/DialogFolder.h"
#include "list/MainModel.h"
#include "platform/FileHelpers.h"
#include "platform/MountTable.h"
#include "platform/Questions.h"

namespace {

const QString kCrLf = QStringLiteral("\r\n");

FreeBytesSource& freeBytesSource() {
    static FreeBytesSource source;
    return source;
}

double freeBytesOf(QString rootPath) {
    if (freeBytesSource()) {
        return freeBytesSource()(rootPath);
    }
    return GetDiskFreeBytes(rootPath);
}

// The free KB as a whole number, the way the figure is shown: rounded to
// whole KB, counted in 64 bits so a disk with terabytes free is judged by
// its real figure. Nothing when less than half a KB is free or no figure
// came; the caller then warns.
std::optional<qint64> availableKb(double freeBytes) {
    const double kb = freeBytes / 1024.0;
    if (!(kb >= 0.5)) {
        return std::nullopt;
    }
    const double whole = std::floor(kb + 0.5);
    if (!(whole < 9.2e18)) {
        return std::numeric_limits<qint64>::max();
    }
    return static_cast<qint64>(whole);
}

// The list's size in KB from its caption ("1,234 KB"), doubled: TempFile and
// OutputFile exist side by side. 0 when the caption holds no number.
qint64 requiredKb(const QString& sizeCaption) {
    const std::optional<double> kb = CellValues().listKilobytes(sizeCaption);
    if (!kb) {
        return 0;
    }
    return static_cast<qint64>(std::nearbyint(*kb * 2.0));
}

// The pre-flight from the save dialog on, once the join lock is held.
bool preflightAfterLock(MainModel& model);

void logRows(const MainModel& model) {
    if (LogPath().isEmpty()) {
        return;
    }
    const ItemList& items = model.items;
    const int columns = std::max(1, items.headerCount());
    for (int position = 1; position <= items.count(); ++position) {
        QString record;
        for (int column = 0; column < columns; ++column) {
            record += items.cell(position, column) + u'|';
        }
        LogEvent(record, 4);
    }
}

}  // namespace

void SetFreeBytesSource(FreeBytesSource source) {
    freeBytesSource() = std::move(source);
}

QString DriveTextOf(const QString& path) {
    // The nearest folder that exists, from the output's folder upwards.
    QString folder = QFileInfo(path).absolutePath();
    while (!QFileInfo(folder).isDir() && folder != QDir::rootPath()) {
        folder = QFileInfo(folder).absolutePath();
    }
    // A folder on a network share is measured at the share's mount point,
    // like any other drive.
    QString root = MountPointOf(folder);
    if (!root.endsWith(u'/')) {
        root += u'/';
    }
    return root;
}

bool StartJoin(MainModel& model) {
    Questions& questions = model.questions;

    if (model.state.progressVisible()) {
        questions.msgBox(QStringLiteral("Adding Files. Please be patient!"),
                         Msg::OkOnly + Msg::Information);
        return false;
    }
    if (model.items.count() < 2) {
        questions.msgBox(QStringLiteral("Please, Add at least 2 files to your list."),
                         Msg::OkOnly + Msg::Exclamation);
        return false;
    }
    if (model.state.grade() == Grade::Red) {
        questions.msgBox(
            QStringLiteral("Unable to join one or more files!") + kCrLf +
                QStringLiteral("Please, check your list for incompatible files.") + kCrLf + kCrLf +
                QStringLiteral(
                    "Tip: click the 'Red' icon in the bottom right corner for more information."),
            Msg::OkOnly + Msg::Critical);
        return false;
    }
    // A join of another running copy uses the same scripts, marker and tool
    // copies: nothing is asked, deleted or written while it runs.
    if (!AcquireJoinLock()) {
        questions.msgBox(JoinLockedMessage(), Msg::OkOnly + Msg::Exclamation);
        return false;
    }
    if (!preflightAfterLock(model)) {
        ReleaseJoinLock();
        return false;
    }
    return true;
}

namespace {

bool preflightAfterLock(MainModel& model) {
    Questions& questions = model.questions;
    CommonDialog& dialog = model.commonDialog;
    PrepareDialog(dialog, QStringLiteral("Create Output File"), Settings::DialogFolder::JoinFiles);
    if (model.state.type() == ListType::Mp3) {
        dialog.filter = QStringLiteral("MP3 File|*.mp3");
    } else if (model.state.type() == ListType::Mpeg) {
        dialog.filter = QStringLiteral("MPEG File|*.mpg");
    }
    dialog.flags = DialogFlags::HideReadOnly;

    questions.showSave(dialog);
    if (dialog.fileName.isEmpty()) {
        return false;
    }

    // The chosen folder: the path with every occurrence of the file's name taken
    // out (a folder named like the file loses its name too).
    QString folder = dialog.fileName;
    if (!dialog.fileTitle.isEmpty()) {
        folder.replace(dialog.fileTitle, QString());
    }
    if (folder != dialog.initDir) {
        Settings::SetDialogFolder(Settings::DialogFolder::JoinFiles, folder);
    }

    while (FileExists(dialog.fileName)) {
        const int answer =
            questions.msgBox(QStringLiteral("Would you like to overwrite the existing file?"),
                             Msg::YesNo + Msg::Exclamation, QStringLiteral("File Already Exists!"));
        if (answer == Msg::Yes) {
            // Only a file is deleted; anything else stays and is asked about again.
            if (!QFileInfo(dialog.fileName).isDir()) {
                QFile::remove(dialog.fileName);
            }
            continue;
        }
        dialog.fileName.clear();
        questions.showSave(dialog);
        if (dialog.fileName.isEmpty()) {
            return false;
        }
    }

    const QString drive = DriveTextOf(dialog.fileName);
    const std::optional<qint64> available = availableKb(freeBytesOf(drive));
    const qint64 required = requiredKb(model.state.sizeCaption());
    if (!available || required > *available) {
        const int answer = questions.msgBox(
            QStringLiteral("You do not have enough free diskspace on drive ") + drive +
                QStringLiteral(".") + kCrLf + QStringLiteral("Would you like to continue?"),
            Msg::YesNo + Msg::Critical);
        if (answer != Msg::Yes) {
            return false;
        }
    }

    const QString install = InstallFolder();
    if (!FileExists(install + QStringLiteral("/MP3.dll")) ||
        !FileExists(install + QStringLiteral("/MPEG.dll")) ||
        !FileExists(install + QStringLiteral("/MPEG2.dll"))) {
        questions.msgBox(QStringLiteral("An error occurred!") + kCrLf +
                             QStringLiteral("Velmora cannot load one or more required files.") +
                             kCrLf + kCrLf +
                             QStringLiteral("Please, re-install Velmora to fix this problem."),
                         Msg::OkOnly + Msg::Critical);
        return false;
    }

    logRows(model);

    QString outputFile = dialog.fileName;
    WriteJoinScripts(model, outputFile);
    return true;
}

}  // namespace
