#include "app/WindowSettings.h"

#include "app/IniFile.h"

namespace {

// Sets a check box from a stored text. The text must be a whole number that a
// check box takes (0 clear, 1 checked, 2 greyed); anything else leaves the
// check box as it is.
void setCheckBox(int& checkBox, const QString& stored) {
    bool ok = false;
    const short value = stored.trimmed().toShort(&ok);
    if (ok && value >= 0 && value <= 2) {
        checkBox = value;
    }
}

QString listTypeText(bool mp3On) {
    return mp3On ? QStringLiteral("MP3") : QStringLiteral("MPEG");
}

bool isMpeg(const QString& stored) {
    return stored == QStringLiteral("MPEG");
}

const QString kJoinSection = QStringLiteral("Join");
const QString kTagsAndChaptersKey = QStringLiteral("WriteTagsAndChapters");

}  // namespace

void SaveNewListSettings(const NewListControls& controls) {
    WriteSetting(QStringLiteral("NewList"), QStringLiteral("DoNotAskMeAgain"),
                 QString::number(controls.DoNotAskMeAgain));
    WriteSetting(QStringLiteral("NewList"), QStringLiteral("ListType"),
                 listTypeText(controls.OptionMP3));
}

void SavePreferences(const PreferencesControls& controls) {
    WriteSetting(QStringLiteral("Splashscreen"), QStringLiteral("DoNotShowAtStartup"),
                 QString::number(controls.DoNotShowSplashscreenAtStartup));
    WriteSetting(QStringLiteral("NewList"), QStringLiteral("DoNotAskMeAgain"),
                 QString::number(controls.DoNotShowNewListDialogAtStartup));
    WriteSetting(QStringLiteral("NewList"), QStringLiteral("ListType"),
                 listTypeText(controls.DefaultListTypeMP3));
    WriteSetting(kJoinSection, kTagsAndChaptersKey, QString::number(controls.WriteTagsAndChapters));
}

void SaveTipsSettings(const TipsControls& controls) {
    WriteSetting(QStringLiteral("Tips"), QStringLiteral("ShowAtStartup"),
                 QString::number(controls.ShowAtStartup));
}

void GetNewListSettings(NewListControls& controls) {
    setCheckBox(controls.DoNotAskMeAgain,
                ReadSetting(QStringLiteral("NewList"), QStringLiteral("DoNotAskMeAgain")));
    if (isMpeg(ReadSetting(QStringLiteral("NewList"), QStringLiteral("ListType")))) {
        controls.OptionMPEG = true;
        controls.OptionMP3 = false;
    }
}

void GetPreferences(PreferencesControls& controls) {
    setCheckBox(controls.DoNotShowSplashscreenAtStartup,
                ReadSetting(QStringLiteral("Splashscreen"), QStringLiteral("DoNotShowAtStartup")));
    setCheckBox(controls.DoNotShowNewListDialogAtStartup,
                ReadSetting(QStringLiteral("NewList"), QStringLiteral("DoNotAskMeAgain")));
    if (isMpeg(ReadSetting(QStringLiteral("NewList"), QStringLiteral("ListType")))) {
        controls.DefaultListTypeMPEG = true;
        controls.DefaultListTypeMP3 = false;
    }
    setCheckBox(controls.WriteTagsAndChapters, ReadSetting(kJoinSection, kTagsAndChaptersKey));
}

void GetTipsSettings(TipsControls& controls) {
    setCheckBox(controls.ShowAtStartup,
                ReadSetting(QStringLiteral("Tips"), QStringLiteral("ShowAtStartup")));
}

bool WriteTagsAndChaptersIntoJoins() {
    PreferencesControls controls;
    setCheckBox(controls.WriteTagsAndChapters, ReadSetting(kJoinSection, kTagsAndChaptersKey));
    return controls.WriteTagsAndChapters != 0;
}
