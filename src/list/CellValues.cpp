#include "list/CellValues.h"

#include <QDate>
#include <QTime>
#include <cmath>

namespace {

const QString kKilobyteUnit = QStringLiteral(" KB");
const QString kSecondsUnit = QStringLiteral(" seconds");
const QString kKbpsUnit = QStringLiteral(" kbps");
const QString kStereo = QStringLiteral(" (Stereo)");
const QString kMono = QStringLiteral(" (Mono)");
const QString kMpeg1Video = QStringLiteral("MPEG-1V");
const QString kMpeg2Video = QStringLiteral("MPEG-2V");

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

// The text with every occurrence of its unit deleted. The unit nearly always
// stands once, at the end, and is then cut off without a copy; otherwise the
// text is copied into scratch and the view points there.
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

// A whole number, blanks around it and a sign allowed.
std::optional<qint64> wholeNumber(QStringView text) {
    bool ok = false;
    const qint64 value = text.trimmed().toLongLong(&ok);
    if (!ok) {
        return std::nullopt;
    }
    return value;
}

}  // namespace

bool ParseCellNumber(QStringView text, const QLocale& locale, double& value) {
    return parseCellNumber(text, locale, locale.groupSeparator(), value);
}

CellValues::CellValues() : CellValues(QLocale()) {}

CellValues::CellValues(const QLocale& locale)
    : locale_(locale),
      group_(locale.groupSeparator()),
      dateFormat_(locale.dateTimeFormat(QLocale::ShortFormat)),
      dateForm_(dateFormat_, locale) {
    twoDigitYears_ =
        dateFormat_.contains(QLatin1String("yy")) && !dateFormat_.contains(QLatin1String("yyyy"));
    latestYear_ = QDate::currentDate().year() + 20;
}

std::optional<double> CellValues::number(QStringView text, const QString& unit) const {
    QString scratch;
    double value = 0;
    if (!parseCellNumber(withoutUnit(text, unit, scratch), locale_, group_, value)) {
        return std::nullopt;
    }
    return value;
}

std::optional<double> CellValues::kilobytes(QStringView filesize) const {
    return number(filesize, kKilobyteUnit);
}

std::optional<double> CellValues::seconds(QStringView duration) const {
    return number(duration, kSecondsUnit);
}

std::optional<double> CellValues::kbps(QStringView bitrate) const {
    return number(bitrate, kKbpsUnit);
}

std::optional<HertzValue> CellValues::hertz(QStringView hertz) const {
    HertzValue value;
    QStringView rate = hertz;
    if (rate.endsWith(kStereo)) {
        rate.chop(kStereo.size());
        value.channels = 1;
    } else if (rate.endsWith(kMono)) {
        rate.chop(kMono.size());
        value.channels = 0;
    }
    if (!parseCellNumber(rate, locale_, group_, value.rate)) {
        return std::nullopt;
    }
    return value;
}

std::optional<qint64> CellValues::year(QStringView year) const {
    return wholeNumber(year);
}

std::optional<WallClockTime> CellValues::wallClock(QStringView date) const {
    // The quick reader of a form of numbers first; the locale's own parser
    // for whatever that does not read.
    const QStringView text = date.trimmed();
    std::optional<WallClockTime> read = dateForm_.read(text);
    if (!read) {
        const QDateTime parsed = locale_.toDateTime(text.toString(), dateFormat_);
        if (!parsed.isValid()) {
            return std::nullopt;
        }
        read = WallClockTime{parsed.date(), parsed.time()};
    }
    if (twoDigitYears_) {
        // Two digits read as a year of the 1900s; a file is seldom older than
        // 80 years, and a clock set wrong seldom more than 20 years ahead.
        int year = read->date.year();
        while (year + 100 <= latestYear_) {
            year += 100;
        }
        read->date = read->date.addYears(year - read->date.year());
    }
    return read;
}

std::optional<QDateTime> CellValues::dateModified(QStringView date) const {
    const std::optional<WallClockTime> read = wallClock(date);
    if (!read) {
        return std::nullopt;
    }
    return QDateTime(read->date, read->time);
}

std::optional<qint64> CellValues::dateModifiedOrder(QStringView date) const {
    constexpr qint64 kDayMs = 24 * 60 * 60 * 1000;
    const std::optional<WallClockTime> read = wallClock(date);
    if (!read) {
        return std::nullopt;
    }
    return read->date.toJulianDay() * kDayMs + read->time.msecsSinceStartOfDay();
}

std::optional<VideoSizeValue> CellValues::videoSize(QStringView size) const {
    const qsizetype x = size.indexOf(u'x');
    if (x < 0) {
        return std::nullopt;
    }
    const std::optional<qint64> width = wholeNumber(size.first(x));
    const std::optional<qint64> height = wholeNumber(size.sliced(x + 1));
    if (!width || !height) {
        return std::nullopt;
    }
    return VideoSizeValue{*width, *height};
}

std::optional<double> CellValues::listKilobytes(QStringView caption) const {
    if (const std::optional<double> value = number(caption, kKilobyteUnit)) {
        return value;
    }
    QString scratch;
    bool ok = false;
    const double value =
        QLocale::c().toDouble(withoutUnit(caption, kKilobyteUnit, scratch).trimmed(), &ok);
    if (!ok || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

std::optional<qint64> CellValues::listSeconds(QStringView caption) {
    const QTime time = QTime::fromString(caption.trimmed().toString(), QStringLiteral("h:m:s"));
    if (!time.isValid()) {
        return std::nullopt;
    }
    return QTime(0, 0).secsTo(time);
}

std::optional<ClockFields> CellValues::clockFields(QStringView caption) {
    const std::optional<qint64> hours = wholeNumber(caption.mid(0, 2));
    const std::optional<qint64> minutes = wholeNumber(caption.mid(3, 2));
    const std::optional<qint64> seconds = wholeNumber(caption.mid(6, 2));
    if (!hours || !minutes || !seconds) {
        return std::nullopt;
    }
    return ClockFields{*hours, *minutes, *seconds};
}

VideoCodec CellValues::videoCodec(QStringView codec) {
    if (codec == kMpeg1Video) {
        return VideoCodec::Mpeg1;
    }
    if (codec == kMpeg2Video) {
        return VideoCodec::Mpeg2;
    }
    return VideoCodec::Other;
}
