#include "app/Startup.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <cstdio>
#include <cstdlib>

#include "app/AppPaths.h"
#include "app/DebugLog.h"
#include "platform/FileHelpers.h"
#include "platform/Questions.h"

namespace {
QString appDataPath(Questions& questions) {
    return GetShellFolderPath(kAppDataFolderId, questions) + QStringLiteral("/Kestor/Velmora");
}
}  // namespace

QStringList CommandLineOf(int argc, const char* const* argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments.append(QString::fromLocal8Bit(argv[i]));
    }
    return arguments;
}

bool IsDebugCommandLine(const QStringList& arguments) {
    return arguments.size() == 2 && arguments.at(1) == QStringLiteral("/debug");
}

QString ListFileOfArguments(const QStringList& arguments) {
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString& argument = arguments.at(i);
        if (argument != QStringLiteral("/debug") && !argument.isEmpty()) {
            return QFileInfo(argument).absoluteFilePath();
        }
    }
    return {};
}

void EndProcessAtOnce() {
    std::fflush(nullptr);
    std::_Exit(0);
}

QString LogFileNameFor(const QDateTime& moment) {
    return moment.toString(QStringLiteral("ddMMyyyyHHmmss")) + QStringLiteral(".log");
}

QString LogCreatedRecordFor(const QDateTime& moment) {
    const QLocale locale;
    // The long time form without its time-zone part: hours, minutes, seconds.
    QString timeFormat = locale.timeFormat(QLocale::LongFormat);
    timeFormat.remove(QLatin1Char('t'));
    timeFormat = timeFormat.trimmed();
    return QStringLiteral("LogFile created on: ") +
           locale.toString(moment.date(), QLocale::ShortFormat) + u' ' +
           locale.toString(moment.time(), timeFormat);
}

QString PrepareAppDataFolder(Questions& questions) {
    // The folder is formed, made, then formed once more and stored: the second
    // lookup sees the folder that the first one may have created.
    QString folder = appDataPath(questions);
    MakeFolderPath(folder);
    SetAppDataFolder(appDataPath(questions));
    return AppDataFolder();
}

void StartDebugLog() {
    StartLogging(AppDataFolder() + u'/' + LogFileNameFor(QDateTime::currentDateTime()), 2);
    if (!LogPath().isEmpty()) {
        LogEvent(LogCreatedRecordFor(QDateTime::currentDateTime()), 4);
    }
}

StartupResult PrepareStartup(const QStringList& arguments, Questions& questions) {
    StartupResult result;
    result.appDataFolder = PrepareAppDataFolder(questions);

    if (IsDebugCommandLine(arguments)) {
        result.debug = true;
        StartDebugLog();
        questions.msgBox(QStringLiteral("Velmora is now running in debug-mode."),
                         Msg::OkOnly + Msg::Information);
    }

    if (!FileExists(SettingsFile())) {
        const QString defaults = InstallFolder() + QStringLiteral("/DefaultSettings.ini");
        if (QFile::copy(defaults, SettingsFile())) {
            result.copiedDefaultSettings = true;
            if (!LogPath().isEmpty()) {
                LogEvent(QStringLiteral(
                             "'DefaultSettings.ini' has been copied to 'AppData\\Settings.ini'."),
                         4);
            }
        }
    }
    return result;
}
