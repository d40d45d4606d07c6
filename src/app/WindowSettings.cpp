#include "app/WindowSettings.h"

#include "app/Settings.h"

namespace {

// Sets a check box from a stored value; no value leaves it as it is.
void setCheckBox(int& checkBox, Settings::CheckBoxValue stored) {
    if (stored) {
        checkBox = *stored;
    }
}

}  // namespace

void SaveNewListSettings(const NewListControls& controls) {
    Settings::SetNewListDoNotAskMeAgain(controls.DoNotAskMeAgain);
    Settings::SetNewListType(!controls.OptionMP3);
}

void SavePreferences(const PreferencesControls& controls) {
    Settings::SetSplashscreenDoNotShowAtStartup(controls.DoNotShowSplashscreenAtStartup);
    Settings::SetNewListDoNotAskMeAgain(controls.DoNotShowNewListDialogAtStartup);
    Settings::SetNewListType(!controls.DefaultListTypeMP3);
    Settings::SetJoinWriteTagsAndChapters(controls.WriteTagsAndChapters);
}

void SaveTipsSettings(const TipsControls& controls) {
    Settings::SetTipsShowAtStartup(controls.ShowAtStartup);
}

void GetNewListSettings(NewListControls& controls) {
    setCheckBox(controls.DoNotAskMeAgain, Settings::NewListDoNotAskMeAgain());
    if (Settings::NewListTypeIsMpeg()) {
        controls.OptionMPEG = true;
        controls.OptionMP3 = false;
    }
}

void GetPreferences(PreferencesControls& controls) {
    setCheckBox(controls.DoNotShowSplashscreenAtStartup,
                Settings::SplashscreenDoNotShowAtStartup());
    setCheckBox(controls.DoNotShowNewListDialogAtStartup, Settings::NewListDoNotAskMeAgain());
    if (Settings::NewListTypeIsMpeg()) {
        controls.DefaultListTypeMPEG = true;
        controls.DefaultListTypeMP3 = false;
    }
    setCheckBox(controls.WriteTagsAndChapters, Settings::JoinWriteTagsAndChapters());
}

void GetTipsSettings(TipsControls& controls) {
    setCheckBox(controls.ShowAtStartup, Settings::TipsShowAtStartup());
}
