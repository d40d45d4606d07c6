#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFileInfo>

#include "app/IniFile.h"

namespace {

// The template of a new user's settings, as it is shipped beside the program.
QString defaultSettings() {
    return QCoreApplication::applicationDirPath() + "/DefaultSettings.ini";
}

QString read(const QString& section, const QString& key) {
    QString s = section, k = key, f = defaultSettings();
    return ReadIniValue(s, k, f);
}

class DefaultSettingsTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!QFileInfo::exists(defaultSettings())) {
            GTEST_SKIP() << "the install folder is not built in this build folder";
        }
    }
};

TEST_F(DefaultSettingsTest, Tips_CountAtLeastTwelveAndEveryTipPresent) {
    bool ok = false;
    const int count = read("Tips", "Count").toShort(&ok);
    ASSERT_TRUE(ok);
    EXPECT_GE(count, 12);
    for (int i = 1; i <= count; ++i) {
        const QString tip = read("Tips", "Tip" + QString::number(i));
        EXPECT_FALSE(tip.isEmpty()) << i;
        // A read value is cut at 254 characters: every tip must fit whole.
        EXPECT_LT(tip.size(), 254) << i;
    }
    EXPECT_TRUE(read("Tips", "Tip" + QString::number(count + 1)).isEmpty());
}

TEST_F(DefaultSettingsTest, NewUsers_SeeTipsAtStartup) {
    EXPECT_EQ(read("Tips", "ShowAtStartup"), QStringLiteral("1"));
}

TEST_F(DefaultSettingsTest, OtherSections_StartInTheDesignState) {
    EXPECT_NE(read("Splashscreen", "DoNotShowAtStartup"), QStringLiteral("1"));
    EXPECT_NE(read("NewList", "DoNotAskMeAgain"), QStringLiteral("1"));
    const QString type = read("NewList", "ListType");
    EXPECT_TRUE(type.isEmpty() || type == "MP3" || type == "MPEG");
}

}  // namespace
