#pragma once

#include <QString>
#include <QStringList>

struct MainModel;
struct RemakeProbe;
class ScriptDialect;

// The JoinCase of the list as it stands: worked out anew on every call from the
// list type, the fifth column header and the video codec of the first row. It
// is never stored.
enum class JoinCase {
    MP3,        // an MP3 list: byte copy, then the MP3 fix (MP3.bat)
    MPEG1V,     // first item "MPEG-1V": the MPEG-1 joiner writes TempFile, then a rename;
                // or, in a dialect that remakes MPEG-1, as MPEG2V with MPEG.bat
    MPEG2V,     // first item "MPEG-2V": byte copy, then the MPEG-2 remake (MPEG2.bat)
    OtherMPEG,  // any other MPEG list: byte copy, then a rename
};
JoinCase CurrentJoinCase(const MainModel& model);

// True when the fifth column header is "Video Codec" and the first row's codec
// is "MPEG-2V" (the test that the run, the progress and the cancel repeat).
bool IsMpeg2VideoList(const MainModel& model);

// The fixed names in AppDataFolder that a join writes and the clean-up removes.
namespace JoinNames {
inline const QString kMarkerFolder = QStringLiteral("JoinTemp");
inline const QString kTempFileScript = QStringLiteral("TempFile.bat");
inline const QString kMp3Script = QStringLiteral("MP3.bat");
inline const QString kMpeg2Script = QStringLiteral("MPEG2.bat");
inline const QString kMpeg1Script = QStringLiteral("MPEG.bat");
inline const QString kMp3Tool = QStringLiteral("MP3.exe");
inline const QString kMpegTool = QStringLiteral("MPEG.exe");
inline const QString kMpeg2Tool = QStringLiteral("MPEG2.exe");
inline const QString kMp3Library = QStringLiteral("mingwm10.dll");
inline const QString kMpeg2Library = QStringLiteral("pthreadGC2.dll");
// The sources of an MP3 join for the fix tool, beside its copy: where each
// source lies in TempFile and its path, so that the tool can name a source it
// cannot read, and for the tag and chapters of the output.
inline const QString kMp3Sources = QStringLiteral("JoinSources.txt");
// What a step of a script that failed leaves for the run: its exit status and
// number, and its error output.
inline const QString kFailureRecord = QStringLiteral("JoinStep.failed");
inline const QString kStepErrorLog = QStringLiteral("JoinStep.log");
// The tools as they lie in InstallFolder.
inline const QString kMp3ToolSource = QStringLiteral("MP3.dll");
inline const QString kMpegToolSource = QStringLiteral("MPEG.dll");
inline const QString kMpeg2ToolSource = QStringLiteral("MPEG2.dll");
}  // namespace JoinNames

// The script of JoinOperation 2 for the list as it stands: MP3.bat for an MP3
// list, MPEG2.bat for MPEG-2 video, MPEG.bat for MPEG-1 video in a dialect
// that remakes MPEG-1; empty where JoinOperation 2 is a mere rename.
QString FixScriptName(const MainModel& model, const ScriptDialect& dialect);
// The same in the platform's dialect, the one the run launches.
QString FixScriptName(const MainModel& model);

// True for the fix scripts in which the MPEG-2 tool remakes the raw join:
// MPEG2.bat, and MPEG.bat where MPEG-1 video is remade.
bool IsRemakeScript(const QString& scriptName);

// True when the first script joins the items by byte copies, so that TempFile
// must hold exactly the bytes of the items (every case but MPEG-1 video in a
// dialect that joins it with the MPEG-1 joiner).
bool FirstScriptCopiesBytes(const MainModel& model, const ScriptDialect& dialect);
bool FirstScriptCopiesBytes(const MainModel& model);

// The items' paths (their Filepath cells), in list order.
QStringList ItemPaths(const MainModel& model);

// The sum of the sizes of the items' files as they are now.
qint64 ItemBytesOnDisk(const MainModel& model);

// ".vlr.mp3" for an MP3 list, ".vlr.mpg" otherwise: always 8 characters.
QString TempFileSuffix(const MainModel& model);
// OutputFile: the file name of the shared dialog, where the pre-flight left it.
QString OutputFilePath(const MainModel& model);
// TempFile: OutputFile + the suffix for the list type.
QString TempFilePath(const MainModel& model);
// AppDataFolder() + "/" + name.
QString AppDataPath(const QString& name);

// The dialect in which this platform's command processor reads scripts (sh).
const ScriptDialect& PlatformDialect();

// Writes the JoinScripts for the list into AppDataFolder and copies the tools
// that the JoinCase needs from InstallFolder. For an MP3 list it also writes
// the sources file for the fix tool (in place of one left by an earlier
// join), and the fix line asks for no tag when tags and chapters are off
// (Preferences). outputFile comes in as OutputFile
// and leaves as TempFile. Failures are passed over: what lies on disk decides
// what the run does. Logs "TempFile=", "1BAT=" and "2BAT=" records when the
// debug log is on, each showing the line as written in the dialect.
void WriteJoinScripts(const MainModel& model, QString& outputFile, const ScriptDialect& dialect);
// The same in the platform's dialect.
void WriteJoinScripts(const MainModel& model, QString& outputFile);
// Writes the remake script of the list anew, for TempFile and OutputFile as
// the shared dialog names them, with the given probe, and logs its line
// ("2BAT="). WriteJoinScripts writes it with the probe of the whole join;
// the run writes it again once it knows where the join's streams first
// appear. Nothing for a list whose JoinOperation 2 is no remake.
void WriteRemakeScript(const MainModel& model, const RemakeProbe& probe,
                       const ScriptDialect& dialect);
void WriteRemakeScript(const MainModel& model, const RemakeProbe& probe);
// The same with a private copy of OutputFile from the shared dialog.
void WriteJoinScripts(const MainModel& model);
