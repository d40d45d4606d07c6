#include "ui/QtQuestions.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QPushButton>

#include "app/Version.h"

namespace {
// Default-button bits of a style value: second or third button by default.
constexpr int kDefaultButton2 = 256;
constexpr int kDefaultButton3 = 512;

QList<QMessageBox::StandardButton> buttonOrder(int style) {
    switch (style & Msg::kButtonsMask) {
        case Msg::OkCancel:
            return {QMessageBox::Ok, QMessageBox::Cancel};
        case Msg::AbortRetryIgnore:
            return {QMessageBox::Abort, QMessageBox::Retry, QMessageBox::Ignore};
        case Msg::YesNoCancel:
            return {QMessageBox::Yes, QMessageBox::No, QMessageBox::Cancel};
        case Msg::YesNo:
            return {QMessageBox::Yes, QMessageBox::No};
        case Msg::RetryCancel:
            return {QMessageBox::Retry, QMessageBox::Cancel};
        default:
            return {QMessageBox::Ok};
    }
}
}  // namespace

QStringList QtFileDialogFilters(const QString& commonDialogFilter) {
    QStringList filters;
    const QStringList parts = commonDialogFilter.split(u'|');
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QStringList patterns;
        for (const QString& pattern : parts.at(i + 1).split(u';', Qt::SkipEmptyParts)) {
            const QString trimmed = pattern.trimmed();
            // "*.*" means every file, also those without an extension.
            patterns.append(trimmed == QStringLiteral("*.*") ? QStringLiteral("*") : trimmed);
        }
        filters.append(parts.at(i).trimmed() + QStringLiteral(" (") + patterns.join(u' ') + u')');
    }
    return filters;
}

QMessageBox::StandardButtons MessageBoxButtons(int style) {
    QMessageBox::StandardButtons buttons;
    for (QMessageBox::StandardButton button : buttonOrder(style)) {
        buttons |= button;
    }
    return buttons;
}

QMessageBox::Icon MessageBoxIcon(int style) {
    switch (style & Msg::kIconMask) {
        case Msg::Critical:
            return QMessageBox::Critical;
        case Msg::Question:
            return QMessageBox::Question;
        case Msg::Exclamation:
            return QMessageBox::Warning;
        case Msg::Information:
            return QMessageBox::Information;
        default:
            return QMessageBox::NoIcon;
    }
}

QMessageBox::StandardButton MessageBoxDefaultButton(int style) {
    const QList<QMessageBox::StandardButton> order = buttonOrder(style);
    qsizetype index = 0;
    if (style & kDefaultButton3) {
        index = 2;
    } else if (style & kDefaultButton2) {
        index = 1;
    }
    return order.value(index, order.first());
}

int MessageBoxAnswer(QMessageBox::StandardButton button) {
    switch (button) {
        case QMessageBox::Ok:
            return Msg::Ok;
        case QMessageBox::Cancel:
            return Msg::Cancel;
        case QMessageBox::Abort:
            return Msg::Abort;
        case QMessageBox::Retry:
            return Msg::Retry;
        case QMessageBox::Ignore:
            return Msg::Ignore;
        case QMessageBox::Yes:
            return Msg::Yes;
        case QMessageBox::No:
            return Msg::No;
        default:
            return Msg::Cancel;
    }
}

void StoreDialogChoice(CommonDialog& dialog, const QStringList& files) {
    dialog.fileName.clear();
    dialog.fileTitle.clear();
    if (files.isEmpty()) {
        return;
    }
    if (files.size() == 1) {
        dialog.fileName = QDir::cleanPath(files.first());
        dialog.fileTitle = QFileInfo(dialog.fileName).fileName();
        return;
    }
    QString text = QFileInfo(files.first()).absolutePath();
    for (const QString& file : files) {
        text += QChar(0) + QFileInfo(file).fileName();
    }
    dialog.fileName = text;
    dialog.fileTitle = QFileInfo(files.first()).fileName();
}

int QtQuestions::msgBox(const QString& prompt, int style, const QString& title) {
    QMessageBox box(MessageBoxIcon(style), title.isEmpty() ? Version::kProgramTitle : title, prompt,
                    MessageBoxButtons(style), parent_);
    box.setDefaultButton(MessageBoxDefaultButton(style));
    const QList<QMessageBox::StandardButton> order = buttonOrder(style);
    // The close box and Escape answer Cancel where there is one, else the only
    // button of an OK box; a Yes/No question has to be answered.
    if (order.contains(QMessageBox::Cancel)) {
        box.setEscapeButton(QMessageBox::Cancel);
    } else if (order.size() == 1) {
        box.setEscapeButton(order.first());
    }
    box.exec();
    QAbstractButton* clicked = box.clickedButton();
    if (!clicked) {
        return order.contains(QMessageBox::Cancel) ? Msg::Cancel : MessageBoxAnswer(order.first());
    }
    return MessageBoxAnswer(box.standardButton(clicked));
}

void QtQuestions::showOpen(CommonDialog& dialog) {
    showDialog(dialog, false);
}

void QtQuestions::showSave(CommonDialog& dialog) {
    showDialog(dialog, true);
}

void QtQuestions::showDialog(CommonDialog& dialog, bool save) {
    QFileDialog fileDialog(parent_);
    fileDialog.setOption(QFileDialog::DontUseNativeDialog, true);
    fileDialog.setObjectName(save ? QStringLiteral("SaveDialog") : QStringLiteral("OpenDialog"));
    if (!dialog.dialogTitle.isEmpty()) {
        fileDialog.setWindowTitle(dialog.dialogTitle);
    }
    if (save) {
        fileDialog.setAcceptMode(QFileDialog::AcceptSave);
        fileDialog.setFileMode(QFileDialog::AnyFile);
        // The overwrite question comes only when the caller asks for it; the
        // join asks its own question instead.
        fileDialog.setOption(QFileDialog::DontConfirmOverwrite,
                             !(dialog.flags & DialogFlags::OverwritePrompt));
    } else {
        fileDialog.setAcceptMode(QFileDialog::AcceptOpen);
        fileDialog.setFileMode((dialog.flags & DialogFlags::AllowMultiSelect)
                                   ? QFileDialog::ExistingFiles
                                   : QFileDialog::ExistingFile);
    }
    const QStringList filters = QtFileDialogFilters(dialog.filter);
    if (!filters.isEmpty()) {
        fileDialog.setNameFilters(filters);
        fileDialog.selectNameFilter(filters.value(dialog.filterIndex - 1, filters.first()));
    }
    if (!dialog.initDir.isEmpty() && QFileInfo(dialog.initDir).isDir()) {
        fileDialog.setDirectory(dialog.initDir);
    }
    if (!dialog.fileName.isEmpty() && !dialog.fileName.contains(QChar(0))) {
        fileDialog.selectFile(dialog.fileName);
    }
    if (fileDialog.exec() != QDialog::Accepted) {
        StoreDialogChoice(dialog, {});
        return;
    }
    const QStringList files = fileDialog.selectedFiles();
    StoreDialogChoice(dialog, files);
    if (!files.isEmpty()) {
        const qsizetype index = filters.indexOf(fileDialog.selectedNameFilter());
        if (index >= 0) {
            dialog.filterIndex = static_cast<int>(index) + 1;
        }
    }
}
