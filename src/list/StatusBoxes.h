#pragma once

#include <QString>
#include <optional>

struct MainModel;

// The explanation of the list's status: one fixed text for Green, for Orange,
// and two for Red (fewer than two rows, or more), each with the icon of its
// box. When rows differ from the first, a blank line and the line that says
// which follow the fixed text. Lines are separated by line feeds.
struct ListStatusExplanation {
    QString text;
    int style = 0;  // Msg: OK with the icon of the grade
};

// The explanation of the status as it stands; nothing for any other status.
std::optional<ListStatusExplanation> ExplainListStatus(const MainModel& model);

// Shows the explanation in a box, as a click on the status picture does. Any
// other status shows nothing. Returns whether a box came.
bool ShowListStatusBox(MainModel& model);
