#include "list/ListInfoFigures.h"

#include <QLocale>
#include <cmath>

#include "list/CellValues.h"
#include "list/ListTotals.h"
#include "list/MainModel.h"
#include "platform/Clipboard.h"
#include "platform/FileHelpers.h"

QString AverageDuration(const QString& durationCaption, int rows) {
    if (rows <= 0) {
        return QStringLiteral("00:00:00");
    }
    // A caption that reads as no time of day counts 0 seconds.
    const qint64 seconds = CellValues::listSeconds(durationCaption).value_or(0);
    // std::nearbyint rounds in the default mode, to nearest with an exact half
    // going to the even number: 5 seconds over 2 rows is 2 seconds.
    const double average = std::nearbyint(static_cast<double>(seconds) / rows);
    return FormatClock(static_cast<qint64>(average));
}

QString AverageSize(const QString& sizeCaption, int rows) {
    if (rows <= 0) {
        return QStringLiteral("0 KB");
    }
    const QLocale locale;
    const double total = CellValues(locale).listKilobytes(sizeCaption).value_or(0);
    return FormatKilobytes(total / rows, locale) + QStringLiteral(" KB");
}

QList<ListInfoRow> ListInfoRows(const MainModel& model) {
    const ListState& state = model.state;
    const int rows = model.items.count();
    const QString fileName = state.listFileName().isEmpty()
                                 ? QStringLiteral("(unsaved)")
                                 : GetFileNameFromPath(state.listFileName());
    return {
        {QStringLiteral("Filename"), fileName},
        {QStringLiteral("Status"), state.listStatus().toUpper()},
        {QString(), QString()},
        {QStringLiteral("List Type"), state.listType()},
        {QStringLiteral("Total items in list"), QString::number(rows)},
        {QStringLiteral("Duration"), state.durationCaption()},
        {QStringLiteral("Filesize"), state.sizeCaption()},
        {QString(), QString()},
        {QStringLiteral("Average Duration (Per File)"),
         AverageDuration(state.durationCaption(), rows)},
        {QStringLiteral("Average Size (Per File)"), AverageSize(state.sizeCaption(), rows)},
    };
}

QString ListInfoClipboardText(const QList<ListInfoRow>& rows) {
    QString text;
    for (const ListInfoRow& row : rows) {
        if (!row.item.isEmpty()) {
            text += row.item + u'=' + row.value + QLatin1String("\r\n");
        }
    }
    return text;
}

void CopyListInfo(Clipboard& clipboard, const QList<ListInfoRow>& rows) {
    clipboard.clear();
    const QString text = ListInfoClipboardText(rows);
    if (!text.isEmpty()) {
        clipboard.setText(text);
    }
}
