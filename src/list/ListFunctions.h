#pragma once

#include <QByteArray>
#include <QString>

struct MainModel;

// The first line of every list file.
inline constexpr char kListFileHeader[] = "VLR List v1.0";

// Starts an empty, untitled list of the given type ("MP3" or "MPEG"): title,
// list file name, rows, type, columns and type image, then the totals.
void NewItemList(MainModel& model, const QString& listType);

// Writes the list to its list file. With saveAs -1, or while the list has no
// file yet, the save dialog asks for the path first (a cancelled dialog writes
// nothing, and leaves the dialog's file name empty for the caller to see).
// The file is written whole or not at all. True only when the list file now
// holds the list: false after a cancelled dialog and after a failed write
// (which says "Unable to save the list!" with the reason).
bool SaveList(MainModel& model, short saveAs);

// Asks for a list file and reads it into the list. A file that does not start
// with the header line, or cannot be read, shows "Unable to open; Invalid
// File!" and leaves the list as it was.
void OpenList(MainModel& model);

// Reads the list file at path into the list, as OpenList does with the file
// its dialog gave. True when the list now holds the file; false, after
// "Unable to open; Invalid File!", when it could not be read or is no list
// file (the list is then as it was).
bool OpenListFile(MainModel& model, const QString& path);

// The bytes of the list file of the list as it stands: the header, "<" type
// ">", then one line per row with the cells split by "|"; every line ends in
// CR LF. Cells are written as they are, without quoting or escaping.
QByteArray ListFileText(const MainModel& model);

// Reads list file bytes into the list, as OpenList does once the file is
// read; path names the file for the title. False (and nothing changed) when
// the header is wrong.
bool ReadListFileText(MainModel& model, const QByteArray& data, const QString& path);

// "Velmora - (Untitled List)" or "Velmora - (<file name>)".
QString ListWindowTitle(const QString& listFileName);

// Removes the row at index (nothing for an index without a row), then the
// totals.
void RemoveItem(MainModel& model, int index);

// Removes all rows; with ask -1 only after the user said Yes to "Are you sure
// you would like to clear your list?". The totals follow in either case. The
// list file name, the title, the type and the columns stay.
void ClearList(MainModel& model, short ask);

// Of rows with the same Filepath text (exact, case-sensitive) the last one
// stays. Ends with the report of removed rows.
void RemoveDuplicatedFiles(MainModel& model);

// Removes the rows whose Filepath names no plain file (gone, a folder, or a
// hidden file). Ends with the report of removed rows.
void RemoveDeadFiles(MainModel& model);

// Keeps only the rows whose Bitrate cell is exactly the given text. Ends with
// the report of removed rows.
void OnlyKeepBitrateItems(MainModel& model, const QString& bitrate);

// Move the row at index one place up or down: the row is built anew with its
// name and path, and both it and its neighbour are filled again from their
// files. The totals are not recomputed. The first row up, the last row down
// and index 0 only give the list the focus.
void MoveItemUp(MainModel& model, int index);
void MoveItemDown(MainModel& model, int index);

// True when path names an existing plain file that is not hidden.
bool IsLiveFile(const QString& path);
