#pragma once

#include <QString>
#include <QStringList>

struct MainModel;

// Adding files to the end of the list. For each file a row is added, its path
// written into its Filepath cell and the row filled from the file (FillListItem). While
// files are added, panel 2 of the status bar, the cancel overlay and the
// progress bar show it, and events get a turn after each row so that the
// window stays alive and a cancel click is served. Duplicates and the list
// type are not checked.

// The file dialog with several files ("Add File(s)").
void AddFiles(MainModel& model);

// The files of one folder that match the list type's pattern.
void AddFolderFiles(MainModel& model, const QString& path);

// A folder, then each of its subfolders in turn, depth first. A cancel ends
// the adding of the current folder only; the walk goes on.
void AddFolderTree(MainModel& model, const QString& path);

// Files dropped on the list, each path as it stands, in the order given.
void AddDroppedFiles(MainModel& model, const QStringList& paths);

// The click on CancelLabel: the running adding stops after the current row.
void CancelAdding(MainModel& model);

// The dialog filter and the folder pattern for a list type; both empty for a
// type other than "MP3" and "MPEG".
QString AddFilesFilter(const QString& listType);
QString FolderPattern(const QString& listType);

// The names of the files of a folder that match any of the ";"-separated
// patterns, without regard to case; hidden files are left out. In natural
// order: numbers by value, case ignored ("Track 2" before "track 10").
QStringList FolderFileNames(const QString& folder, const QString& patterns);

// The full paths of the direct subfolders of a folder, hidden ones left out,
// with their names in natural order.
QStringList SubFolderPaths(const QString& folder);

// The path of a listed file: the folder, a separator and the name. No test
// for a separator at the end of the folder is made, so in the root folder the
// path has two.
QString FolderFilePath(const QString& folder, const QString& name);
