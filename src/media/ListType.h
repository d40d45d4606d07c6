#pragma once

#include <QString>
#include <QStringView>

// The type of a list: which files it holds and which cells its rows have. The
// list keeps its type as the text of its caption ("MP3" or "MPEG"; a list file
// may name any other); the routines read it as this enum, and these two
// functions are the only place where the texts are compared or written.
enum class ListType { Mp3, Mpeg, Other };

// The type a text names: exactly "MP3" or "MPEG", anything else Other.
ListType ListTypeOf(QStringView text);

// The text of a type: "MP3" or "MPEG"; empty for Other.
QString ListTypeText(ListType type);
