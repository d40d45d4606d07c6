#pragma once

#include <QDate>
#include <QLocale>
#include <QString>
#include <QStringView>
#include <QTime>
#include <optional>
#include <vector>

// A date and the time of day as a clock on the wall shows them, without the
// time zone: what a Date Modified cell says.
struct WallClockTime {
    QDate date;
    QTime time;
};

// A date and time form made of numbers, separators and the morning and
// afternoon words ("M/d/yy h:mm AP", "dd.MM.yyyy HH:mm"), read without the
// locale's general parser, which takes tens of microseconds a text: a list of
// 100,000 rows sorted by date would wait seconds for it. A form with any other
// field (a month's name, a weekday, a time zone) or a locale that writes other
// digits than 0 to 9 is not usable here; a text that does not follow the form
// gives no value, and the caller asks the locale.
class NumericDateForm {
public:
    NumericDateForm(const QString& format, const QLocale& locale);

    bool usable() const { return usable_; }
    // The date and time of a text written in the form; a year of two digits
    // is one of the 1900s, as the locale reads it.
    std::optional<WallClockTime> read(QStringView text) const;

private:
    enum class Field { Literal, Day, Month, Year2, Year4, Hour24, Hour12, Minute, Second, AmPm };
    struct Part {
        Field field = Field::Literal;
        QString literal;
    };

    void add(Field field, QString literal = {});
    bool takeFields(const QString& format);

    std::vector<Part> parts_;
    QString am_;
    QString pm_;
    bool usable_ = false;
};
