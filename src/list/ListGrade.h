#pragma once

#include <QString>

struct MainModel;

// The grade of the list: how well its files fit together for a join, shown as
// ListStatus and the status picture. UpdateListTotals grades the list after
// every change of rows; the texts that explain each grade to the user stand in
// list/StatusBoxes.cpp.

// Grades the list: Red for fewer than 2 rows; otherwise Green, unless the
// Hertz cells of an MP3 list differ (Orange) or the Video Codec or Video Size
// cells of any other list differ (Red).
void UpdateListStatus(MainModel& model);

// Stores ListStatus and, for "Green", "Orange" and "Red", sets the status
// picture; any other text leaves the picture as it is.
void SetListStatus(MainModel& model, const QString& status);
