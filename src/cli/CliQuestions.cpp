#include "cli/CliQuestions.h"

#include <QFileInfo>
#include <QStringList>

#include "cli/CliOutput.h"

namespace {
// The title of the join's question about an output that exists.
const QString kFileExistsTitle = QStringLiteral("File Already Exists!");

bool isQuestion(int style) {
    const int buttons = style & Msg::kButtonsMask;
    return buttons == Msg::YesNo || buttons == Msg::YesNoCancel || buttons == Msg::OkCancel ||
           buttons == Msg::RetryCancel || buttons == Msg::AbortRetryIgnore;
}

bool isError(int style) {
    const int icon = style & Msg::kIconMask;
    return icon == Msg::Critical || icon == Msg::Exclamation;
}

// What a question tells, without the question itself ("Would you like to
// continue?"): nobody answers it here.
QString statementOf(const QString& prompt) {
    QStringList told;
    for (const QString& line : MessageLines(prompt)) {
        if (!line.endsWith(u'?')) {
            told.append(line);
        }
    }
    return told.join(u'\n');
}
}  // namespace

void CliQuestions::prepareJoin(const QString& outputFile, bool overwrite) {
    outputFile_ = outputFile;
    overwrite_ = overwrite;
    outputGiven_ = false;
    errorCount_ = 0;
}

int CliQuestions::msgBox(const QString& prompt, int style, const QString& title) {
    if (isQuestion(style)) {
        if (title == kFileExistsTitle) {
            if (overwrite_) {
                return Msg::Yes;
            }
            ++errorCount_;
            output_.error(outputFile_ +
                          QStringLiteral(" exists already; give --overwrite to replace it"));
            return Msg::No;
        }
        ++errorCount_;
        output_.error(statementOf(prompt));
        return (style & Msg::kButtonsMask) == Msg::YesNo ||
                       (style & Msg::kButtonsMask) == Msg::YesNoCancel
                   ? Msg::No
                   : Msg::Cancel;
    }
    if (isError(style)) {
        ++errorCount_;
        output_.error(prompt);
    } else {
        output_.note(MessageLines(prompt).join(u'\n'));
    }
    return Msg::Ok;
}

void CliQuestions::showOpen(CommonDialog& dialog) {
    dialog.fileName.clear();
    dialog.fileTitle.clear();
}

void CliQuestions::showSave(CommonDialog& dialog) {
    if (outputGiven_ || outputFile_.isEmpty()) {
        dialog.fileName.clear();
        dialog.fileTitle.clear();
        return;
    }
    outputGiven_ = true;
    dialog.fileName = outputFile_;
    dialog.fileTitle = QFileInfo(outputFile_).fileName();
}
