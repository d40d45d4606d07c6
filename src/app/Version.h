#pragma once

#include <QString>

// The program's own name, version and publisher site, written once here.
namespace Version {
inline constexpr int kMajor = 1;
inline constexpr int kMinor = 61;
inline const QString kProgramTitle = QStringLiteral("Velmora");
// The publisher's host (a reserved example name: the program never reads it,
// it only opens pages there in the user's browser).
inline const QString kPublisherHost = QStringLiteral("www.velmora.example");

// "1.61": major, ".", minor.
inline QString text() {
    return QString::number(kMajor) + u'.' + QString::number(kMinor);
}
}  // namespace Version
