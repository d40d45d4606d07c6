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
        // The program ends only when the save really wrote the list: a
        // cancelled save dialog or a failed save keeps the window and the list.
        if (!commands_.saveList || !commands_.saveList(0)) {
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
