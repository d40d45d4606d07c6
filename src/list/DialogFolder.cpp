#include "list/DialogFolder.h"

#include "platform/Questions.h"

void RememberDialogFolder(const CommonDialog& dialog, Settings::DialogFolder which) {
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
    Settings::SetDialogFolder(which, folder);
}
