#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "app/AppPaths.h"
#include "app/IniFile.h"
#include "app/WindowSettings.h"

namespace {

class WindowSettingsTest : public ::testing::Test {
protected:
    void SetUp() override {
        saved = AppDataFolder();
        SetAppDataFolder(dir.path());
    }
    void TearDown() override { SetAppDataFolder(saved); }
    void writeSettings(const QByteArray& content) {
        QFile out(SettingsFile());
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(content);
    }
    QByteArray settingsBytes() {
        QFile in(SettingsFile());
        EXPECT_TRUE(in.open(QIODevice::ReadOnly));
        return in.readAll();
    }
    QTemporaryDir dir;
    QString saved;
};

TEST_F(WindowSettingsTest, GetNewListSettings_MissingFile_LeavesDesignState) {
    NewListControls controls;
    GetNewListSettings(controls);
    EXPECT_EQ(controls.DoNotAskMeAgain, 0);
    EXPECT_TRUE(controls.OptionMP3);
    EXPECT_FALSE(controls.OptionMPEG);
}

TEST_F(WindowSettingsTest, GetNewListSettings_StoredValues_AreShown) {
    writeSettings("[NewList]\nDoNotAskMeAgain=1\nListType=MPEG\n");
    NewListControls controls;
    GetNewListSettings(controls);
    EXPECT_EQ(controls.DoNotAskMeAgain, 1);
    EXPECT_TRUE(controls.OptionMPEG);
    EXPECT_FALSE(controls.OptionMP3);
}

TEST_F(WindowSettingsTest, GetNewListSettings_LowerCaseMpeg_CountsAsMp3) {
    writeSettings("[NewList]\nListType=mpeg\n");
    NewListControls controls;
    GetNewListSettings(controls);
    EXPECT_TRUE(controls.OptionMP3);
    EXPECT_FALSE(controls.OptionMPEG);
}

TEST_F(WindowSettingsTest, LowerCaseMpeg_IsStoredAsMp3AtNextClose) {
    writeSettings("[NewList]\nDoNotAskMeAgain=0\nListType=mpeg\n");
    NewListControls controls;
    GetNewListSettings(controls);
    SaveNewListSettings(controls);
    EXPECT_EQ(settingsBytes(), QByteArray("[NewList]\nDoNotAskMeAgain=0\nListType=MP3\n"));
}

TEST_F(WindowSettingsTest, GetNewListSettings_NotANumber_LeavesCheckBoxUnchanged) {
    writeSettings("[NewList]\nDoNotAskMeAgain=yes\n");
    NewListControls controls;
    controls.DoNotAskMeAgain = 1;
    GetNewListSettings(controls);
    EXPECT_EQ(controls.DoNotAskMeAgain, 1);
    controls.DoNotAskMeAgain = 0;
    GetNewListSettings(controls);
    EXPECT_EQ(controls.DoNotAskMeAgain, 0);
}

TEST_F(WindowSettingsTest, GetNewListSettings_OnlyOneChecksTheBox) {
    for (const char* stored : {"0", "2", "-1", "true", ""}) {
        writeSettings(QByteArray("[NewList]\nDoNotAskMeAgain=") + stored + "\n");
        NewListControls controls;
        GetNewListSettings(controls);
        EXPECT_NE(controls.DoNotAskMeAgain, 1) << stored;
    }
    writeSettings("[NewList]\nDoNotAskMeAgain=1\n");
    NewListControls controls;
    GetNewListSettings(controls);
    EXPECT_EQ(controls.DoNotAskMeAgain, 1);
}

TEST_F(WindowSettingsTest, SaveNewListSettings_WritesBothKeys) {
    NewListControls controls;
    controls.DoNotAskMeAgain = 1;
    controls.OptionMP3 = false;
    controls.OptionMPEG = true;
    SaveNewListSettings(controls);
    EXPECT_EQ(settingsBytes(), QByteArray("[NewList]\nDoNotAskMeAgain=1\nListType=MPEG\n"));
}

TEST_F(WindowSettingsTest, SavePreferences_WritesFourKeysInOrder) {
    PreferencesControls controls;
    controls.DoNotShowSplashscreenAtStartup = 1;
    controls.DoNotShowNewListDialogAtStartup = 0;
    controls.WriteTagsAndChapters = 0;
    SavePreferences(controls);
    EXPECT_EQ(settingsBytes(), QByteArray("[Splashscreen]\nDoNotShowAtStartup=1\n"
                                          "[NewList]\nDoNotAskMeAgain=0\nListType=MP3\n"
                                          "[Join]\nWriteTagsAndChapters=0\n"));
}

TEST_F(WindowSettingsTest, GetPreferences_ReadsWhatSavePreferencesWrote) {
    PreferencesControls written;
    written.DoNotShowSplashscreenAtStartup = 1;
    written.DoNotShowNewListDialogAtStartup = 1;
    written.DefaultListTypeMP3 = false;
    written.DefaultListTypeMPEG = true;
    written.WriteTagsAndChapters = 0;
    SavePreferences(written);
    PreferencesControls read;
    GetPreferences(read);
    EXPECT_EQ(read.WriteTagsAndChapters, 0);
    EXPECT_EQ(read.DoNotShowSplashscreenAtStartup, 1);
    EXPECT_EQ(read.DoNotShowNewListDialogAtStartup, 1);
    EXPECT_TRUE(read.DefaultListTypeMPEG);
    EXPECT_FALSE(read.DefaultListTypeMP3);
}

TEST_F(WindowSettingsTest, GetPreferences_MissingFile_LeavesDesignState) {
    PreferencesControls controls;
    GetPreferences(controls);
    EXPECT_EQ(controls.DoNotShowSplashscreenAtStartup, 0);
    EXPECT_EQ(controls.DoNotShowNewListDialogAtStartup, 0);
    EXPECT_TRUE(controls.DefaultListTypeMP3);
    EXPECT_FALSE(controls.DefaultListTypeMPEG);
}

TEST_F(WindowSettingsTest, TipsSettings_RoundTrip) {
    TipsControls controls;
    GetTipsSettings(controls);
    EXPECT_EQ(controls.ShowAtStartup, 0);
    controls.ShowAtStartup = 1;
    SaveTipsSettings(controls);
    TipsControls read;
    GetTipsSettings(read);
    EXPECT_EQ(read.ShowAtStartup, 1);
}

TEST_F(WindowSettingsTest, MissingSettingsFile_FirstCloseCreatesIt) {
    ASSERT_FALSE(QFile::exists(SettingsFile()));
    TipsControls controls;
    SaveTipsSettings(controls);
    EXPECT_EQ(settingsBytes(), QByteArray("[Tips]\nShowAtStartup=0\n"));
}

TEST_F(WindowSettingsTest, ReadOnlySettings_BecomeWritableAtFirstWrite) {
    writeSettings("[Tips]\r\nCount=2\r\nShowAtStartup=1\r\n");
    ASSERT_TRUE(QFile::setPermissions(SettingsFile(), QFile::ReadOwner));
    TipsControls controls;
    SaveTipsSettings(controls);
    EXPECT_EQ(settingsBytes(), QByteArray("[Tips]\r\nCount=2\r\nShowAtStartup=0\r\n"));
    EXPECT_TRUE(QFile::permissions(SettingsFile()) & QFile::WriteOwner);
}

}  // namespace
