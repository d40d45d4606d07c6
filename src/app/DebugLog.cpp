#include "app/DebugLog.h"

#include <QFile>

namespace {
struct LogState {
    QString path;
    QFile file;
};

LogState& state() {
    static LogState log;
    return log;
}
}  // namespace

void StartLogging(const QString& path, int mode) {
    LogState& log = state();
    StopLogging();
    // Only mode 2 (log to a file) is used; any other leaves logging off.
    if (mode != 2 || path.isEmpty()) {
        return;
    }
    log.file.setFileName(path);
    if (!log.file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text)) {
        return;
    }
    log.path = path;
}

QString LogPath() {
    return state().path;
}

void LogEvent(const QString& text, int /*eventType*/) {
    LogState& log = state();
    if (log.path.isEmpty()) {
        return;
    }
    // One record, one line: the text in full, as it was handed in. A text with
    // line breaks of its own (tool output) keeps them. Each record reaches the
    // file at once, so the log is complete even when the process is ended hard.
    log.file.write(text.toUtf8());
    log.file.write("\n");
    log.file.flush();
}

void StopLogging() {
    LogState& log = state();
    log.path.clear();
    if (log.file.isOpen()) {
        log.file.close();
    }
}
