#pragma once

#include <QString>
#include <QStringView>

struct MainModel;

// The grade of the list: how well its files fit together for a join, shown as
// ListStatus and the status picture. UpdateListTotals grades the list after
// every change of rows; the texts that explain each grade to the user stand in
// list/StatusBoxes.cpp.

// The grade as the routines read it; the list keeps it as the text of
// ListStatus ("Green", "Orange", "Red"; empty before the first list).
enum class Grade { None, Green, Orange, Red };

// The grade a text names; None for any other text.
Grade GradeOf(QStringView status);

// The text of a grade; empty for None.
QString GradeText(Grade grade);

// Grades the list: Red for fewer than 2 rows; otherwise Green, unless the
// Hertz cells of an MP3 list differ (Orange) or the Video Codec or Video Size
// cells of any other list differ (Red).
void UpdateListStatus(MainModel& model);

// Stores ListStatus and, for "Green", "Orange" and "Red", sets the status
// picture; any other text leaves the picture as it is.
void SetListStatus(MainModel& model, const QString& status);
void SetListStatus(MainModel& model, Grade grade);
