#include "cli/JsonFormat.h"

#include <QJsonDocument>

QString JsonText(QJsonObject document) {
    document.insert(QStringLiteral("format_version"), kJsonFormatVersion);
    return QString::fromUtf8(QJsonDocument(document).toJson(QJsonDocument::Indented)).trimmed();
}
