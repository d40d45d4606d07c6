#pragma once

// What python3-mutagen, a tag reader the program did not write, reads of an
// MP3 file's ID3v2 tag (support/tools/read_tag_with_mutagen.py): version,
// frames, texts, pictures, chapters and the table of contents, as JSON.

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QString>

// Debian's python3 (not one that may stand first on the PATH) runs the reader.
inline QJsonObject ReadTagWithMutagen(const QString& path) {
    QProcess process;
    process.start(QStringLiteral("/usr/bin/python3"),
                  {QStringLiteral(VELMORA_MUTAGEN_READER), path});
    process.waitForFinished(120000);
    const QByteArray errors = process.readAllStandardError();
    EXPECT_EQ(process.exitCode(), 0) << errors.toStdString();
    return QJsonDocument::fromJson(process.readAllStandardOutput()).object();
}
