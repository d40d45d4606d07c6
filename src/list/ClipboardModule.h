#pragma once

#include <QString>

struct MainModel;
class ItemList;

// Rows through the system clipboard as plain text. An item entry is "VLR:"
// followed by the row's cells split by "|"; it can be pasted back, also into
// another running copy of the program. The list text is one line per row of
// quoted, comma-separated cells, for other programs.

// Puts the item entry of the row at index on the clipboard; with cut -1 the
// row is removed afterwards. For an index without a row the clipboard ends
// up empty.
void CopyItem(MainModel& model, int index, short cut);
inline void CutItem(MainModel& model, int index) {
    CopyItem(model, index, -1);
}

// Adds the file of the item entry on the clipboard at the end of the list,
// filled anew from the file, and selects it. Any other text shows "Invalid
// Clipboard Entry.".
void PasteItem(MainModel& model);

// Puts the list text on the clipboard; an empty list leaves the clipboard
// as it was.
void CopyList(MainModel& model);

// The item entry of a row, and the list text of all rows.
QString ItemEntryText(const ItemList& items, int index);
QString ListClipboardText(const ItemList& items);
