#pragma once

#include <QString>
#include <QStringList>

// The command line of velmora-cli: a command (info, check, join) with its
// options and paths, and the options every command takes.

enum class CliCommand { None, Info, Check, Join };

// How a join shows its progress: a line that redraws itself when standard
// error is a terminal, else a line per whole percent; or as asked.
enum class ProgressForm { Auto, Bar, Lines, None };

struct CliOptions {
    CliCommand command = CliCommand::None;
    QStringList paths;
    bool help = false;
    bool version = false;
    bool debug = false;
    bool quiet = false;
    bool json = false;
    // "MP3" or "MPEG" when --type was given.
    QString listType;
    // join
    QString output;
    bool each = false;
    bool overwrite = false;
    bool noTags = false;
    ProgressForm progress = ProgressForm::Auto;
};

struct ParsedCommandLine {
    CliOptions options;
    // Why the command line is bad; empty when it is fine.
    QString error;
};

// Reads the arguments (the program first). A bad command line gives its
// reason in error; --help and --version need no command.
ParsedCommandLine ParseCommandLine(const QStringList& arguments);

// The help of the program (the commands) and of one command (its options).
QString ProgramHelp();
QString CommandHelp(CliCommand command);
// The usage line of a command, or of the program for CliCommand::None.
QString UsageLine(CliCommand command);
// The command's name as typed.
QString CommandName(CliCommand command);
