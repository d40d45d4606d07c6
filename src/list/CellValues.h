#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <QStringView>
#include <optional>

#include "list/NumericDateForm.h"

// The values that the texts of the list stand for. The list holds texts only,
// each in the form in which it is shown; whatever needs a number, a date or a
// size reads it back here, so that the totals, List Info, the sort and the
// join read a text alike. A text that holds no value gives none, and what
// happens then is the caller's rule: the totals add nothing for it, the sort
// puts its row first.

// The number in a cell's text once its unit is gone: surrounding blanks are
// ignored, and the locale's digit grouping is accepted ("4,211" in a locale
// that groups with commas). False for empty or non-numeric text.
bool ParseCellNumber(QStringView text, const QLocale& locale, double& value);

// A Hertz cell ("44100 (Stereo)"): the sampling rate, then the channel word.
struct HertzValue {
    double rate = 0;
    // 0 for "(Mono)", 1 for "(Stereo)", -1 for a cell without a channel word.
    int channels = -1;
};

// A Video Size cell ("720x576").
struct VideoSizeValue {
    qint64 width = 0;
    qint64 height = 0;
};

// The three fields of a clock caption "hh:mm:ss", taken by position:
// characters 1 and 2, 4 and 5, 7 and 8.
struct ClockFields {
    qint64 hours = 0;
    qint64 minutes = 0;
    qint64 seconds = 0;
};

// The codec of a Video Codec cell, as far as the join tells codecs apart.
enum class VideoCodec { Mpeg1, Mpeg2, Other };

// Reads cells and the captions of the info panel in one locale: its digit
// grouping and its date and time form.
class CellValues {
public:
    // The default locale: the system's, unless the program set another.
    CellValues();
    explicit CellValues(const QLocale& locale);

    // Filesize ("1,234 KB"): the kilobytes, with every " KB" deleted first.
    std::optional<double> kilobytes(QStringView filesize) const;
    // Duration ("100 seconds"): the seconds, with every " seconds" deleted.
    std::optional<double> seconds(QStringView duration) const;
    // Bitrate ("320 kbps"): the kilobits a second, with every " kbps" deleted.
    std::optional<double> kbps(QStringView bitrate) const;
    // Hertz: the rate in front of the channel word, and the word.
    std::optional<HertzValue> hertz(QStringView hertz) const;
    // Year: a whole number, blanks around it allowed.
    std::optional<qint64> year(QStringView year) const;
    // Date Modified: the locale's short date and time, as the cell is
    // written. Where that form gives the year in two digits, the year is
    // taken within 80 years back and 20 years ahead of this year.
    std::optional<QDateTime> dateModified(QStringView date) const;
    // The same as milliseconds from a fixed day on the wall clock, time zones
    // left out: the order of the cells as they read, at a small part of the
    // cost of a local time.
    std::optional<qint64> dateModifiedOrder(QStringView date) const;
    // Video Size: width, "x", height, each a whole number.
    std::optional<VideoSizeValue> videoSize(QStringView size) const;

    // The size caption ("1,234 KB"): the kilobytes as in a Filesize cell, or
    // where the locale reads no number, as the C locale reads it.
    std::optional<double> listKilobytes(QStringView caption) const;
    // The duration caption, read as a time of day ("h:m:s"): the seconds from
    // 00:00:00.
    static std::optional<qint64> listSeconds(QStringView caption);
    // The duration caption by its three fields, each a whole number with
    // blanks and a sign allowed.
    static std::optional<ClockFields> clockFields(QStringView caption);
    // The Video Codec cell: exactly "MPEG-1V" or "MPEG-2V", else Other.
    static VideoCodec videoCodec(QStringView codec);

private:
    std::optional<WallClockTime> wallClock(QStringView date) const;
    std::optional<double> number(QStringView text, const QString& unit) const;

    QLocale locale_;
    QString group_;
    QString dateFormat_;
    NumericDateForm dateForm_;
    bool twoDigitYears_ = false;
    int latestYear_ = 0;
    mutable QString scratch_;
};
