#include <gtest/gtest.h>

#include <QLocale>

#include "ListTestModel.h"
#include "list/NaturalOrder.h"

namespace {

// Sets the default locale for one test and puts the pinned one back.
class DefaultLocale {
public:
    explicit DefaultLocale(const QLocale& locale) { QLocale::setDefault(locale); }
    ~DefaultLocale() { QLocale::setDefault(previous_); }

private:
    QLocale previous_;
};

const QStringList kNumberedNames = {
    "12.mp3",          "Track 2.mp3", "2.mp3",          "track 10.mp3", "10.mp3",
    "Disc 1 - 10.mp3", "1.mp3",       "Disc 1 - 9.mp3", "11.mp3",       "3.mp3"};

const QStringList kNaturalOrder = {
    "1.mp3",  "2.mp3",          "3.mp3",           "10.mp3",      "11.mp3",
    "12.mp3", "Disc 1 - 9.mp3", "Disc 1 - 10.mp3", "Track 2.mp3", "track 10.mp3"};

}  // namespace

TEST(NaturalOrder, NumberedNames_DigitsCompareByValueAndCaseIsIgnored) {
    EXPECT_EQ(SortedNaturally(kNumberedNames), kNaturalOrder);
}

TEST(NaturalOrder, CLocale_StillComparesDigitsByValue) {
    DefaultLocale c(QLocale::c());
    EXPECT_EQ(SortedNaturally(kNumberedNames), kNaturalOrder);
}

TEST(NaturalOrder, OtherLocale_ComparesDigitsByValue) {
    DefaultLocale german(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(SortedNaturally({"Teil 10", "teil 9", "Teil 1"}),
              QStringList({"Teil 1", "teil 9", "Teil 10"}));
}

TEST(NaturalOrder, TextsEqualButForCase_KeepTheirOrderInBothDirections) {
    const NaturalOrder order;
    EXPECT_EQ(order.compare("a", "A"), 0);
    const QStringList texts = {"b", "A", "B", "a"};
    EXPECT_EQ(order.order(texts), QList<int>({1, 3, 0, 2}));
    EXPECT_EQ(order.order(texts, true), QList<int>({0, 2, 1, 3}));
}
