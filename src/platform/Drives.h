#pragma once

#include <QStringList>

// The drives of this computer as the folder windows offer them: the mount
// points of the mounted file systems that can be read (local disks and
// network shares alike, as the mount table lists them), sorted, "/" always
// among them. A caller (a test) may stand a list of its own in with
// SetDriveRootsOverride; an empty list restores the mounted ones.
QStringList DriveRoots();
void SetDriveRootsOverride(const QStringList& roots);
