#include "platform/Drives.h"

#include <QStorageInfo>
#include <algorithm>

#include "platform/FileHelpers.h"
#include "platform/MountTable.h"

namespace {
QStringList& overrideRoots() {
    static QStringList roots;
    return roots;
}

// The kernel's own file systems and the runtime folders are no drives.
bool isSystemPlace(const MountedFileSystem& entry) {
    for (const QLatin1String folder :
         {QLatin1String("/dev"), QLatin1String("/proc"), QLatin1String("/sys"),
          QLatin1String("/var/run"), QLatin1String("/var/lock")}) {
        if (entry.mountPoint == folder || entry.mountPoint.startsWith(folder + u'/')) {
            return true;
        }
    }
    return entry.type == QLatin1String("rootfs");
}

// A file system that can be read and holds something: network shares (NFS,
// SMB, sshfs...) count as drives like the local disks.
bool offeredAsDrive(const MountedFileSystem& entry) {
    if (isSystemPlace(entry) || !IsDirectoryPath(entry.mountPoint)) {
        return false;
    }
    const QStorageInfo volume(entry.mountPoint);
    return volume.isValid() && volume.isReady() && volume.bytesTotal() > 0;
}
}  // namespace

void SetDriveRootsOverride(const QStringList& roots) {
    overrideRoots() = roots;
}

QStringList DriveRoots() {
    QStringList roots = overrideRoots();
    if (roots.isEmpty()) {
        for (const MountedFileSystem& entry : MountedFileSystems()) {
            if (offeredAsDrive(entry)) {
                roots.append(entry.mountPoint);
            }
        }
    }
    if (!roots.contains(QStringLiteral("/"))) {
        roots.append(QStringLiteral("/"));
    }
    std::sort(roots.begin(), roots.end());
    roots.removeDuplicates();
    return roots;
}
