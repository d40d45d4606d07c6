#include "list/ListFunctions.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QStringDecoder>
#include <algorithm>

#include "app/Settings.h"
#include "list/Columns.h"
#include "list/DialogFolder.h"
#include "list/FillListItem.h"
#include "list/ListTotals.h"
#include "list/ListviewLayout.h"
#include "list/MainModel.h"
#include "platform/FileHelpers.h"

namespace {

const QString kListFilter = QStringLiteral("VLR Files|*.vlr");

void setListLayout(MainModel& model, const QString& listType, bool setImage) {
    ClearColumns(model);
    AddSharedColumns(model);
    const ListType type = ListTypeOf(listType);
    if (type == ListType::Mp3) {
        AddMP3Columns(model);
        if (setImage) {
            model.state.setTypeImage(ListState::Picture::MP3);
        }
    }
    if (type == ListType::Mpeg) {
        AddMPEGColumns(model);
        if (setImage) {
            model.state.setTypeImage(ListState::Picture::MPEG);
        }
    }
}

void showRemovalReport(MainModel& model, int removed) {
    model.questions.msgBox(
        QStringLiteral("Operation Complete!\rItems Removed: ") + QString::number(removed),
        Msg::OkOnly + Msg::Information);
}

// List files are UTF-8; a file that is not valid UTF-8 is read as Latin-1,
// so that every byte still comes through as a character. A byte order mark
// is kept as a character of the first line: list files are written without
// one, so a file that starts with one does not have the list header.
QString decodeListFile(const QByteArray& data) {
    QStringDecoder utf8(QStringDecoder::Utf8,
                        QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    QString text = utf8.decode(data);
    if (utf8.hasError()) {
        text = QString::fromLatin1(data);
    }
    return text;
}

// Splits the text into lines. CR LF ends a line, and so does a CR or an LF of
// its own; a line break at the very end opens no further line.
QList<QStringView> splitLines(QStringView text) {
    QList<QStringView> lines;
    qsizetype start = 0;
    const qsizetype size = text.size();
    for (qsizetype i = 0; i < size; ++i) {
        const QChar c = text.at(i);
        if (c != u'\r' && c != u'\n') {
            continue;
        }
        lines.append(text.sliced(start, i - start));
        if (c == u'\r' && i + 1 < size && text.at(i + 1) == u'\n') {
            ++i;
        }
        start = i + 1;
    }
    if (start < size) {
        lines.append(text.sliced(start));
    }
    return lines;
}

}  // namespace

QString ListWindowTitle(const QString& listFileName) {
    if (listFileName.isEmpty()) {
        return QStringLiteral("Velmora - (Untitled List)");
    }
    return QStringLiteral("Velmora - (") + GetFileNameFromPath(listFileName) + u')';
}

void NewItemList(MainModel& model, const QString& listType) {
    model.state.setWindowTitle(ListWindowTitle(QString()));
    model.state.setListFileName(QString());
    model.items.clearRows();
    model.state.setListType(listType);
    ClearColumns(model);
    AddSharedColumns(model);
    if (ListTypeOf(listType) == ListType::Mp3) {
        AddMP3Columns(model);
        model.state.setTypeImage(ListState::Picture::MP3);
    } else {
        AddMPEGColumns(model);
        model.state.setTypeImage(ListState::Picture::MPEG);
    }
    UpdateListTotals(model);
}

QByteArray ListFileText(const MainModel& model) {
    const ItemList& items = model.items;
    const int subItems = items.headerCount() - 1;
    QString text;
    text.reserve(64 + static_cast<qsizetype>(items.count()) * 160);
    text += QLatin1String(kListFileHeader);
    text += QLatin1String("\r\n<");
    text += model.state.listType();
    text += QLatin1String(">\r\n");
    for (int i = 1; i <= items.count(); ++i) {
        text += items.cell(i, SharedCell::Filename);
        for (int j = 1; j <= subItems; ++j) {
            text += u'|';
            text += items.cell(i, j);
        }
        text += QLatin1String("\r\n");
    }
    return text.toUtf8();
}

bool SaveList(MainModel& model, short saveAs) {
    CommonDialog& dialog = model.commonDialog;
    if (model.state.listFileName().isEmpty() || saveAs == -1) {
        PrepareDialog(dialog, QStringLiteral("Save List"), Settings::DialogFolder::SaveList);
        dialog.filter = kListFilter;
        dialog.flags = DialogFlags::HideReadOnly;
        model.questions.showSave(dialog);
        if (dialog.fileName.isEmpty()) {
            return false;
        }
        RememberDialogFolder(dialog, Settings::DialogFolder::SaveList);
    } else {
        dialog.fileName = model.state.listFileName();
    }
    const QString path = dialog.fileName;

    // A failed save leaves the old file (or no file) and never half a list,
    // says why, and leaves the list's name and title as they were: the user
    // must not believe the list is saved. A folder that allows no new file
    // but lets the list file be changed gets the file written in place.
    QString reason;
    if (!WriteFileWhole(path, ListFileText(model), true, &reason)) {
        model.questions.msgBox(QStringLiteral("Unable to save the list!") + QStringLiteral("\r\n") +
                                   path + QStringLiteral("\r\n\r\n") + reason,
                               Msg::OkOnly + Msg::Critical);
        return false;
    }
    model.state.setWindowTitle(ListWindowTitle(path));
    model.state.setListFileName(path);
    return true;
}

bool ReadListFileText(MainModel& model, const QByteArray& data, const QString& path) {
    const QString text = decodeListFile(data);
    const QList<QStringView> lines = splitLines(text);
    if (!lines.isEmpty()) {
        // The whole first line must be the header: the only check there is.
        if (lines.first() != QLatin1String(kListFileHeader)) {
            return false;
        }
        ClearList(model, 0);
    }
    if (lines.size() >= 2) {
        // The type is what stands between the brackets, whatever it is. An
        // unknown one leaves the four shared columns and the old type image.
        QString listType = lines.at(1).toString();
        listType.remove(u'<');
        listType.remove(u'>');
        model.state.setListType(listType);
        setListLayout(model, listType, true);
    }
    if (lines.size() >= 3) {
        // Fields beyond the last column fall off; an empty line is no row.
        const qsizetype keep = std::max(1, model.items.headerCount());
        QList<QStringList> rows;
        rows.reserve(lines.size() - 2);
        for (qsizetype n = 2; n < lines.size(); ++n) {
            const QStringView line = lines.at(n);
            if (line.isEmpty()) {
                continue;
            }
            QStringList cells;
            for (const QStringView field : line.tokenize(u'|')) {
                if (cells.size() == keep) {
                    break;
                }
                cells.append(field.toString());
            }
            rows.append(std::move(cells));
        }
        model.items.appendRows(std::move(rows));
        // The open reads no file: the rows are checked in the background,
        // once the list is shown.
        model.listCheck.start(model.state.listType());
    }
    model.state.setWindowTitle(ListWindowTitle(path));
    model.state.setListFileName(path);
    UpdateListTotals(model);
    return true;
}

void OpenList(MainModel& model) {
    CommonDialog& dialog = model.commonDialog;
    PrepareDialog(dialog, QStringLiteral("Open List"), Settings::DialogFolder::OpenList);
    dialog.filter = kListFilter;
    dialog.flags = DialogFlags::HideReadOnly;
    model.questions.showOpen(dialog);
    if (dialog.fileName.isEmpty()) {
        return;
    }
    // The folder is remembered before the file is looked at, so also for a
    // file that turns out to be invalid.
    RememberDialogFolder(dialog, Settings::DialogFolder::OpenList);
    OpenListFile(model, dialog.fileName);
}

bool OpenListFile(MainModel& model, const QString& path) {
    QFile file(path);
    bool read = file.open(QIODevice::ReadOnly);
    QByteArray data;
    if (read) {
        data = file.readAll();
        read = file.error() == QFileDevice::NoError;
    }
    if (!read || !ReadListFileText(model, data, path)) {
        model.questions.msgBox(QStringLiteral("Unable to open; Invalid File!"),
                               Msg::OkOnly + Msg::Exclamation);
        return false;
    }
    return true;
}

void RemoveItem(MainModel& model, int index) {
    model.items.removeRow(index);
    UpdateListTotals(model);
}

void ClearList(MainModel& model, short ask) {
    bool goOn = true;
    if (ask == -1) {
        goOn = model.questions.msgBox(
                   QStringLiteral("Are you sure you would like to clear your list?"),
                   Msg::YesNo + Msg::Question) == Msg::Yes;
    }
    if (goOn) {
        model.items.clearRows();
    }
    UpdateListTotals(model);
}

void RemoveDuplicatedFiles(MainModel& model) {
    ItemList& items = model.items;
    const int rows = items.count();
    // From the last row up: a row whose path stands again further down goes,
    // so the last of equal rows stays. One hash lookup per row.
    QList<bool> keep(rows, true);
    QSet<QString> seen;
    seen.reserve(rows);
    for (int i = rows; i >= 1; --i) {
        const QString path = items.cell(i, SharedCell::Filepath);
        if (seen.contains(path)) {
            keep[i - 1] = false;
        } else {
            seen.insert(path);
        }
    }
    items.removeRowsExcept(keep);
    UpdateListTotals(model);
    showRemovalReport(model, rows - items.count());
}

bool IsLiveFile(const QString& path) {
    if (path.isEmpty()) {
        return false;
    }
    // A plain file only; a name that starts with a dot is a hidden file.
    const QFileInfo info(path);
    return info.isFile() && !info.fileName().startsWith(u'.');
}

void RemoveDeadFiles(MainModel& model) {
    ItemList& items = model.items;
    const int rows = items.count();
    QList<bool> keep(rows, true);
    for (int i = 1; i <= rows; ++i) {
        keep[i - 1] = IsLiveFile(items.cell(i, SharedCell::Filepath));
    }
    // All dead rows go at once and the totals follow once: the same end as
    // removing them one by one from the bottom with totals after each.
    items.removeRowsExcept(keep);
    UpdateListTotals(model);
    showRemovalReport(model, rows - items.count());
}

void OnlyKeepBitrateItems(MainModel& model, const QString& bitrate) {
    ItemList& items = model.items;
    const int rows = items.count();
    QList<bool> keep(rows, true);
    for (int i = 1; i <= rows; ++i) {
        keep[i - 1] = items.cell(i, Mp3Cell::Bitrate) == bitrate;
    }
    items.removeRowsExcept(keep);
    UpdateListTotals(model);
    showRemovalReport(model, rows - items.count());
}

void MoveItemUp(MainModel& model, int index) {
    ItemList& items = model.items;
    if (index <= 1 || index > items.count()) {
        model.state.requestListFocus();
        return;
    }
    // The moved row is built anew above its neighbour with its name and
    // path; the old one goes, and both rows are filled from their files.
    items.insertRow(index - 1, items.cell(index, SharedCell::Filename));
    items.setCell(index - 1, SharedCell::Filepath, items.cell(index + 1, SharedCell::Filepath));
    items.removeRow(index + 1);
    FillListItem(model, index);
    FillListItem(model, index - 1);
    model.state.setSelectedIndex(index - 1);
    model.state.requestListFocus();
}

void MoveItemDown(MainModel& model, int index) {
    ItemList& items = model.items;
    if (index < 1 || index >= items.count()) {
        model.state.requestListFocus();
        return;
    }
    items.insertRow(index + 2, items.cell(index, SharedCell::Filename));
    items.setCell(index + 2, SharedCell::Filepath, items.cell(index, SharedCell::Filepath));
    items.removeRow(index);
    FillListItem(model, index);
    FillListItem(model, index + 1);
    model.state.setSelectedIndex(index + 1);
    model.state.requestListFocus();
}
