#include "support/ScriptedQuestions.h"

#include <QChar>

int ScriptedQuestions::msgBox(const QString& prompt, int style, const QString& title) {
    asked.append(Asked{prompt, style, title});
    return answers.isEmpty() ? Msg::Ok : answers.takeFirst();
}

void ScriptedQuestions::showOpen(CommonDialog& dialog) {
    showDialog(dialog, false);
}

void ScriptedQuestions::showSave(CommonDialog& dialog) {
    showDialog(dialog, true);
}

void ScriptedQuestions::showDialog(CommonDialog& dialog, bool save) {
    dialogsShown.append(dialog);
    dialogWasSave.append(save);
    if (dialogActions.isEmpty()) {
        dialog.fileName.clear();
        dialog.fileTitle.clear();
        return;
    }
    dialogActions.takeFirst()(dialog);
}

void ScriptedQuestions::chooseFile(const QString& path) {
    onDialog([path](CommonDialog& d) {
        d.fileName = path;
        d.fileTitle = path.mid(path.lastIndexOf(u'/') + 1);
    });
}

void ScriptedQuestions::chooseFiles(const QString& folder, const QStringList& names) {
    onDialog([folder, names](CommonDialog& d) {
        QString text = folder;
        for (const QString& name : names) {
            text += QChar(0) + name;
        }
        d.fileName = text;
        d.fileTitle = names.isEmpty() ? QString() : names.first();
    });
}

void ScriptedQuestions::cancelDialog() {
    onDialog([](CommonDialog& d) {
        d.fileName.clear();
        d.fileTitle.clear();
    });
}
