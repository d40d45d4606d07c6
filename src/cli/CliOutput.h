#pragma once

#include <QString>

// What velmora-cli writes. Results go to standard output; warnings, errors,
// notes and the progress go to standard error, so that a script can take the
// results alone. Warnings and errors carry the prefixes "warning: " and
// "error: " on every line of their text. A progress line that redraws itself
// on a terminal is wiped before anything else is written to standard error.
class CliOutput {
public:
    // Quiet: no notes and no progress; results, warnings and errors stay.
    void setQuiet(bool quiet) { quiet_ = quiet; }
    bool quiet() const { return quiet_; }

    // A result: the text and a line end, on standard output.
    void result(const QString& text);
    void warning(const QString& text);
    void error(const QString& text);
    // Something a person at the terminal wants to know (a join that is done).
    void note(const QString& text);
    // Plain text on standard error (the usage after a bad command line).
    void plain(const QString& text);

    // The redrawn progress line: it replaces the one on screen.
    void redrawProgress(const QString& line);
    // Ends the redrawn line, so that it stays on screen as it is.
    void endProgress();
    // A progress line of its own ("Progress: 37%").
    void progressLine(const QString& line);

private:
    void toError(const QString& text);
    void prefixed(const QString& prefix, const QString& text);

    bool quiet_ = false;
    bool progressOnScreen_ = false;
};

// The lines of a message as the core words it (with CR LF, CR or LF between
// lines), without the empty ones.
QStringList MessageLines(const QString& text);
