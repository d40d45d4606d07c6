#pragma once

#include <QString>
#include <cstdint>
#include <optional>

struct MainModel;
class JoinWizardState;

// The progress of a join: a file that grows on disk measured against the
// list's size, or, while the MPEG-2 tool remakes the join, the tool's own
// status lines measured against the list's duration.

// A figure in the pattern "#,###,###": rounded to a whole number (a half
// away from zero), digits grouped by the locale; the empty text for 0.
QString FormatThousands(double value);

// "Join Wizard (" + value / maximum * 100, rounded half to even, + "%)";
// nothing when the maximum is 0 or the figure is not a number.
std::optional<QString> PercentCaption(float value, float maximum);

// The size source, for a watched file of the given length in bytes: the bar
// (capped at its maximum), WrittenSizeLabel ("0 KB" for a figure that
// formats empty or as 0) and the caption.
void ApplyWatchedFileLength(JoinWizardState& state, std::int64_t length);

// The size source of one tick: nothing while the MPEG-2 tool's lines are in
// charge (an MPEG-2V list in JoinOperation 2) or while the watched file does
// not exist.
void UpdateSizeSource(const MainModel& model, JoinWizardState& state, const QString& watchedFile);

// What one status line of the MPEG-2 tool gives.
struct ToolStatus {
    QString sizeText;          // the text between "size=" and "kB", untrimmed
    std::int16_t seconds = 0;  // the stream time done, the fraction cut off
};

// Reads line 0 of a status piece: nothing when it lacks "time", "size=",
// "kB", "time=", a blank behind the time or a "." in the time, or when the
// seconds do not fit in 16 bits. The time is taken as seconds ("60.00") or
// as hours, minutes and seconds ("00:01:00.00").
std::optional<ToolStatus> ParseToolStatusLine(const QString& line);

// The seconds of a duration caption "hh:mm:ss", counted in 16 bits: nothing
// when a part is not a number or a step leaves 16 bits.
std::optional<std::int16_t> TotalSecondsOf(const QString& durationCaption);

// The handler of every piece of tool output (DataReceived): logs the piece
// as it came, and, in JoinOperation 2 of an MPEG-2V list, moves the bar by
// the stream time against the list's duration and shows the written size.
// A piece that cannot be read changes nothing from the point of failure on.
void HandleToolOutput(const MainModel& model, JoinWizardState& state, const QString& text);

// The clock text of a number of seconds: "hh:mm:ss".
QString ClockText(int seconds);
