#pragma once

#include <QByteArray>
#include <QString>
#include <cstddef>
#include <cstdint>

#include "platform/Clipboard.h"
#include "platform/Questions.h"
#include "support/MemoryClipboard.h"

// What every fuzz target shares: a Qt core application, a private data folder
// for the settings and a work folder for the files the inputs are written to.
// Made once per process; the folders go away when the process ends normally.
void PrepareFuzzProcess();

// The private work folder (no trailing slash).
QString FuzzWorkFolder();

// Writes the bytes to a file in the work folder and returns its path.
QString WriteFuzzFile(const QString& name, const std::uint8_t* data, std::size_t size);

// Answers every message box with Ok and every file dialog with one fixed path,
// and counts the message boxes so a target can check what was shown.
class FuzzQuestions : public Questions {
public:
    explicit FuzzQuestions(QString chosenPath = QString()) : chosenPath_(std::move(chosenPath)) {}
    int msgBox(const QString& prompt, int style, const QString& title = QString()) override;
    void showOpen(CommonDialog& dialog) override;
    void showSave(CommonDialog& dialog) override;

    int boxes = 0;
    QString lastPrompt;

private:
    QString chosenPath_;
};

// Hands a figure to the outside so that the reads that made it are not
// optimised away.
void KeepFuzzResult(std::int64_t value);
