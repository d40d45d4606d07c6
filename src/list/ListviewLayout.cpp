#include "list/ListviewLayout.h"

#include "list/MainModel.h"

void ClearColumns(MainModel& model) {
    model.items.clearColumns();
}

void AddSharedColumns(MainModel& model) {
    model.items.addColumn(QStringLiteral("Filename"));
    model.items.addColumn(QStringLiteral("Filesize"));
    model.items.addColumn(QStringLiteral("Date Modified"));
    model.items.addColumn(QStringLiteral("Filepath"), 0);
}

void AddMP3Columns(MainModel& model) {
    for (const char* text :
         {"Artist", "Title", "Album", "Year", "Genre", "Duration", "Bitrate", "Hertz"}) {
        model.items.addColumn(QString::fromLatin1(text));
    }
}

void AddMPEGColumns(MainModel& model) {
    for (const char* text : {"Video Codec", "Video Size", "Duration"}) {
        model.items.addColumn(QString::fromLatin1(text));
    }
}
