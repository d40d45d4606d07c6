#include "join/JoinCleanup.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

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
    for (const QString& script : {kTempFileScript, kMp3Script, kMpeg2Script}) {
        deleteIfPresent(script);
    }
}

void KillToolsInAppData() {
    using namespace JoinNames;
    for (const QString& tool : {kMp3Tool, kMpegTool, kMpeg2Tool}) {
        if (FileExists(AppDataPath(tool))) {
            KillProcessByName(tool);
        }
    }
}

void DeleteToolsFromAppData() {
    using namespace JoinNames;
    for (const QString& name : {kMp3Tool, kMp3Library, kMpegTool, kMpeg2Library, kMpeg2Tool}) {
        deleteIfPresent(name);
    }
    // The MP3 fixer's working folder, left behind when its script was ended.
    const QString scratch = AppDataPath(kMp3ScratchFolder);
    if (QFileInfo(scratch).isDir()) {
        QDir(scratch).removeRecursively();
    }
}

bool JoinOutputRemains(const QString& outputFile) {
    return plainFileAt(outputFile) || plainFileAt(outputFile + QStringLiteral(".vlr.mp3")) ||
           plainFileAt(outputFile + QStringLiteral(".vlr.mpg"));
}

void WaitForJoinOutputGone(const QString& outputFile, JoinWizardState& state) {
    while (JoinOutputRemains(outputFile)) {
        state.setWindowCaption(QStringLiteral("Join Wizard (Cancelling...)"));
        for (const QString& path : {outputFile, outputFile + QStringLiteral(".vlr.mp3"),
                                    outputFile + QStringLiteral(".vlr.mpg")}) {
            if (plainFileAt(path)) {
                QFile::remove(path);
            }
        }
        giveEventsATurn();
    }
}
