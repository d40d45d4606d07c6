#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

class ItemList;
struct JoinTraits;
struct RowCheck;

// One row of a list as the command line reports it: its cells by column name,
// what the join check read of its file, and how it compares with the first
// row. The text form is indented lines "Name: value"; the JSON form objects
// whose keys are the column names and the check's values.

// The cells of a row, by the list's column headers, in column order.
QStringList CellLines(const ItemList& items, int position);
QJsonObject CellsObject(const ItemList& items, int position);

// What the join check reads of a file: for MP3 the MPEG version and layer,
// rate and channels; for MPEG the container, the video's codec, size, frame
// rate and aspect ratio and every audio stream. A file that is missing or
// cannot be read says so.
QStringList TraitLines(const JoinTraits& traits);
QJsonObject TraitsObject(const JoinTraits& traits);

// "none", "orange" or "red".
QString MarkName(const RowCheck& check);
