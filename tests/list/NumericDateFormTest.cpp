#include <gtest/gtest.h>

#include <QDateTime>
#include <QLocale>

#include "list/NumericDateForm.h"

namespace {

// Locales whose short date and time forms differ in their order, their
// separators, two- or four-digit years, 12 or 24 hours and the morning and
// afternoon words, quoted literals among them.
const char* const kLocales[] = {"C",     "en_US", "en_GB", "en_CA", "de_DE", "fr_FR", "ja_JP",
                                "es_ES", "ko_KR", "hi_IN", "nl_NL", "fi_FI", "sv_SE", "pl_PL",
                                "he_IL", "bg_BG", "hu_HU", "cs_CZ", "el_GR", "zh_CN", "ar_EG"};

// Times across the day's turns (midnight, noon, one in the afternoon) and
// dates across months, years and both centuries of a two-digit year.
std::vector<QDateTime> sampleTimes() {
    std::vector<QDateTime> times;
    const QTime clock[] = {QTime(0, 0),  QTime(0, 59), QTime(11, 59),
                           QTime(12, 0), QTime(13, 5), QTime(23, 59)};
    const QDate days[] = {QDate(1999, 12, 31), QDate(2000, 1, 1),  QDate(2023, 2, 28),
                          QDate(2024, 2, 29),  QDate(2026, 10, 9), QDate(1970, 7, 4)};
    for (const QDate& day : days) {
        for (const QTime& time : clock) {
            times.emplace_back(day, time);
        }
    }
    return times;
}

}  // namespace

TEST(NumericDateForm, EveryLocalesShortForm_ReadsAsTheLocaleReadsIt) {
    int quick = 0;
    for (const char* name : kLocales) {
        const QLocale locale(QString::fromLatin1(name));
        const QString format = locale.dateTimeFormat(QLocale::ShortFormat);
        const NumericDateForm form(format, locale);
        for (const QDateTime& time : sampleTimes()) {
            const QString text = locale.toString(time, QLocale::ShortFormat);
            const std::optional<WallClockTime> read = form.read(text);
            if (!read) {
                EXPECT_FALSE(form.usable()) << name << ": " << text.toStdString();
                continue;
            }
            ++quick;
            EXPECT_EQ(QDateTime(read->date, read->time), locale.toDateTime(text, format))
                << name << ": " << text.toStdString() << " in " << format.toStdString();
        }
    }
    // Most of these forms are of numbers: the quick reader reads them.
    EXPECT_GT(quick, 15 * static_cast<int>(sampleTimes().size()));
}

TEST(NumericDateForm, TextsOffTheForm_GiveNothing) {
    const QLocale us(QLocale::English, QLocale::UnitedStates);
    const NumericDateForm form(QStringLiteral("M/d/yy h:mm AP"), us);
    ASSERT_TRUE(form.usable());
    const std::optional<WallClockTime> evening = form.read(u"12/31/23 11:05 PM");
    ASSERT_TRUE(evening);
    EXPECT_EQ(evening->date, QDate(1923, 12, 31));
    EXPECT_EQ(evening->time, QTime(23, 5));
    const std::optional<WallClockTime> night = form.read(u"1/2/99 12:30 am");
    ASSERT_TRUE(night);
    EXPECT_EQ(night->date, QDate(1999, 1, 2));
    EXPECT_EQ(night->time, QTime(0, 30));
    EXPECT_FALSE(form.read(u"13/31/23 11:05 PM"));  // no 13th month
    EXPECT_FALSE(form.read(u"2/30/23 11:05 PM"));   // no 30th of February
    EXPECT_FALSE(form.read(u"12/31/23 13:05 PM"));  // no 13 on a 12-hour clock
    EXPECT_FALSE(form.read(u"12/31/23 11:05"));     // the afternoon word missing
    EXPECT_FALSE(form.read(u"12/31/23 11:05 PM x"));
    EXPECT_FALSE(form.read(u"12-31-23 11:05 PM"));
    EXPECT_FALSE(form.read(u""));
}

TEST(NumericDateForm, FormsWithNamesOrOtherDigits_AreNotUsable) {
    const QLocale c = QLocale::c();
    EXPECT_FALSE(NumericDateForm(QStringLiteral("d MMM yyyy HH:mm:ss"), c).usable());
    EXPECT_FALSE(NumericDateForm(QStringLiteral("dddd d/M/yy"), c).usable());
    EXPECT_FALSE(NumericDateForm(QStringLiteral("d/M/yy t"), c).usable());
    EXPECT_FALSE(NumericDateForm(QStringLiteral("d/M/yy 'open"), c).usable());
    const QLocale arabic(QLocale::Arabic, QLocale::Egypt);
    EXPECT_FALSE(NumericDateForm(arabic.dateTimeFormat(QLocale::ShortFormat), arabic).usable());
    EXPECT_TRUE(NumericDateForm(QStringLiteral("d.MM.yy 'г'. H:mm 'ч'."), c).usable());
}
