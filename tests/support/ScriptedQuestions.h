#pragma once

#include <QList>
#include <QString>
#include <functional>

#include "platform/Questions.h"

// A Questions double: records every question and answers from queues.
// Message boxes take the next queued answer (Msg::Ok when the queue is empty);
// dialogs run the next queued action on the dialog state (an empty queue
// answers as a cancel: file name and title emptied).
class ScriptedQuestions : public Questions {
public:
    struct Asked {
        QString prompt;
        int style = 0;
        QString title;
    };
    using DialogAction = std::function<void(CommonDialog&)>;

    int msgBox(const QString& prompt, int style, const QString& title = QString()) override;
    void showOpen(CommonDialog& dialog) override;
    void showSave(CommonDialog& dialog) override;

    void answer(int answer) { answers.append(answer); }
    // Queues a dialog answer that picks one file (full path).
    void chooseFile(const QString& path);
    // Queues an open-dialog answer that picks several files of one folder.
    void chooseFiles(const QString& folder, const QStringList& names);
    void cancelDialog();
    void onDialog(DialogAction action) { dialogActions.append(std::move(action)); }

    QList<Asked> asked;                // message boxes, in order
    QList<CommonDialog> dialogsShown;  // the dialog state as each dialog opened
    QList<bool> dialogWasSave;
    QList<int> answers;
    QList<DialogAction> dialogActions;

private:
    void showDialog(CommonDialog& dialog, bool save);
};
