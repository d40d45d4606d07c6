#pragma once

#include <QList>
#include <QString>

struct MainModel;
class Clipboard;

// One row of the List Info table; a row with an empty item is a blank
// separator.
struct ListInfoRow {
    QString item;
    QString value;
    bool operator==(const ListInfoRow&) const = default;
};

// The ten rows of the List Info table, worked out once from the list as it
// stands: the figures come from the captions of the info panel, not from the
// cells.
QList<ListInfoRow> ListInfoRows(const MainModel& model);

// The average duration per row of a duration caption ("hh:mm:ss"), rounded to
// whole seconds with an exact half going to the even number; "00:00:00" for
// no rows.
QString AverageDuration(const QString& durationCaption, int rows);

// The average size per row of a size caption, in the pattern "#,###,###" and
// " KB"; "0 KB" for no rows.
QString AverageSize(const QString& sizeCaption, int rows);

// The text the Copy button puts on the clipboard: "item=value" and CR LF for
// each row with an item, in table order.
QString ListInfoClipboardText(const QList<ListInfoRow>& rows);

// The Copy button: clears the clipboard and sets the text above.
void CopyListInfo(Clipboard& clipboard, const QList<ListInfoRow>& rows);
