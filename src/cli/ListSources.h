#pragma once

#include <QString>
#include <QStringList>
#include <optional>

struct CliContext;
struct MainModel;

// The list that the sources of a command make, through the routines the
// window adds with: a list file (.vlr) gives its rows in its own order, as
// the window opens it; a media file is added as a dropped file is; a folder
// adds its files of the list type as Add Directory does. The rows come in
// the order of the sources.
//
// The list type comes from the list files, else from the files' extensions
// (a folder tells it by the files it holds), else from the type asked for.
// A type asked for that a source contradicts, or sources of both types, make
// no list.
struct SourceList {
    QString listType;  // the text of a ListType
    // Why the sources make no list; empty when they made one.
    QString error;
    // What is worth knowing about a list that was made (a folder without a
    // file of the type).
    QStringList warnings;
};

// Fills the model with the list of the sources; typeAsked is "MP3", "MPEG" or
// empty. The list's totals and grade are set, and the rows of list files are
// checked against the first before it returns.
SourceList MakeListFromSources(MainModel& model, const QStringList& sources,
                               const QString& typeAsked);

// The list of the command's sources (its options' paths and type) made in the
// model, with its warnings given: the exit status when the command ends
// there (an interrupt, or sources that make no list), else nothing.
std::optional<int> MakeCommandList(CliContext& cli, MainModel& model);

// The list type a file's name stands for ("MP3" for *.mp3, "MPEG" for the
// MPEG patterns), or the empty text.
QString ListTypeOfFileName(const QString& path);

// True for a path with the list file's extension.
bool IsListFileName(const QString& path);
