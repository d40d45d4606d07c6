#pragma once

#include <QString>

#include "platform/Questions.h"

class CliOutput;

// The command line's answers to what the shared routines ask. Nobody sits at
// a box: each question is answered from the command's options, and what a
// box would tell is written out. A box with the critical or exclamation icon
// is an error; a question the options do not answer is answered No, so a
// routine that would go on only with a Yes refuses.
//
// The save dialog of a join answers with the output that the command line
// named, once; asked again (after an output that exists was not to be
// replaced) it answers as a cancel.
class CliQuestions : public Questions {
public:
    explicit CliQuestions(CliOutput& output) : output_(output) {}

    // The answers for the next join: its output and whether an output that
    // exists may be replaced.
    void prepareJoin(const QString& outputFile, bool overwrite);

    int msgBox(const QString& prompt, int style, const QString& title = QString()) override;
    void showOpen(CommonDialog& dialog) override;
    void showSave(CommonDialog& dialog) override;

    // How many errors the boxes told since the last prepareJoin().
    int errorCount() const { return errorCount_; }

private:
    CliOutput& output_;
    QString outputFile_;
    bool overwrite_ = false;
    bool outputGiven_ = false;
    int errorCount_ = 0;
};
