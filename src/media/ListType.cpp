#include "media/ListType.h"

namespace {
const QString kMp3 = QStringLiteral("MP3");
const QString kMpeg = QStringLiteral("MPEG");
}  // namespace

ListType ListTypeOf(QStringView text) {
    if (text == kMp3) {
        return ListType::Mp3;
    }
    if (text == kMpeg) {
        return ListType::Mpeg;
    }
    return ListType::Other;
}

QString ListTypeText(ListType type) {
    switch (type) {
        case ListType::Mp3:
            return kMp3;
        case ListType::Mpeg:
            return kMpeg;
        case ListType::Other:
            break;
    }
    return QString();
}
