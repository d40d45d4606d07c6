#pragma once

// Shared by the fault tests of the join: the user's files watched byte for
// byte, what a join leaves in AppDataFolder, and a file-size limit put on a
// generated script.

#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QMap>

#include "join/JoinRunTestBed.h"
#include "join/StartJoin.h"
#include "platform/ProcessKiller.h"
#include "support/MediaMaker.h"

// Remembers the bytes of the user's files and checks them later.
class SourceGuard {
public:
    void remember(const QString& path) { hashes_[path] = hashOf(path); }
    void forget(const QString& path) { hashes_.remove(path); }
    void expectUnchanged() const {
        for (auto it = hashes_.cbegin(); it != hashes_.cend(); ++it) {
            EXPECT_EQ(hashOf(it.key()), it.value()) << it.key().toStdString();
        }
    }
    static QByteArray hashOf(const QString& path) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            return QByteArrayLiteral("(unreadable)");
        }
        QCryptographicHash hash(QCryptographicHash::Sha256);
        hash.addData(&file);
        return hash.result();
    }

private:
    QMap<QString, QByteArray> hashes_;
};

// Everything in AppDataFolder but the settings file.
inline QStringList AppDataLeftovers(const JoinRunTestBed& bed) {
    QStringList left = bed.appDataEntries();
    left.removeAll(QStringLiteral("Settings.ini"));
    return left;
}

// The processes of a join: every process whose command line names a file in
// AppDataFolder (the shells of the scripts, the tool copies) or whose image
// is a tool copy. Each as "pid command line".
inline QStringList JoinProcessesOf(const JoinRunTestBed& bed) {
    QStringList found;
    const QByteArray folder = QFile::encodeName(bed.appData);
    for (const qint64 id : RunningProcessIds()) {
        const QString pid = QString::number(id);
        QFile cmdline(QStringLiteral("/proc/") + pid + QStringLiteral("/cmdline"));
        if (!cmdline.open(QIODevice::ReadOnly)) {
            continue;
        }
        QByteArray text = cmdline.readAll();
        const QString image =
            QFile::symLinkTarget(QStringLiteral("/proc/") + pid + QStringLiteral("/exe"));
        if (text.contains(folder) || image.startsWith(bed.appData + u'/')) {
            found << pid + u' ' + QString::fromLocal8Bit(text.replace('\0', ' ')).trimmed();
        }
    }
    return found;
}

// Puts "ulimit -f blocks" behind the first line of a generated sh script: no
// command of the script may then write a file beyond that many blocks, as if
// the disk had filled up. A command that tries is ended by the system; it
// leaves no core file behind.
inline void LimitScriptFileSize(const QString& script, int blocks) {
    QByteArray text = JoinRunTestBed::readFile(script);
    ASSERT_TRUE(text.startsWith("#!"));
    const qsizetype end = text.indexOf('\n');
    ASSERT_GT(end, 0);
    text.insert(end + 1, "ulimit -c 0\nulimit -f " + QByteArray::number(blocks) + '\n');
    JoinRunTestBed::writeFile(script, text);
}
