#pragma once

#include <QMessageBox>
#include <QString>
#include <QStringList>

#include "platform/Questions.h"

class QWidget;

// The program's Questions: Qt message boxes and Qt's own file dialog (the same
// dialog on every desktop), parented to the given window.
class QtQuestions : public Questions {
public:
    explicit QtQuestions(QWidget* parent = nullptr) : parent_(parent) {}
    void setParent(QWidget* parent) { parent_ = parent; }

    int msgBox(const QString& prompt, int style, const QString& title = QString()) override;
    void showOpen(CommonDialog& dialog) override;
    void showSave(CommonDialog& dialog) override;

private:
    void showDialog(CommonDialog& dialog, bool save);
    QWidget* parent_ = nullptr;
};

// The pieces of the above, open to tests.

// "Name|*.a;*.b|All Files|*.*" in Qt's form: "Name (*.a *.b);;All Files (*)".
QStringList QtFileDialogFilters(const QString& commonDialogFilter);

// The buttons, icon and default button of a message box style value.
QMessageBox::StandardButtons MessageBoxButtons(int style);
QMessageBox::Icon MessageBoxIcon(int style);
QMessageBox::StandardButton MessageBoxDefaultButton(int style);
// The answer value for the button that was pressed.
int MessageBoxAnswer(QMessageBox::StandardButton button);

// Writes the chosen files into the dialog state: one file gives its full path
// and its name; several files (multi-select) give "folder", then each name,
// separated by the character 0, and the first name as the title. No file
// (cancelled) empties both.
void StoreDialogChoice(CommonDialog& dialog, const QStringList& files);
