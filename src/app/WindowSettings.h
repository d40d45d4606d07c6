#pragma once

// The lasting choices of three windows, to and from Settings.ini. Each window
// copies its controls into the small struct below (check boxes as 0 or 1,
// option buttons as on/off) and back; the routines hold the rules of which key
// is read and written and how.

// The NewList dialog: "Don't ask me again" and the chosen list type.
struct NewListControls {
    int DoNotAskMeAgain = 0;
    bool OptionMP3 = true;  // the design state: MP3 selected
    bool OptionMPEG = false;
};

// The Preferences window.
struct PreferencesControls {
    int DoNotShowSplashscreenAtStartup = 0;
    int DoNotShowNewListDialogAtStartup = 0;
    bool DefaultListTypeMP3 = true;  // the design state: MP3 selected
    bool DefaultListTypeMPEG = false;
    int WriteTagsAndChapters = 1;  // on by default
};

// The Tips window.
struct TipsControls {
    int ShowAtStartup = 0;
};

// Written when the window closes.
void SaveNewListSettings(const NewListControls& controls);
void SavePreferences(const PreferencesControls& controls);
void SaveTipsSettings(const TipsControls& controls);

// Read when the window loads. A value that is absent or not a check-box number
// leaves the control as it is; only the exact text "MPEG" selects the MPEG
// option, anything else leaves the design state (MP3) standing.
void GetNewListSettings(NewListControls& controls);
void GetPreferences(PreferencesControls& controls);
void GetTipsSettings(TipsControls& controls);
