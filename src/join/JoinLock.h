#pragma once

#include <QString>

// Two running copies of the program share AppDataFolder, and with it the
// marker folder, the scripts and the tool copies of a join. A join therefore
// holds a lock file in AppDataFolder from its pre-flight until it is over
// (cancelled, or its window closed); a join started in another copy meanwhile is refused before it
// changes anything. A lock left by a copy that ended without letting go (a
// crash, a kill) is taken over.

// The name of the lock file in AppDataFolder.
inline const QString kJoinLockName = QStringLiteral("Join.lock");

// Takes the lock for a join of this copy. True when it is held now (also when
// this copy held it already); false when another running copy holds it.
bool AcquireJoinLock();

// Lets go of the lock, if this copy holds it; the lock file goes with it.
void ReleaseJoinLock();

// True while this copy holds the lock.
bool JoinLockHeld();

// The message for a join refused because another copy is joining.
QString JoinLockedMessage();
