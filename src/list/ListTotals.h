#pragma once

#include <QLocale>
#include <QString>
#include <QStringView>
#include <QtGlobal>

// The totals read the cells through the cell values (ParseCellNumber among
// them).
#include "list/CellValues.h"

struct MainModel;

// Sets the item count, the total size and the total duration from the cells
// of the rows, then grades the list (UpdateListStatus). Called at the end of
// every routine that adds or removes rows.
void UpdateListTotals(MainModel& model);

// A size in the pattern "#,###,###": rounded to the nearest whole number,
// thousands grouped by the locale, and nothing at all for 0.
QString FormatKilobytes(double kilobytes, const QLocale& locale);

// Seconds added to the time 00:00:00, as "hh:mm:ss". The day is dropped, so
// 90000 seconds read "01:00:00".
QString FormatClock(qint64 seconds);
