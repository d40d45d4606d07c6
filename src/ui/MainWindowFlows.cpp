// The main window's flows that may end a list: the change of list type (its
// rules are in list/ListTypeChange) and the closing of the window.
#include <QCloseEvent>

#include "list/ListTypeChange.h"
#include "ui/MainWindow.h"

void MainWindow::changeListType() {
    ChangeListType(model_, commands_);
}

void MainWindow::closeEvent(QCloseEvent* event) {
    const int answer = model_.questions.msgBox(QStringLiteral("Would you like to save your list?"),
                                               Msg::YesNoCancel + Msg::Question);
    if (answer == Msg::Yes) {
        RunCommand(commands_.saveList, short(0));
        // The shared dialog's file name tells whether a save went through: a
        // cancelled save dialog keeps the window open.
        if (model_.commonDialog.fileName.isEmpty()) {
            event->ignore();
            return;
        }
    } else if (answer != Msg::No) {
        event->ignore();
        return;
    }
    event->accept();
    exitProgram();
}
