#pragma once

#include <QStringList>
#include <QTemporaryDir>
#include <ostream>

#include "app/AppPaths.h"
#include "list/ListFunctions.h"
#include "list/MainModel.h"
#include "support/MemoryClipboard.h"
#include "support/ScriptedQuestions.h"

// Readable texts in test failure messages.
inline void PrintTo(const QString& text, std::ostream* os) {
    *os << '"' << text.toStdString() << '"';
}

// A list with its questions, clipboard and a per-user folder of its own, for
// the tests of the list routines.
struct ListTestModel {
    explicit ListTestModel(const QString& listType = QStringLiteral("MP3")) {
        SetAppDataFolder(appData.path());
        NewItemList(model, listType);
    }

    // Adds a row with the given cells (cell 0 first) straight into the list.
    int addRow(const QStringList& cells) {
        const int row = model.items.addRow(cells.value(0));
        for (int i = 1; i < cells.size(); ++i) {
            model.items.setCell(row, i, cells.at(i));
        }
        return row;
    }

    // An MP3 row with the cells the totals and the grading read.
    int addMp3(const QString& path, const QString& size, const QString& duration,
               const QString& hertz, const QString& bitrate = QStringLiteral("128 kbps")) {
        return addRow({path.section(u'/', -1), size, QStringLiteral("1/1/2020 10:00 AM"), path, "",
                       "", "", "", "", duration, bitrate, hertz});
    }

    int addMpeg(const QString& path, const QString& size, const QString& codec,
                const QString& picture, const QString& duration) {
        return addRow({path.section(u'/', -1), size, QStringLiteral("1/1/2020 10:00 AM"), path,
                       codec, picture, duration});
    }

    QStringList column(int cell) const {
        QStringList texts;
        for (int i = 1; i <= model.items.count(); ++i) {
            texts.append(model.items.cell(i, cell));
        }
        return texts;
    }

    QTemporaryDir appData;
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainModel model{questions, clipboard};
};
