#include "list/ListTotals.h"

#include <cmath>
#include <limits>

#include "list/Columns.h"
#include "list/ListGrade.h"
#include "list/MainModel.h"

namespace {

const QString kSecondsUnit = QStringLiteral(" seconds");
const QString kKilobyteUnit = QStringLiteral(" KB");

// Plain digits, or digits in groups of three behind a first group of one to
// three, split by the locale's group separator. This is what the size and
// duration cells hold nearly always, so it is read here without the
// locale's general parser.
bool parseWholeNumber(QStringView text, QStringView group, double& value) {
    if (text.isEmpty() || text.size() > 18 + 6 * group.size()) {
        return false;
    }
    qint64 number = 0;
    int digits = 0;
    int digitsInGroup = 0;
    bool grouped = false;
    qsizetype i = 0;
    while (i < text.size()) {
        const QChar c = text.at(i);
        if (c >= u'0' && c <= u'9') {
            // More than 18 digits may not fit in 64 bits: the general parser
            // reads those.
            if (++digits > 18) {
                return false;
            }
            number = number * 10 + (c.unicode() - u'0');
            ++digitsInGroup;
            ++i;
            continue;
        }
        if (group.isEmpty() || !text.sliced(i).startsWith(group)) {
            return false;
        }
        // A separator stands behind one to three digits, and behind exactly
        // three once the first group is past.
        if (digitsInGroup == 0 || digitsInGroup > 3 || (grouped && digitsInGroup != 3)) {
            return false;
        }
        grouped = true;
        digitsInGroup = 0;
        i += group.size();
    }
    if (digitsInGroup == 0 || (grouped && digitsInGroup != 3)) {
        return false;
    }
    value = static_cast<double>(number);
    return true;
}

// The text of a cell with every occurrence of its unit deleted. The unit
// nearly always stands once, at the end, and is then cut off without a copy.
QStringView withoutUnit(QStringView text, const QString& unit, QString& scratch) {
    QStringView view = text;
    if (view.endsWith(unit)) {
        view.chop(unit.size());
        if (!view.contains(unit)) {
            return view;
        }
    } else if (!view.contains(unit)) {
        return view;
    }
    scratch = text.toString();
    scratch.remove(unit);
    return scratch;
}

}  // namespace

namespace {

bool parseCellNumber(QStringView text, const QLocale& locale, QStringView group, double& value) {
    const QStringView trimmed = text.trimmed();
    if (trimmed.isEmpty()) {
        return false;
    }
    if (parseWholeNumber(trimmed, group, value)) {
        return true;
    }
    bool ok = false;
    const double parsed = locale.toDouble(trimmed, &ok);
    if (!ok || !std::isfinite(parsed)) {
        return false;
    }
    value = parsed;
    return true;
}

}  // namespace

bool ParseCellNumber(QStringView text, const QLocale& locale, double& value) {
    return parseCellNumber(text, locale, locale.groupSeparator(), value);
}

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
    if (state.listType() == QLatin1String("MP3")) {
        durationCell = Mp3Cell::Duration;
    } else if (state.listType() == QLatin1String("MPEG")) {
        durationCell = MpegCell::Duration;
    }

    // The seconds total is a 32-bit count: a row that would carry it past
    // that adds nothing. Each row adds only its whole seconds.
    qint32 seconds = 0;
    double kilobytes = 0;
    const QString group = locale.groupSeparator();
    QString scratch;
    for (int i = 1; i <= rows; ++i) {
        double value = 0;
        if (durationCell >= 0 &&
            parseCellNumber(withoutUnit(items.cellView(i, durationCell), kSecondsUnit, scratch),
                            locale, group, value)) {
            const double sum = static_cast<double>(seconds) + std::floor(value);
            if (sum >= std::numeric_limits<qint32>::min() &&
                sum <= std::numeric_limits<qint32>::max()) {
                seconds = static_cast<qint32>(sum);
            }
        }
        if (parseCellNumber(
                withoutUnit(items.cellView(i, SharedCell::Filesize), kKilobyteUnit, scratch),
                locale, group, value)) {
            kilobytes += std::floor(value);
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
