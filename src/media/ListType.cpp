#include "media/ListType.h"

// The texts are written in the functions rather than held in globals, so that
// a global of another file may be made from them whatever the order in which
// the program sets its globals up.

ListType ListTypeOf(QStringView text) {
    if (text == u"MP3") {
        return ListType::Mp3;
    }
    if (text == u"MPEG") {
        return ListType::Mpeg;
    }
    return ListType::Other;
}

QString ListTypeText(ListType type) {
    switch (type) {
        case ListType::Mp3:
            return QStringLiteral("MP3");
        case ListType::Mpeg:
            return QStringLiteral("MPEG");
        case ListType::Other:
            break;
    }
    return QString();
}
