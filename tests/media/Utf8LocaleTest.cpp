#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <clocale>
#include <cstdlib>
#include <string>

#include "ByteFiles.h"
#include "media/ItemCells.h"
#include "media/MediaInfoFile.h"
#include "media/Utf8Locale.h"
#include "support/MediaMaker.h"

namespace {

// Restores the C locale and LC_ALL of the environment after a test.
class LocaleGuard {
public:
    LocaleGuard() : ctype_(std::setlocale(LC_CTYPE, nullptr)) {
        const char* all = std::getenv("LC_ALL");
        hadAll_ = all != nullptr;
        all_ = hadAll_ ? all : "";
    }
    ~LocaleGuard() {
        if (hadAll_) {
            setenv("LC_ALL", all_.c_str(), 1);
        } else {
            unsetenv("LC_ALL");
        }
        std::setlocale(LC_CTYPE, ctype_.c_str());
    }

private:
    std::string ctype_;
    std::string all_;
    bool hadAll_ = false;
};

}  // namespace

TEST(Utf8Locale, PlainCLocale_BecomesUtf8) {
    LocaleGuard guard;
    setenv("LC_ALL", "C", 1);
    ASSERT_NE(std::setlocale(LC_CTYPE, "C"), nullptr);
    ASSERT_FALSE(CLocaleIsUtf8());
    EXPECT_TRUE(EnsureUtf8CLocale());
    EXPECT_TRUE(CLocaleIsUtf8());
}

TEST(Utf8Locale, UsersUtf8Locale_IsTakenFromTheEnvironment) {
    LocaleGuard guard;
    setenv("LC_ALL", "C.UTF-8", 1);
    ASSERT_NE(std::setlocale(LC_CTYPE, "C"), nullptr);
    EXPECT_TRUE(EnsureUtf8CLocale());
    EXPECT_TRUE(CLocaleIsUtf8());
}

TEST(Utf8Locale, Utf8Locale_IsKeptAsItIs) {
    LocaleGuard guard;
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    const std::string before = std::setlocale(LC_CTYPE, nullptr);
    setenv("LC_ALL", "C", 1);  // the environment is not consulted when nothing must change
    EXPECT_TRUE(EnsureUtf8CLocale());
    EXPECT_EQ(std::string(std::setlocale(LC_CTYPE, nullptr)), before);
}

TEST(Utf8Locale, NonAsciiName_OpensInTheLibraryEvenAfterPlainCLocale) {
    if (!HaveFfmpeg()) {
        GTEST_SKIP() << "ffmpeg not installed";
    }
    LocaleGuard guard;
    QTemporaryDir dir;
    Mp3Options options;
    options.bitrateKbps = 64;
    const QString path = MakeMp3(dir.path(), QString::fromUtf8("Ärger über Öl ☃.mp3"), options);
    ASSERT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
    setenv("LC_ALL", "C", 1);
    ASSERT_NE(std::setlocale(LC_CTYPE, "C"), nullptr);
    MediaInfoFile media(path);
    EXPECT_TRUE(media.opened());
    EXPECT_EQ(media.inform(QStringLiteral("Audio;%BitRate%")), "64000");
    const ItemCellTexts cells = ItemCells(path, QStringLiteral("MP3"));
    EXPECT_EQ(cells[10].value_or("none"), "640 kbps");
}
