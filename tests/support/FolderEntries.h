#pragma once

#include <QDir>
#include <QDirIterator>
#include <QString>
#include <QStringList>

// Every file and folder below folder, hidden ones too, as paths relative to
// it, in the order the file system gives them.
inline QStringList EntriesBelow(const QString& folder) {
    QStringList entries;
    QDirIterator it(folder, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        entries << QDir(folder).relativeFilePath(it.next());
    }
    return entries;
}
