#pragma once

struct MainModel;

// The explanation of the list's status, shown by a click on the status
// picture: one fixed box for Green, for Orange, and two for Red (fewer than two
// rows, or more). Any other status shows nothing. Returns whether a box came.
bool ShowListStatusBox(MainModel& model);
