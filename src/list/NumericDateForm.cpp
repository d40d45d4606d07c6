#include "list/NumericDateForm.h"

namespace {

bool isAsciiLetter(QChar c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

// A number of least to most ASCII digits at the text's position, which
// moves past them.
std::optional<int> digits(QStringView text, qsizetype& at, int least, int most) {
    int value = 0;
    int taken = 0;
    while (taken < most && at < text.size() && text[at] >= u'0' && text[at] <= u'9') {
        value = value * 10 + (text[at].unicode() - u'0');
        ++at;
        ++taken;
    }
    if (taken < least) {
        return std::nullopt;
    }
    return value;
}

// The word at the text's position, letter case ignored; the position moves
// past it.
bool takeWord(QStringView text, qsizetype& at, const QString& word) {
    if (word.isEmpty() || text.sliced(at).size() < word.size() ||
        text.sliced(at, word.size()).compare(word, Qt::CaseInsensitive) != 0) {
        return false;
    }
    at += word.size();
    return true;
}

}  // namespace

NumericDateForm::NumericDateForm(const QString& format, const QLocale& locale)
    : am_(locale.amText()), pm_(locale.pmText()) {
    usable_ = locale.zeroDigit() == QLatin1String("0") && takeFields(format);
}

void NumericDateForm::add(Field field, QString literal) {
    if (field == Field::Literal && !parts_.empty() && parts_.back().field == Field::Literal) {
        parts_.back().literal += literal;
        return;
    }
    parts_.push_back(Part{field, std::move(literal)});
}

bool NumericDateForm::takeFields(const QString& format) {
    qsizetype i = 0;
    while (i < format.size()) {
        const QChar c = format[i];
        if (c == u'\'') {
            // A quoted literal; two quotes stand for one.
            const qsizetype end = format.indexOf(u'\'', i + 1);
            if (end < 0) {
                return false;
            }
            add(Field::Literal,
                end == i + 1 ? QStringLiteral("'") : format.mid(i + 1, end - i - 1));
            i = end + 1;
            continue;
        }
        if (!isAsciiLetter(c)) {
            add(Field::Literal, QString(c));
            ++i;
            continue;
        }
        qsizetype run = 1;
        while (i + run < format.size() && format[i + run] == c) {
            ++run;
        }
        i += run;
        if ((c == u'A' || c == u'a') && run == 1 && i < format.size() &&
            (format[i] == u'P' || format[i] == u'p')) {
            ++i;
            add(Field::AmPm);
            continue;
        }
        const bool oneOrTwo = run <= 2;
        if (c == u'd' && oneOrTwo) {
            add(Field::Day);
        } else if (c == u'M' && oneOrTwo) {
            add(Field::Month);
        } else if (c == u'y' && (run == 2 || run == 4)) {
            add(run == 2 ? Field::Year2 : Field::Year4);
        } else if (c == u'H' && oneOrTwo) {
            add(Field::Hour24);
        } else if (c == u'h' && oneOrTwo) {
            add(Field::Hour12);
        } else if (c == u'm' && oneOrTwo) {
            add(Field::Minute);
        } else if (c == u's' && oneOrTwo) {
            add(Field::Second);
        } else {
            return false;
        }
    }
    return true;
}

std::optional<WallClockTime> NumericDateForm::read(QStringView text) const {
    if (!usable_) {
        return std::nullopt;
    }
    int day = 1;
    int month = 1;
    int year = 1900;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int afternoon = -1;
    bool twelveHours = false;
    qsizetype at = 0;
    for (const Part& part : parts_) {
        std::optional<int> value;
        switch (part.field) {
            case Field::Literal:
                if (!text.sliced(at).startsWith(part.literal)) {
                    return std::nullopt;
                }
                at += part.literal.size();
                continue;
            case Field::AmPm:
                if (takeWord(text, at, am_)) {
                    afternoon = 0;
                } else if (takeWord(text, at, pm_)) {
                    afternoon = 1;
                } else {
                    return std::nullopt;
                }
                continue;
            case Field::Year2:
                value = digits(text, at, 2, 2);
                year = value ? 1900 + *value : year;
                break;
            case Field::Year4:
                value = digits(text, at, 4, 4);
                year = value.value_or(year);
                break;
            case Field::Hour12:
                twelveHours = true;
                [[fallthrough]];
            case Field::Day:
            case Field::Month:
            case Field::Hour24:
            case Field::Minute:
            case Field::Second: {
                value = digits(text, at, 1, 2);
                int* target = part.field == Field::Day      ? &day
                              : part.field == Field::Month  ? &month
                              : part.field == Field::Minute ? &minute
                              : part.field == Field::Second ? &second
                                                            : &hour;
                *target = value.value_or(0);
                break;
            }
        }
        if (!value) {
            return std::nullopt;
        }
    }
    if (at != text.size() || (twelveHours && (afternoon < 0 || hour < 1 || hour > 12))) {
        return std::nullopt;
    }
    if (twelveHours) {
        hour = hour % 12 + (afternoon == 1 ? 12 : 0);
    }
    const QDate date(year, month, day);
    const QTime time(hour, minute, second);
    if (!date.isValid() || !time.isValid()) {
        return std::nullopt;
    }
    return WallClockTime{date, time};
}
