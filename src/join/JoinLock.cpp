#include "join/JoinLock.h"

#include <QLockFile>
#include <limits>
#include <memory>

#include "join/JoinScripts.h"

namespace {

struct HeldLock {
    QString path;
    std::unique_ptr<QLockFile> file;
};

HeldLock& heldLock() {
    static HeldLock lock;
    return lock;
}

}  // namespace

bool AcquireJoinLock() {
    const QString path = AppDataPath(kJoinLockName);
    HeldLock& held = heldLock();
    if (held.file && held.path == path) {
        return true;
    }
    ReleaseJoinLock();
    auto file = std::make_unique<QLockFile>(path);
    // A join may run for hours: only a lock whose copy is gone is stale.
    file->setStaleLockTime(std::numeric_limits<int>::max());
    if (!file->tryLock(0)) {
        // A folder where no lock can be made at all cannot be shared by a
        // second copy either; the join goes on as before.
        return file->error() != QLockFile::LockFailedError;
    }
    held.path = path;
    held.file = std::move(file);
    return true;
}

void ReleaseJoinLock() {
    HeldLock& held = heldLock();
    held.file.reset();
    held.path.clear();
}

bool JoinLockHeld() {
    return heldLock().file != nullptr;
}

QString JoinLockedMessage() {
    return QStringLiteral("Another running copy of Velmora is joining files right now.") +
           QStringLiteral("\r\n") +
           QStringLiteral("Please, wait until that join has finished, then try again.");
}
