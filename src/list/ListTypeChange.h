#pragma once

#include <functional>

struct MainModel;

// The change of list type that the (Change) link starts, apart from any
// window: the routines it runs come from the caller, so that the main window
// passes its commands (which include these) and tests can watch them.
struct ListTypeChangeSteps {
    // True only when the list file now holds the list.
    std::function<bool(short saveAs)> saveList;
    std::function<void(short ask)> clearList;
    std::function<void()> clearColumns;
    std::function<void()> addSharedColumns;
    std::function<void()> addMP3Columns;
    std::function<void()> addMPEGColumns;
};

// A list with rows asks first: "Warning: this action will clear your list,
// and then change the type of list. Would you like to save your list first?"
// Yes saves (saveList 0) and clears silently (clearList 0) only when the save
// really wrote the list (a cancelled save dialog or a failed save keeps list,
// type and title), No only clears, Cancel changes nothing. Then the columns
// are laid out anew and the type turns: MPEG after MP3, MP3 after any other
// type, with its type image. The list file name and the window title stay as
// they were.
void ChangeListType(MainModel& model, const ListTypeChangeSteps& steps);
