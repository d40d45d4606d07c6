#pragma once

#include <QString>

struct CliContext;
struct MainModel;

// How one join of the command line ended.
enum class JoinOutcome {
    Joined,       // the output is there and right
    Refused,      // the pre-flight refused the list; nothing was written
    Failed,       // a step failed; nothing is left under the output's names
    Interrupted,  // cancelled by a signal (Ctrl-C); nothing is left
};

// Joins the model's list into outputFile as the window does: the pre-flight
// (its questions answered from the command line's options), the scripts, the
// run on its own timers with the progress on standard error, and the clean-up
// of the per-user folder after every end. A signal that asks the program to
// stop takes the way of the window's Cancel. Warnings of the list (an Orange
// grade, rows that differ from the first) and of the join (streams left out)
// come first and last.
JoinOutcome JoinListInto(CliContext& cli, MainModel& model, const QString& outputFile);
