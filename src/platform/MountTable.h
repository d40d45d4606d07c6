#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

// One mounted file system: where it is mounted, its type ("ext4", "nfs4",
// "cifs", "fuse.sshfs"...) and what is mounted there (a device, or the share
// of a network file system: "//nas/music", "nas:/export/music").
struct MountedFileSystem {
    QString mountPoint;
    QString type;
    QString source;
    bool operator==(const MountedFileSystem&) const = default;
};

// The entries of a mount table in the form of /proc/self/mountinfo, in its
// order. A line that does not have that form is left out; the escapes of
// blanks and backslashes in paths ("\040", "\134") are undone.
QList<MountedFileSystem> ParseMountTable(const QByteArray& text);

// The file systems mounted now, as /proc/self/mountinfo lists them.
QList<MountedFileSystem> MountedFileSystems();

// The mount point of the file system that holds path: the longest mount point
// that is path or a folder above it, with links in path resolved as far as it
// exists. "/" when the table cannot be read.
QString MountPointOf(const QString& path);

// Reads the mount table from another file (a test's own table); an empty path
// restores /proc/self/mountinfo. Returns the file it replaces ("" for that).
QString SetMountTableFile(const QString& path);
