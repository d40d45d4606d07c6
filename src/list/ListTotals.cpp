#include "list/ListTotals.h"

#include <cmath>
#include <limits>

#include "list/CellValues.h"
#include "list/Columns.h"
#include "list/ListGrade.h"
#include "list/MainModel.h"

namespace {
const QString kKilobyteUnit = QStringLiteral(" KB");
}  // namespace

QString FormatKilobytes(double kilobytes, const QLocale& locale) {
    // Half away from zero, as the pattern rounds.
    const double rounded = std::round(kilobytes);
    if (rounded == 0 || !std::isfinite(rounded)) {
        return QString();
    }
    // Totals beyond 64 bits (cells of a damaged or hand-made list file) are
    // written out digit by digit all the same.
    if (std::fabs(rounded) >= 9.0e18) {
        return locale.toString(rounded, 'f', 0);
    }
    return locale.toString(static_cast<qlonglong>(rounded));
}

QString FormatClock(qint64 seconds) {
    constexpr qint64 kDay = 24 * 60 * 60;
    seconds %= kDay;
    if (seconds < 0) {
        seconds += kDay;
    }
    return QStringLiteral("%1:%2:%3")
        .arg(seconds / 3600, 2, 10, QLatin1Char('0'))
        .arg((seconds / 60) % 60, 2, 10, QLatin1Char('0'))
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

void UpdateListTotals(MainModel& model) {
    const ItemList& items = model.items;
    ListState& state = model.state;
    const QLocale locale;
    const int rows = items.count();
    state.setCountCaption(QString::number(rows));

    // Only the two known types have a duration column; rows of a list of any
    // other type add no seconds.
    int durationCell = -1;
    if (state.type() == ListType::Mp3) {
        durationCell = Mp3Cell::Duration;
    } else if (state.type() == ListType::Mpeg) {
        durationCell = MpegCell::Duration;
    }

    // The seconds total is a 32-bit count: a row that would carry it past
    // that adds nothing. Each row adds only its whole seconds and kilobytes;
    // a cell that holds no number adds nothing.
    qint32 seconds = 0;
    double kilobytes = 0;
    const CellValues values(locale);
    for (int i = 1; i <= rows; ++i) {
        if (durationCell >= 0) {
            if (const std::optional<double> value =
                    values.seconds(items.cellView(i, durationCell))) {
                const double sum = static_cast<double>(seconds) + std::floor(*value);
                if (sum >= std::numeric_limits<qint32>::min() &&
                    sum <= std::numeric_limits<qint32>::max()) {
                    seconds = static_cast<qint32>(sum);
                }
            }
        }
        if (const std::optional<double> value =
                values.kilobytes(items.cellView(i, SharedCell::Filesize))) {
            kilobytes += std::floor(*value);
        }
    }
    if (rows == 0) {
        state.setDurationCaption(QStringLiteral("00:00:00"));
        state.setSizeCaption(QStringLiteral("0 KB"));
    } else {
        state.setDurationCaption(FormatClock(seconds));
        state.setSizeCaption(FormatKilobytes(kilobytes, locale) + kKilobyteUnit);
    }
    UpdateListStatus(model);
}
