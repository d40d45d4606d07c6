#include "list/ClipboardModule.h"

#include <algorithm>

#include "list/Columns.h"
#include "list/FillListItem.h"
#include "list/ListFunctions.h"
#include "list/ListTotals.h"
#include "list/MainModel.h"
#include "platform/Clipboard.h"

namespace {
const QString kItemPrefix = QStringLiteral("VLR:");
}

QString ItemEntryText(const ItemList& items, int index) {
    if (index < 1 || index > items.count()) {
        return QString();
    }
    QString text = kItemPrefix + items.cell(index, SharedCell::Filename);
    for (int i = 1; i < items.headerCount(); ++i) {
        text += u'|';
        text += items.cell(index, i);
    }
    return text;
}

QString ListClipboardText(const ItemList& items) {
    const int columns = std::max(1, items.headerCount());
    QString text;
    text.reserve(static_cast<qsizetype>(items.count()) * 200);
    for (int row = 1; row <= items.count(); ++row) {
        for (int i = 0; i < columns; ++i) {
            if (i > 0) {
                text += u',';
            }
            // A double quote inside a cell is written as it stands.
            text += u'"';
            text += items.cell(row, i);
            text += u'"';
        }
        text += QLatin1String("\r\n");
    }
    return text;
}

void CopyItem(MainModel& model, int index, short cut) {
    // The entry is put together first and set once: the clipboard ends with
    // the same text as when it is built up on the clipboard cell by cell.
    model.clipboard.clear();
    const QString text = ItemEntryText(model.items, index);
    if (!text.isEmpty()) {
        model.clipboard.setText(text);
    }
    if (cut == -1) {
        RemoveItem(model, index);
    }
}

void PasteItem(MainModel& model) {
    const QString text = model.clipboard.text();
    if (!text.startsWith(kItemPrefix)) {
        model.questions.msgBox(QStringLiteral("Invalid Clipboard Entry."),
                               Msg::OkOnly + Msg::Exclamation);
        return;
    }
    // Only the path counts: the row is built anew from the file, for the
    // type of this list.
    const QStringList fields = text.split(u'|');
    const int row = model.items.addRow();
    if (fields.size() > SharedCell::Filepath) {
        model.items.setCell(row, SharedCell::Filepath, fields.at(SharedCell::Filepath));
    }
    FillListItem(model, 0);
    model.state.setSelectedIndex(model.items.count());
    UpdateListTotals(model);
}

void CopyList(MainModel& model) {
    if (model.items.count() == 0) {
        return;
    }
    const QString text = ListClipboardText(model.items);
    model.clipboard.clear();
    model.clipboard.setText(text);
}
