#pragma once

#include <QString>
#include <QStringList>
#include <functional>

#include "list/ListTypeChange.h"
#include "platform/RunCommand.h"

class MainWindow;

// The routines that the menus, the toolbar, the image buttons and the list
// view forward to. The main window fills them from the list, join and window
// modules (WireMainCommands); an entry left empty makes its command do nothing.
// Tests may put their own functions in place to see what a command forwards.
// The routines that the change of list type runs as well (saveList, clearList
// and the column layouts) are declared with that change.
struct MainCommands : ListTypeChangeSteps {
    // Item list.
    std::function<void(const QString& listType)> newItemList;
    std::function<void()> openList;
    std::function<bool(const QString& path)> openListFile;
    std::function<void()> addFiles;
    std::function<void(int index, short cut)> copyItem;
    std::function<void()> pasteItem;
    std::function<void()> copyList;
    std::function<void(int index)> removeItem;
    std::function<void()> removeDuplicatedFiles;
    std::function<void()> removeDeadFiles;
    std::function<void(const QString& bitrate)> onlyKeepBitrateItems;
    std::function<void(int index)> moveItemUp;
    std::function<void(int index)> moveItemDown;
    // Adds dropped paths at the end of the list, in the order given.
    std::function<void(const QStringList& paths)> dropFiles;
    // The click on CancelLabel: the running adding stops after its current row.
    std::function<void()> cancelAdding;

    // Join.
    std::function<void()> startJoin;

    // Other windows, shown modally unless their module says otherwise.
    std::function<void()> showAddDirectoryBox;
    std::function<void()> showSortWizard;
    std::function<void()> showRemoveWizard;
    std::function<void()> showListInfo;
    std::function<void()> showPreferences;
    std::function<void()> showTips;
    std::function<void()> showHelpManual;
    std::function<void()> checkForUpdate;
    std::function<void()> showAbout;
    // Shows the tag editor for a file; an empty path leaves it unshown.
    std::function<void(const QString& path)> showID3Tag;

    // Desktop.
    std::function<void(const QString& path)> shellOpen;
    std::function<void(const QString& path)> showFileProperties;
};

// Fills the commands with the routines of the other modules.
void WireMainCommands(MainWindow& window, MainCommands& commands);
