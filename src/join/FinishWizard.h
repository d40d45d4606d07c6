#pragma once

struct MainModel;
class JoinWizardState;

// How a join ended: with a whole output, cancelled by the user, or with a
// step that failed (and nothing left under the output's name).
enum class JoinEnd { Finished, Cancelled, Failed };

// Turns the join wizard from a running window into a finished one, after a
// normal end, a cancel and a failure: timers off, "You may now close this
// wizard...", "Time taken:", the written size of OutputFile (or "[Cancelled]",
// "[Failed]"), "Finished!", "Cancelled!" or "Failed!", "&Close", and the
// Options button enabled only after a normal end. The bar stands full after
// a normal end and a cancel; after a failure it stays where the run stopped.
// When no OutputFile exists after a normal end, it stops after "Time taken:",
// and the window keeps "&Cancel" as the way out.
void FinishWizard(const MainModel& model, JoinWizardState& state, JoinEnd end);

// The result actions of the Options menu, on OutputFile.
// "&Launch File": opens it with the desktop's program for its type.
void LaunchOutputFile(const MainModel& model);
// "&Open Folder": shows its folder in the file manager with it selected.
void OpenOutputFolder(const MainModel& model);
// "&Set ID3 Tag": asks the window to show the tag editor on it.
void SetID3TagOfOutput(const MainModel& model, JoinWizardState& state);
