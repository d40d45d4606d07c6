#pragma once

// A list, a per-user folder and an install folder in a temporary folder, for
// the tests of the join pre-flight and the join scripts.

#include <QDir>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>
#include <ostream>

#include "app/AppPaths.h"
#include "app/DebugLog.h"
#include "join/JoinLock.h"
#include "join/TestFolders.h"
#include "list/MainModel.h"
#include "support/MemoryClipboard.h"
#include "support/ScriptedQuestions.h"
#include "support/TestEnvironment.h"

// Readable QString values in failure messages.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

class ScriptTestBed {
public:
    // appDataName: the per-user folder's name inside the temporary folder.
    explicit ScriptTestBed(const QString& appDataName = QStringLiteral("App Data & Co")) {
        PrepareTestEnvironment();
        const TestFolders folders = MakeTestFolders(dir.path(), appDataName);
        appData = folders.appData;
        install = folders.install;
        media = folders.media;
    }
    ~ScriptTestBed() {
        // A pre-flight that passed holds the join lock in this folder.
        ReleaseJoinLock();
        StopLogging();
        ClearTestFolders();
    }

    // Puts small stand-ins for the three tools into the install folder.
    void putDummyTools() {
        for (const char* name : {"MP3.dll", "MPEG.dll", "MPEG2.dll"}) {
            writeFile(install + u'/' + QLatin1String(name), QByteArray("tool ") + name);
        }
    }

    void makeMp3List(const QStringList& paths) {
        model.state.setListType(QStringLiteral("MP3"));
        model.items.clearColumns();
        for (const char* header :
             {"Filename", "Filesize", "Date Modified", "Filepath", "Artist", "Title", "Album",
              "Year", "Genre", "Duration", "Bitrate", "Hertz"}) {
            model.items.addColumn(QLatin1String(header));
        }
        addRows(paths, QString());
    }

    void makeMpegList(const QStringList& paths, const QString& firstCodec,
                      const QString& otherCodec = QString()) {
        model.state.setListType(QStringLiteral("MPEG"));
        model.items.clearColumns();
        for (const char* header : {"Filename", "Filesize", "Date Modified", "Filepath",
                                   "Video Codec", "Video Size", "Duration"}) {
            model.items.addColumn(QLatin1String(header));
        }
        addRows(paths, firstCodec, otherCodec.isNull() ? firstCodec : otherCodec);
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

    QTemporaryDir dir;
    QString appData;
    QString install;
    QString media;
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainModel model{questions, clipboard};

private:
    void addRows(const QStringList& paths, const QString& firstCodec,
                 const QString& otherCodec = QString()) {
        model.items.clearRows();
        for (const QString& path : paths) {
            const int position = model.items.addRow(path.mid(path.lastIndexOf(u'/') + 1));
            model.items.setCell(position, 1, QStringLiteral("1 KB"));
            model.items.setCell(position, 3, path);
            if (!firstCodec.isNull()) {
                model.items.setCell(position, 4, position == 1 ? firstCodec : otherCodec);
            }
        }
    }
};
