#pragma once

struct MainModel;
class JoinWizardState;

// Turns the join wizard from a running window into a finished one, after a
// normal end and after a cancel: timers off, "You may now close this
// wizard...", "Time taken:", the written size of OutputFile (or
// "[Cancelled]"), "Finished!" or "Cancelled!", the bar full, "&Close", and
// the Options button enabled only after a normal end. When no OutputFile
// exists after a normal end, it stops after "Time taken:", and the window
// keeps "&Cancel" as the way out.
void FinishWizard(const MainModel& model, JoinWizardState& state, bool cancelled);

// The result actions of the Options menu, on OutputFile.
// "&Launch File": opens it with the desktop's program for its type.
void LaunchOutputFile(const MainModel& model);
// "&Open Folder": shows its folder in the file manager with it selected.
void OpenOutputFolder(const MainModel& model);
// "&Set ID3 Tag": asks the window to show the tag editor on it.
void SetID3TagOfOutput(const MainModel& model, JoinWizardState& state);
