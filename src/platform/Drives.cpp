#include "platform/Drives.h"

#include <QStorageInfo>
#include <algorithm>

#include "platform/FileHelpers.h"

namespace {
QStringList& overrideRoots() {
    static QStringList roots;
    return roots;
}
}  // namespace

void SetDriveRootsOverride(const QStringList& roots) {
    overrideRoots() = roots;
}

QStringList DriveRoots() {
    QStringList roots = overrideRoots();
    if (roots.isEmpty()) {
        for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
            if (volume.isValid() && volume.isReady() && IsDirectoryPath(volume.rootPath())) {
                roots.append(volume.rootPath());
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
