#pragma once

#include <QString>
#include <QStringList>

// The text of the JoinScripts in one command language. WriteJoinScripts decides
// what goes into which script and in what order; a dialect turns each step into
// the lines of its language. Paths are handed in as they stand and come out
// quoted as the language needs.
class ScriptDialect {
public:
    // What a step leaves behind when it fails, so that the run can tell which
    // step failed and why: the record file receives the step's exit status
    // and its number ("<status> <step>"), the error log (when named) the
    // step's error output; then the marker folder is removed and the script
    // ends, so that no later step runs on a broken file.
    struct StepCheck {
        int step = 0;
        QString failureRecord;
        QString errorLog;
        QString markerFolder;
    };

    // What the MP3 fix works with: the folders and tools in AppDataFolder and
    // the two files of the join.
    struct Mp3Fix {
        QString scriptPath;  // the fix script itself
        QString fixTool;     // the MP3 fixer
        QString tempFile;
        QString outputFile;
        bool tag = true;  // the output gets the album's tag and chapters
        StepCheck check;  // for the fix tool's step
    };

    // What the MPEG remake works with: the MPEG-2 tool, the two files of the
    // join, and how much of the join the tool reads before it decides which
    // streams there are: the bytes, and the play time (in microseconds) that
    // must not end the reading before the bytes do (see RemakeProbe).
    struct MpegRemake {
        QString tool;
        QString tempFile;
        QString outputFile;
        qint64 probeBytes = 0;
        qint64 analyzeMicroseconds = 0;
        // True when every part of the join is known to be a program stream:
        // the tool is told so, and it keeps none of the packets it reads
        // while it probes (it reads a program stream again from its start
        // once it has decided), so that the probe costs no memory.
        bool programStream = false;
        StepCheck check;  // for the tool's step
    };

    virtual ~ScriptDialect() = default;

    // Written after every line.
    virtual QString lineEnd() const = 0;
    // The path of a file in a folder, with this language's separator.
    virtual QString childPath(const QString& folder, const QString& name) const = 0;

    // The three lines every script starts with.
    virtual QStringList headLines(const QString& host) const = 0;
    virtual QString echoLine(const QString& text) const = 0;
    // Lines put before each command so that a script whose file has been
    // deleted (a cancelled join) stops at the next command.
    virtual QStringList stopIfGoneLines(const QString& scriptPath) const = 0;

    // The byte copy: the first item starts TempFile, each further one is
    // appended to it.
    virtual QString firstCopyLine(const QString& item, const QString& tempFile) const = 0;
    virtual QString appendCopyLine(const QString& item, const QString& tempFile) const = 0;
    // The MPEG-1 joiner over all items at once.
    virtual QString mpegJoinLine(const QString& tool, const QStringList& items,
                                 const QString& tempFile) const = 0;
    // The lines of the MP3 fix, from TempFile to OutputFile.
    virtual QStringList mp3FixLines(const Mp3Fix& fix) const = 0;
    // The MPEG-2 remake, from TempFile to OutputFile.
    virtual QString mpeg2FixLine(const MpegRemake& remake) const = 0;
    // False: an MPEG-1 video list is joined by the MPEG-1 joiner straight into
    // TempFile, which the run then renames. True: it is joined as an MPEG-2
    // video list is, a byte copy into TempFile and then a fix script of its
    // own in which the MPEG-2 tool remakes it into OutputFile.
    virtual bool remakesMpeg1() const = 0;
    // The MPEG-1 remake, from TempFile to OutputFile (used when remakesMpeg1).
    virtual QString mpeg1FixLine(const MpegRemake& remake) const = 0;
    // A step's command as the script runs it: with what it leaves behind when
    // it fails (see StepCheck), or as it stands in a language that has no way
    // to say so.
    virtual QString checkedStep(const QString& command, const StepCheck& check) const = 0;
    // The deletion of a file (named in the debug log, not in any script).
    virtual QString deleteFileLine(const QString& path) const = 0;
    // The removal of the marker folder that tells the run a script has ended.
    virtual QString removeMarkerLine(const QString& markerFolder) const = 0;
    virtual QString exitLine() const = 0;
};
