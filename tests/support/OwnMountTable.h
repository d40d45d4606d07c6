#pragma once

// A mount table of the test's own in place of the kernel's, for the lifetime
// of the object, so that folders of the test can stand for network shares.

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QString>
#include <QTemporaryDir>

#include "platform/MountTable.h"

class OwnMountTable {
public:
    // The lines as given, in the form of /proc/self/mountinfo.
    explicit OwnMountTable(const QByteArray& text) {
        QFile file(dir_.filePath(QStringLiteral("mountinfo")));
        if (file.open(QIODevice::WriteOnly)) {
            file.write(text);
        }
        previous_ = SetMountTableFile(file.fileName());
    }
    // The root file system and the given mounts.
    explicit OwnMountTable(const QList<MountedFileSystem>& mounts)
        : OwnMountTable(RootLine() + Lines(mounts)) {}
    ~OwnMountTable() { SetMountTableFile(previous_); }
    OwnMountTable(const OwnMountTable&) = delete;
    OwnMountTable& operator=(const OwnMountTable&) = delete;

    static QByteArray RootLine() {
        return QByteArrayLiteral("26 1 254:0 / / rw,relatime - ext4 /dev/vda rw\n");
    }
    // One line a mount as the kernel writes it: a blank in the mount point
    // as "\040".
    static QByteArray Lines(const QList<MountedFileSystem>& mounts) {
        QByteArray text;
        int id = 90;
        for (const MountedFileSystem& mount : mounts) {
            text += QByteArray::number(id) + " 26 0:" + QByteArray::number(id) + " / " +
                    mount.mountPoint.toUtf8().replace(" ", "\\040") + " rw,relatime - " +
                    mount.type.toUtf8() + ' ' + mount.source.toUtf8() + " rw\n";
            ++id;
        }
        return text;
    }

private:
    QTemporaryDir dir_;
    QString previous_;
};
