#include "list/AddFilesModule.h"

#include <QDir>
#include <QFileInfo>

#include "app/Settings.h"
#include "list/Columns.h"
#include "list/DialogFolder.h"
#include "list/FillListItem.h"
#include "list/ListTotals.h"
#include "list/MainModel.h"
#include "list/NaturalOrder.h"
#include "list/ReadAhead.h"
#include "platform/EventTurn.h"
#include "platform/FileHelpers.h"

namespace {

const QString kAddingFiles = QStringLiteral("Adding Files...");
const QString kAddingFile = QStringLiteral("Adding File...");
constexpr int kAddFilesFlags = DialogFlags::HideReadOnly + DialogFlags::AllowMultiSelect +
                               DialogFlags::Explorer + DialogFlags::LongNames;
constexpr int kAddFilesMaxLength = 32000;

// A new empty row at the end with the path in its Filepath cell, filled from the file.
// No turn for events lies between adding and filling, so row 0 (the last
// row) is still the new one.
void addFileRow(MainModel& model, const QString& path) {
    const int row = model.items.addRow();
    model.items.setCell(row, SharedCell::Filepath, path);
    FillListItem(model, 0);
}

// The same with what the loop's read-ahead read for the file at
// index. They were read for the path and list type the loop began with; when
// an event turn changed either since (the list laid out anew for the other
// type, or the file enumerator set to another folder by a second adding),
// the file of the path is read now.
void addFileRow(MainModel& model, ReadAhead& files, int index, const QString& path) {
    const int row = model.items.addRow();
    model.items.setCell(row, SharedCell::Filepath, path);
    const ItemReading reading = files.takeReading(index);
    if (files.path(index) == path && files.listType() == model.state.listType()) {
        FillListItemWith(model, 0, reading);
    } else {
        FillListItem(model, 0);
    }
}

void showAdding(ListState& state, const QString& text, int maximum) {
    state.setStatusPanel2(text);
    state.setCancelOverlayVisible(true);
    state.setProgressMax(maximum);
    state.setProgressVisible(true);
}

void hideAdding(ListState& state) {
    state.setStatusPanel2(QString());
    state.setCancelOverlayVisible(false);
    state.setProgressVisible(false);
}

// After each row of a loop: the bar moves, events get their turn, and the
// display goes once the bar is full. True when the user cancelled.
bool afterRow(ListState& state, int value) {
    state.setProgressValue(value);
    giveEventsATurn();
    if (state.progressValue() == state.progressMax()) {
        hideAdding(state);
    }
    return state.cancelAddFiles() == -1;
}

QDir::Filters visibleOnly(QDir::Filters kind) {
    return kind | QDir::NoDotAndDotDot;
}

}  // namespace

QString AddFilesFilter(const QString& listType) {
    const ListType type = ListTypeOf(listType);
    if (type == ListType::Mp3) {
        return QStringLiteral("MP3 Files|*.mp3|All Files|*.*");
    }
    if (type == ListType::Mpeg) {
        return QStringLiteral(
            "MPEG Files|*.mpg;*.mpeg;*.mpe;*.m2v;*.mp2;*.dat;*.vob|All Files|*.*");
    }
    return QString();
}

QString FolderPattern(const QString& listType) {
    const ListType type = ListTypeOf(listType);
    if (type == ListType::Mp3) {
        return QStringLiteral("*.mp3");
    }
    if (type == ListType::Mpeg) {
        return QStringLiteral("*.mpg;*.mpeg;*.mpe;*.m2v;*.mp2;*.dat;*.vob");
    }
    return QString();
}

QStringList FolderFileNames(const QString& folder, const QString& patterns) {
    QDir dir(folder);
    // Without QDir::Hidden hidden files stay out; without QDir::System so do
    // sockets, devices and broken links. Name filters match without regard
    // to case unless QDir::CaseSensitive is given.
    dir.setNameFilters(patterns.split(u';', Qt::SkipEmptyParts));
    dir.setFilter(visibleOnly(QDir::Files));
    // By code points first, so that names equal in natural order ("a.mp3"
    // and "A.mp3") always come in the same order.
    dir.setSorting(QDir::Name);
    return SortedNaturally(dir.entryList());
}

QStringList SubFolderPaths(const QString& folder) {
    QDir dir(folder);
    // Linked folders stay out, so that a link to a folder above can't make
    // the walk endless.
    dir.setFilter(visibleOnly(QDir::Dirs) | QDir::NoSymLinks);
    dir.setSorting(QDir::Name);
    QStringList paths;
    for (const QString& name : SortedNaturally(dir.entryList())) {
        paths.append(dir.filePath(name));
    }
    return paths;
}

QString FolderFilePath(const QString& folder, const QString& name) {
    return folder + u'/' + name;
}

void AddFiles(MainModel& model) {
    CommonDialog& dialog = model.commonDialog;
    ListState& state = model.state;
    PrepareDialog(dialog, QStringLiteral("Add File(s)"), Settings::DialogFolder::AddFiles);
    // A list of neither type keeps the filter the dialog had.
    const QString filter = AddFilesFilter(state.listType());
    if (!filter.isEmpty()) {
        dialog.filter = filter;
    }
    dialog.flags = kAddFilesFlags;
    dialog.maxFileSize = kAddFilesMaxLength;
    model.questions.showOpen(dialog);
    if (dialog.fileName.isEmpty()) {
        return;
    }
    RememberDialogFolder(dialog, Settings::DialogFolder::AddFiles);
    state.setCancelAddFiles(0);

    // Several files: the folder, then the names, split by the character 0.
    // One file: its full path.
    const QStringList pieces = dialog.fileName.split(QChar(0));
    const int last = static_cast<int>(pieces.size()) - 1;
    if (last >= 1) {
        const QString& folder = pieces.first();
        const QString separator = folder.endsWith(u'/') ? QString() : QStringLiteral("/");
        QStringList paths;
        for (int i = 1; i <= last; ++i) {
            paths.append(folder + separator + pieces.at(i));
        }
        ReadAhead files(paths, state.listType());
        for (int i = 1; i <= last; ++i) {
            showAdding(state, kAddingFiles, last);
            if (i == 1) {
                state.setProgressValue(1);
            }
            addFileRow(model, files, i - 1, files.path(i - 1));
            if (afterRow(state, i)) {
                break;
            }
        }
    } else {
        // A single file gets no turn for events, so it can't be cancelled.
        showAdding(state, kAddingFile, 1);
        state.setProgressValue(1);
        addFileRow(model, pieces.first());
        hideAdding(state);
    }
    UpdateListTotals(model);
}

void AddFolderFiles(MainModel& model, const QString& path) {
    ListState& state = model.state;
    const QString pattern = FolderPattern(state.listType());
    if (!pattern.isEmpty()) {
        model.fileBrowserPattern = pattern;
    }
    // A folder that can't be listed leaves the enumerator where it was.
    if (!path.isEmpty()) {
        const QFileInfo folder(path);
        if (folder.isDir() && folder.isReadable()) {
            model.fileBrowserPath = QDir::cleanPath(folder.absoluteFilePath());
        }
    }
    QStringList names;
    if (!path.isEmpty() && !model.fileBrowserPath.isEmpty()) {
        names = FolderFileNames(model.fileBrowserPath, model.fileBrowserPattern);
    }
    if (!names.isEmpty()) {
        state.setCancelAddFiles(0);
        const int count = static_cast<int>(names.size());
        QStringList paths;
        for (const QString& name : names) {
            paths.append(FolderFilePath(model.fileBrowserPath, name));
        }
        ReadAhead files(paths, state.listType());
        for (int i = 0; i < count; ++i) {
            showAdding(state, kAddingFiles, count);
            if (i == 0) {
                state.setProgressValue(1);
            }
            addFileRow(model, files, i, FolderFilePath(model.fileBrowserPath, names.at(i)));
            if (afterRow(state, i + 1)) {
                UpdateListTotals(model);
                return;
            }
        }
    }
    UpdateListTotals(model);
}

void AddFolderTree(MainModel& model, const QString& path) {
    // A folder that cannot be read (lost+found, another user's folder) is
    // passed over with everything below it: listing it would give the files
    // of the folder before it a second time.
    if (!IsDirectoryPath(path) || !FolderCanBeListed(path)) {
        return;
    }
    AddFolderFiles(model, path);
    // The subfolders are listed before any of them is walked; the walk
    // doesn't look at the cancel flag, so a cancel ends one folder only.
    const QStringList subFolders = SubFolderPaths(path);
    for (const QString& subFolder : subFolders) {
        AddFolderTree(model, subFolder);
    }
}

void AddDroppedFiles(MainModel& model, const QStringList& paths) {
    ListState& state = model.state;
    const int last = static_cast<int>(paths.size());
    ReadAhead files(paths, state.listType());
    for (int i = 1; i <= last; ++i) {
        state.setCancelAddFiles(0);
        showAdding(state, kAddingFiles, last);
        if (i == 1) {
            state.setProgressValue(1);
        }
        addFileRow(model, files, i - 1, paths.at(i - 1));
        if (afterRow(state, i)) {
            break;
        }
    }
    UpdateListTotals(model);
}

void CancelAdding(MainModel& model) {
    model.state.setCancelAddFiles(-1);
    hideAdding(model.state);
}
