#pragma once

// velmora-cli run as a process, as a user or a script runs it: no display
// (DISPLAY, WAYLAND_DISPLAY and QT_QPA_PLATFORM removed from its
// environment), a home and a data folder of the test's own, so that its
// per-user folder is <data>/Kestor/Velmora.

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <memory>

#include "support/FolderEntries.h"
#include "support/MediaMaker.h"
#include "support/TestEnvironment.h"

struct CliRun {
    int exitCode = -1;
    bool crashed = false;
    QString out;
    QString err;
};

class CliTestBed {
public:
    CliTestBed() {
        PrepareTestEnvironment();
        root = dir.path();
        dataHome = root + QStringLiteral("/data");
        home = root + QStringLiteral("/home");
        media = root + QStringLiteral("/media");
        appData = dataHome + QStringLiteral("/Kestor/Velmora");
        for (const QString& folder : {dataHome, home, media}) {
            QDir().mkpath(folder);
        }
    }

    // The program as the build made it, in the build's program folder.
    static QString builtProgram() { return QStringLiteral(VELMORA_CLI_PROGRAM); }
    static QString programFolder() { return QFileInfo(builtProgram()).absolutePath(); }

    QProcessEnvironment environment() const {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.remove(QStringLiteral("DISPLAY"));
        env.remove(QStringLiteral("WAYLAND_DISPLAY"));
        env.remove(QStringLiteral("QT_QPA_PLATFORM"));
        env.insert(QStringLiteral("XDG_DATA_HOME"), dataHome);
        env.insert(QStringLiteral("HOME"), home);
        env.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        return env;
    }

    std::unique_ptr<QProcess> start(const QStringList& arguments) const {
        auto process = std::make_unique<QProcess>();
        process->setProcessEnvironment(environment());
        process->setWorkingDirectory(root);
        process->start(program, arguments);
        EXPECT_TRUE(process->waitForStarted(30000)) << process->errorString().toStdString();
        return process;
    }

    static CliRun finish(QProcess& process, int timeoutMs = 240000) {
        CliRun result;
        EXPECT_TRUE(process.waitForFinished(timeoutMs)) << "velmora-cli did not end";
        result.crashed = process.exitStatus() != QProcess::NormalExit;
        result.exitCode = process.exitCode();
        result.out = QString::fromUtf8(process.readAllStandardOutput());
        result.err = QString::fromUtf8(process.readAllStandardError());
        return result;
    }

    CliRun run(const QStringList& arguments, int timeoutMs = 240000) const {
        const std::unique_ptr<QProcess> process = start(arguments);
        return finish(*process, timeoutMs);
    }

    // Everything in the per-user folder, relative to it, sorted.
    QStringList appDataEntries() const {
        QStringList entries = EntriesBelow(appData);
        entries.sort();
        return entries;
    }

    QString makeMp3(const QString& folder, const QString& name, int hz = 44100,
                    double seconds = 2.0, int frequency = 440) const {
        Mp3Options options;
        options.sampleRate = hz;
        options.seconds = seconds;
        options.frequencyHz = frequency;
        options.id3v2 = true;
        options.metadata = {{QStringLiteral("album"), QStringLiteral("The Album")},
                            {QStringLiteral("artist"), QStringLiteral("The Band")},
                            {QStringLiteral("title"), name}};
        QDir().mkpath(folder);
        const QString path = MakeMp3(folder, name, options);
        EXPECT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
        return path;
    }

    QString makeMpeg2(const QString& folder, const QString& name, int width = 720, int height = 576,
                      double seconds = 2.0) const {
        MpegOptions options;
        options.mpegVersion = 2;
        options.width = width;
        options.height = height;
        options.seconds = seconds;
        options.audioRate = 48000;
        options.format = QStringLiteral("vob");
        QDir().mkpath(folder);
        const QString path = MakeMpeg(folder, name, options);
        EXPECT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
        return path;
    }

    static QByteArray readFile(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir dir;
    QString root;
    QString dataHome;
    QString home;
    QString media;
    QString appData;
    QString program = builtProgram();
};

// Python's own json module reads the document; each expression (over the
// document d) is printed on a line of its own, with Python's str().
inline QStringList PythonJsonValues(const QString& document, const QStringList& expressions) {
    QProcess python;
    python.start(QStringLiteral("/usr/bin/python3"),
                 QStringList{QStringLiteral("-c"),
                             QStringLiteral("import json, sys\nd = json.load(sys.stdin)\n"
                                            "for e in sys.argv[1:]:\n    print(eval(e))")} +
                     expressions);
    python.write(document.toUtf8());
    python.closeWriteChannel();
    python.waitForFinished(60000);
    EXPECT_EQ(python.exitCode(), 0) << python.readAllStandardError().toStdString();
    return QString::fromUtf8(python.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
}

// What MediaInfo's own command-line program says of a file for a template,
// with the fields of its earlier releases (such as Codec, which the list's
// Video Codec cell holds) still filled in.
inline QString MediaInfoProgramValue(const QString& path, const QString& inform) {
    QProcess mediainfo;
    mediainfo.start(QStringLiteral("mediainfo"),
                    {QStringLiteral("--Legacy"), QStringLiteral("--Inform=") + inform, path});
    mediainfo.waitForFinished(60000);
    return QString::fromUtf8(mediainfo.readAllStandardOutput()).trimmed();
}
