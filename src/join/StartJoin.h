#pragma once

#include <QString>
#include <functional>

struct MainModel;

// The join command's pre-flight: refuses while files are being added, a list
// of fewer than 2 rows and a Red list; asks for OutputFile through the shared
// save dialog (left in model.commonDialog.fileName); handles an existing file,
// low free space and missing tools; logs the rows; writes the JoinScripts.
// Returns true when the scripts were written and the join wizard should open.
bool StartJoin(MainModel& model);

// The free bytes of the file system whose root path is given. The program asks
// GetDiskFreeBytes; tests may put another source in (an empty one restores it).
using FreeBytesSource = std::function<double(QString& rootPath)>;
void SetFreeBytesSource(FreeBytesSource source);

// The drive text of a path: the root path of the file system that holds the
// path's folder, with a trailing "/".
QString DriveTextOf(const QString& path);
