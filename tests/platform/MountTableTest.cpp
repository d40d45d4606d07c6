#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>
#include <ostream>

#include "platform/Drives.h"
#include "platform/MountTable.h"
#include "support/OwnMountTable.h"

// Readable entries in failure messages.
inline void PrintTo(const MountedFileSystem& entry, std::ostream* os) {
    *os << entry.mountPoint.toStdString() << " (" << entry.type.toStdString() << ", "
        << entry.source.toStdString() << ')';
}

namespace {

// Lines as the kernel writes them: local disks, the kernel's own file
// systems and network shares of three kinds.
const QByteArray kTable =
    "26 1 254:0 / / rw,relatime - ext4 /dev/vda rw,discard\n"
    "21 26 0:20 / /proc rw,relatime - proc proc rw\n"
    "31 30 0:28 / /sys/fs/cgroup/cpu rw,relatime - cgroup cgroup rw,cpu\n"
    "90 26 0:50 / /mnt/nas rw,relatime shared:41 - cifs //fileserver/music rw,vers=3.0\n"
    "91 26 0:51 /export /mnt/My\\040Videos rw master:3 - nfs4 nas:/export/video rw\n"
    "92 26 0:52 / /home/me/remote rw,nosuid - fuse.sshfs me@host:/srv rw\n"
    "not a mount line\n";

}  // namespace

TEST(MountTable, ParseMountTable_NetworkSharesWithTheirTypesSourcesAndUnescapedPaths) {
    const QList<MountedFileSystem> entries = ParseMountTable(kTable);
    ASSERT_EQ(entries.size(), 6);
    EXPECT_EQ(entries.at(0), (MountedFileSystem{"/", "ext4", "/dev/vda"}));
    EXPECT_EQ(entries.at(3), (MountedFileSystem{"/mnt/nas", "cifs", "//fileserver/music"}));
    EXPECT_EQ(entries.at(4), (MountedFileSystem{"/mnt/My Videos", "nfs4", "nas:/export/video"}));
    EXPECT_EQ(entries.at(5), (MountedFileSystem{"/home/me/remote", "fuse.sshfs", "me@host:/srv"}));
}

TEST(MountTable, MountPointOf_TheLongestMountPointAbove_NotANameThatMerelyStartsSo) {
    const OwnMountTable table(kTable);
    EXPECT_EQ(MountPointOf(QStringLiteral("/mnt/nas/Albums/One")), "/mnt/nas");
    EXPECT_EQ(MountPointOf(QStringLiteral("/mnt/nas")), "/mnt/nas");
    EXPECT_EQ(MountPointOf(QStringLiteral("/mnt/My Videos/Films")), "/mnt/My Videos");
    EXPECT_EQ(MountPointOf(QStringLiteral("/mnt/nasty/file")), "/");
    EXPECT_EQ(MountPointOf(QStringLiteral("/home/me/remote/a/b")), "/home/me/remote");
}

TEST(MountTable, MountPointOf_TableThatCannotBeRead_IsTheRoot) {
    const QString previous = SetMountTableFile(QStringLiteral("/no/such/mountinfo"));
    EXPECT_EQ(MountPointOf(QStringLiteral("/mnt/nas/Albums")), "/");
    SetMountTableFile(previous);
}

TEST(MountTable, TheKernelsTable_HoldsTheRoot) {
    bool root = false;
    for (const MountedFileSystem& entry : MountedFileSystems()) {
        root = root || entry.mountPoint == QLatin1String("/");
    }
    EXPECT_TRUE(root);
}

TEST(DriveRoots, NetworkSharesAreDrives_TheKernelsOwnFileSystemsAreNot) {
    // Shares mounted on folders of the test, so that they can be read.
    QTemporaryDir folders;
    const QString share = folders.filePath(QStringLiteral("nas"));
    const QString videos = folders.filePath(QStringLiteral("My Videos"));
    QDir().mkpath(share);
    QDir().mkpath(videos);
    const OwnMountTable table({{"/proc", "proc", "proc"},
                               {share, "cifs", "//fileserver/music"},
                               {videos, "nfs4", "nas:/export/video"},
                               {"/no/such/mount", "fuse.sshfs", "me@host:/srv"}});
    EXPECT_EQ(DriveRoots(), QStringList({QStringLiteral("/"), videos, share}));
}
