#include "join/JoinCleanup.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QThread>
#include <utility>

#include "app/AppPaths.h"
#include "join/JoinScripts.h"
#include "join/JoinWizardState.h"
#include "platform/EventTurn.h"
#include "platform/FileHelpers.h"
#include "platform/ProcessKiller.h"

namespace {
void deleteIfPresent(const QString& name) {
    const QString path = AppDataPath(name);
    if (FileExists(path)) {
        QFile::remove(path);
    }
}

// A plain file at path (not a folder), as a directory look-up finds it.
bool plainFileAt(const QString& path) {
    const QFileInfo info(path);
    return info.exists() && info.isFile();
}
}  // namespace

void RemoveMarkerAndScripts() {
    using namespace JoinNames;
    const QString marker = AppDataPath(kMarkerFolder);
    if (QFileInfo(marker).isDir()) {
        QDir().rmdir(marker);
    }
    for (const QString& script :
         {kTempFileScript, kMp3Script, kMpeg2Script, kMpeg1Script, kMp3Sources}) {
        deleteIfPresent(script);
    }
}

void KillToolsInAppData() {
    using namespace JoinNames;
    for (const QString& tool : {kMp3Tool, kMpegTool, kMpeg2Tool}) {
        if (FileExists(AppDataPath(tool))) {
            KillProcessByName(tool, AppDataFolder());
        }
    }
}

void DeleteToolsFromAppData() {
    using namespace JoinNames;
    for (const QString& name : {kMp3Tool, kMp3Library, kMpegTool, kMpeg2Library, kMpeg2Tool}) {
        deleteIfPresent(name);
    }
}

void DeleteStepRecords() {
    deleteIfPresent(JoinNames::kFailureRecord);
    deleteIfPresent(JoinNames::kStepErrorLog);
}

bool JoinOutputRemains(const QString& outputFile) {
    return plainFileAt(outputFile) || plainFileAt(outputFile + QStringLiteral(".vlr.mp3")) ||
           plainFileAt(outputFile + QStringLiteral(".vlr.mpg"));
}

namespace {
std::chrono::milliseconds& cancelWaitLimit() {
    static std::chrono::milliseconds limit{20000};
    return limit;
}
}  // namespace

std::chrono::milliseconds CancelWaitLimit() {
    return cancelWaitLimit();
}

std::chrono::milliseconds SetCancelWaitLimit(std::chrono::milliseconds limit) {
    return std::exchange(cancelWaitLimit(), limit);
}

QList<LeftBehindFile> WaitForJoinOutputGone(const QString& outputFile, JoinWizardState& state) {
    const QStringList paths = {outputFile, outputFile + QStringLiteral(".vlr.mp3"),
                               outputFile + QStringLiteral(".vlr.mpg")};
    // The reason of the last delete of each file that failed; a file whose
    // delete worked but that is back comes from a process that still writes.
    QStringList reasons(paths.size());
    QElapsedTimer waited;
    waited.start();
    bool first = true;
    while (JoinOutputRemains(outputFile)) {
        if (!first && waited.elapsed() >= CancelWaitLimit().count()) {
            QList<LeftBehindFile> left;
            for (qsizetype i = 0; i < paths.size(); ++i) {
                if (plainFileAt(paths.at(i))) {
                    left.append({paths.at(i), reasons.at(i).isEmpty()
                                                  ? QStringLiteral("a process still writes it")
                                                  : reasons.at(i)});
                }
            }
            return left;
        }
        if (!first) {
            QThread::msleep(static_cast<unsigned long>(kCancelWaitPause.count()));
        }
        first = false;
        state.setWindowCaption(QStringLiteral("Join Wizard (Cancelling...)"));
        for (qsizetype i = 0; i < paths.size(); ++i) {
            if (plainFileAt(paths.at(i))) {
                QFile file(paths.at(i));
                reasons[i] = file.remove() ? QString() : file.errorString();
            }
        }
        giveEventsATurn();
    }
    return {};
}

QString LeftBehindMessage(const QList<LeftBehindFile>& files) {
    const QString crLf = QStringLiteral("\r\n");
    QString text = QStringLiteral(
                       "The join was cancelled, but these files of it could not be "
                       "deleted and are left behind:") +
                   crLf;
    for (const LeftBehindFile& file : files) {
        text += crLf + file.path + QStringLiteral(" (") + file.reason + u')';
    }
    text += crLf + crLf + QStringLiteral("Please, delete them yourself when the reason is gone.");
    return text;
}
