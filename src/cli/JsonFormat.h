#pragma once

#include <QJsonObject>
#include <QString>

// The JSON documents of the command line carry the version of their layout
// under "format_version": a reader checks it before it reads on. It goes up when a key changes
// its meaning or goes away; new keys keep it.
inline constexpr int kJsonFormatVersion = 1;

// The document as indented text, with "format_version" added.
QString JsonText(QJsonObject document);
