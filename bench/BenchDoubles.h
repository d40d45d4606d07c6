#pragma once

// Stand-ins for the user and the clipboard in the benchmarks: no message box
// waits, and an open dialog is answered with the text set beforehand (the
// folder and the file names, split by the character 0, for several files).

#include "platform/Clipboard.h"
#include "platform/Questions.h"

class AnsweringQuestions : public Questions {
public:
    QString answer;
    int msgBox(const QString&, int, const QString&) override { return Msg::Ok; }
    void showOpen(CommonDialog& dialog) override {
        dialog.fileName = answer;
        dialog.fileTitle.clear();
    }
    void showSave(CommonDialog&) override {}
};

class NoClipboard : public Clipboard {
public:
    QString text() const override { return {}; }
    void setText(const QString&) override {}
    void clear() override {}
};
