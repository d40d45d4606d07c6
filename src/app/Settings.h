#pragma once

#include <QString>
#include <optional>

// Settings.ini, the user's lasting choices: every section and key of the file
// is named here and nowhere else, with a typed read and write per concern.
// Nothing is kept in memory: each read goes to the file at the moment of use,
// each write goes to the file at once (see app/IniFile.h for the file's rules).
namespace Settings {

// A check box as stored: 0 clear, 1 checked, 2 greyed. No value when the
// stored text is absent or not one of these whole numbers.
using CheckBoxValue = std::optional<int>;

// [Splashscreen] DoNotShowAtStartup.
CheckBoxValue SplashscreenDoNotShowAtStartup();
void SetSplashscreenDoNotShowAtStartup(int checkBox);

// [NewList] DoNotAskMeAgain.
CheckBoxValue NewListDoNotAskMeAgain();
void SetNewListDoNotAskMeAgain(int checkBox);

// [NewList] ListType, the default list type: "MP3" or "MPEG". Only the exact
// text "MPEG" reads as MPEG.
bool NewListTypeIsMpeg();
void SetNewListType(bool mpeg);

// [Tips] ShowAtStartup.
CheckBoxValue TipsShowAtStartup();
void SetTipsShowAtStartup(int checkBox);

// [Join] WriteTagsAndChapters: whether an MP3 join writes a tag and one
// chapter per source into the joined file (the Preferences box).
CheckBoxValue JoinWriteTagsAndChapters();
void SetJoinWriteTagsAndChapters(int checkBox);
// The same as the join reads it: on unless the stored value is 0 (so on when
// the key is absent). A choice made for this process alone (below) comes
// before the stored value.
bool JoinWritesTagsAndChapters();
// Decides the join's tags and chapters for the rest of the process without
// touching the file (the command line's --no-tags); nothing returns to the
// stored value.
void OverrideJoinWritesTagsAndChapters(std::optional<bool> writes);

// [Tips] Count and Tip1, Tip2...: the number of tips as stored (a text the
// tips window reads as a number) and the text of tip n.
QString TipsCountText();
QString TipText(int n);

// [Commondialog]: the folder each file dialog opened in last. A stored value
// ends at the first character 0.
enum class DialogFolder { AddFiles, OpenList, SaveList, JoinFiles };
QString DialogFolderOf(DialogFolder dialog);
void SetDialogFolder(DialogFolder dialog, const QString& folder);

}  // namespace Settings
