// PLACEHOLDER until the debug log lands: logging stays off.
#include "app/DebugLog.h"

void StartLogging(const QString&, int) {}
QString LogPath() { return {}; }
void LogEvent(const QString&, int) {}
void StopLogging() {}
