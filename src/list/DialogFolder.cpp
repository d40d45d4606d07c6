#include "list/DialogFolder.h"

#include "app/IniFile.h"
#include "platform/Questions.h"

void RememberDialogFolder(const CommonDialog& dialog, const QString& key) {
    QString folder = dialog.fileName;
    if (!dialog.fileTitle.isEmpty()) {
        folder.remove(dialog.fileTitle);
    }
    if (folder == dialog.initDir) {
        return;
    }
    const qsizetype end = folder.indexOf(QChar(0));
    if (end >= 0) {
        folder.truncate(end);
    }
    WriteSetting(QStringLiteral("Commondialog"), key, folder);
}
