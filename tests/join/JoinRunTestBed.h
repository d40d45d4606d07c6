#pragma once

// A join run in a temporary folder: a per-user folder, an install folder with
// the real tools under their install names, a media folder, and the list.

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <QTemporaryDir>
#include <QThread>
#include <functional>

#include "app/AppPaths.h"
#include "app/DebugLog.h"
#include "join/JoinLock.h"
#include "join/JoinRun.h"
#include "join/JoinScripts.h"
#include "join/JoinWizardState.h"
#include "join/TestFolders.h"
#include "list/MainModel.h"
#include "platform/ProcessKiller.h"
#include "support/FolderEntries.h"
#include "support/MemoryClipboard.h"
#include "support/ScriptedQuestions.h"
#include "support/TestEnvironment.h"

class JoinRunTestBed {
public:
    explicit JoinRunTestBed(const QString& appDataName = QStringLiteral("Velmora & Co")) {
        PrepareTestEnvironment();
        const TestFolders folders = MakeTestFolders(dir.path(), appDataName);
        appData = folders.appData;
        install = folders.install;
        media = folders.media;
        // Only processes of this test's own folders may be ended by name, so
        // that tests running beside this one keep theirs.
        const QString root = dir.path() + u'/';
        previousFilter = setProcessKillFilter(
            [root](qint64 pid) { return ExecutablePathOf(pid).startsWith(root); });
    }
    ~JoinRunTestBed() {
        run.reset();
        ReleaseJoinLock();
        StopLogging();
        setProcessKillFilter(previousFilter);
        ClearTestFolders();
    }

    // The real tools under the names they have in an install folder.
    void putRealTools() {
        const QList<QPair<QString, QString>> tools = {
            {QStringLiteral(VELMORA_MP3_FIX_TOOL), QStringLiteral("MP3.dll")},
            {QStringLiteral("/usr/bin/mpgtx"), QStringLiteral("MPEG.dll")},
            {QStringLiteral("/usr/bin/ffmpeg"), QStringLiteral("MPEG2.dll")}};
        for (const auto& [source, name] : tools) {
            QFile::copy(source, install + u'/' + name);
        }
    }

    void setColumns(const QStringList& headers) {
        model.items.clearColumns();
        for (const QString& header : headers) {
            model.items.addColumn(header);
        }
    }
    void makeMp3List(const QStringList& paths) {
        model.state.setListType(QStringLiteral("MP3"));
        setColumns({QStringLiteral("Filename"), QStringLiteral("Filesize"),
                    QStringLiteral("Date Modified"), QStringLiteral("Filepath"),
                    QStringLiteral("Artist"), QStringLiteral("Title"), QStringLiteral("Album"),
                    QStringLiteral("Year"), QStringLiteral("Genre"), QStringLiteral("Duration"),
                    QStringLiteral("Bitrate"), QStringLiteral("Hertz")});
        addRows(paths, QString());
    }
    void makeMpegList(const QStringList& paths, const QString& codec) {
        model.state.setListType(QStringLiteral("MPEG"));
        setColumns({QStringLiteral("Filename"), QStringLiteral("Filesize"),
                    QStringLiteral("Date Modified"), QStringLiteral("Filepath"),
                    QStringLiteral("Video Codec"), QStringLiteral("Video Size"),
                    QStringLiteral("Duration")});
        addRows(paths, codec);
    }
    void addRows(const QStringList& paths, const QString& codec) {
        model.items.clearRows();
        for (const QString& path : paths) {
            const int row = model.items.addRow(QFileInfo(path).fileName());
            model.items.setCell(row, 3, path);
            if (!codec.isEmpty()) {
                model.items.setCell(row, 4, codec);
            }
        }
    }

    void setOutput(const QString& path) {
        model.commonDialog.fileName = path;
        model.commonDialog.fileTitle = QFileInfo(path).fileName();
    }

    static void writeFile(const QString& path, const QByteArray& bytes) {
        QFile file(path);
        if (file.open(QIODevice::WriteOnly)) {
            file.write(bytes);
        }
    }
    static QByteArray readFile(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    // A script of our own in AppDataFolder (for runs without the script writer).
    void writeScript(const QString& name, const QString& body) {
        writeFile(appData + u'/' + name, body.toUtf8());
    }
    static QString quoted(const QString& path) {
        QString text = path;
        text.replace(u'\'', QStringLiteral("'\\''"));
        return u'\'' + text + u'\'';
    }
    QString marker() const { return appData + QStringLiteral("/JoinTemp"); }
    QString removeMarkerLine() const { return QStringLiteral("rmdir ") + quoted(marker()) + u'\n'; }

    // Everything left in the per-user folder (names relative to it).
    QStringList appDataEntries() const {
        QStringList entries = EntriesBelow(appData);
        entries.sort();
        return entries;
    }

    JoinRun& makeRun() {
        run = std::make_unique<JoinRun>(model, state);
        return *run;
    }

    // Runs the event loop until done() holds or the time is up.
    static bool waitUntil(const std::function<bool()>& done, int ms = 60000) {
        QDeadlineTimer deadline(ms);
        while (!done()) {
            if (deadline.hasExpired()) {
                return false;
            }
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
            QThread::msleep(1);
        }
        return true;
    }
    // Ticks by hand (the run's timers off) until done() holds or the time is up.
    bool tickUntil(const std::function<bool()>& done, int ms = 20000) {
        QDeadlineTimer deadline(ms);
        while (!done()) {
            if (deadline.hasExpired()) {
                return false;
            }
            QCoreApplication::processEvents(QEventLoop::AllEvents, 2);
            run->tick();
            QThread::msleep(2);
        }
        return true;
    }
    // True when the run has ended: finished, cancelled or failed.
    bool finished() const {
        return state.operationText() == QStringLiteral("Finished!") ||
               state.operationText() == QStringLiteral("Cancelled!") ||
               state.operationText() == QStringLiteral("Failed!");
    }

    QTemporaryDir dir;
    QString appData;
    QString install;
    QString media;
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainModel model{questions, clipboard};
    JoinWizardState state;
    std::unique_ptr<JoinRun> run;
    ProcessKillFilter previousFilter;
};
