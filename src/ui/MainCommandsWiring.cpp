// Connects the main window's commands to the routines of the list, join and
// window modules.
#include "app/AppPaths.h"
#include "join/StartJoin.h"
#include "list/AddFilesModule.h"
#include "list/ClipboardModule.h"
#include "list/ListFunctions.h"
#include "list/ListviewLayout.h"
#include "platform/FileHelpers.h"
#include "platform/Shell.h"
#include "ui/AboutWindow.h"
#include "ui/AddDirectoryBox.h"
#include "ui/HelpCommands.h"
#include "ui/ID3Tag.h"
#include "ui/JoinWizard.h"
#include "ui/ListInfo.h"
#include "ui/MainCommands.h"
#include "ui/MainWindow.h"
#include "ui/PreferencesWindow.h"
#include "ui/RemoveWizard.h"
#include "ui/SortWizard.h"
#include "ui/TipsWindow.h"

namespace {
// The tips and preferences windows live from their creation (hidden, at
// start-up) until they are first closed; the next showing makes a new one,
// which loads its settings anew.
template <typename Window>
void ShowLastingWindow(MainWindow& window, QPointer<QDialog>& slot) {
    if (!slot) {
        slot = new Window(window.model(), &window);
        QObject::connect(slot.data(), &QDialog::finished, slot.data(), &QObject::deleteLater);
    }
    if (slot->isVisible()) {
        slot->raise();
        slot->activateWindow();
        return;
    }
    slot->exec();
}
// Shows a window of the list modally; the main window waits for it.
template <typename Window>
void ShowModal(MainWindow& window) {
    Window shown(window.model(), &window);
    shown.exec();
}
}  // namespace

void WireMainCommands(MainWindow& window, MainCommands& c) {
    MainModel& model = window.model();

    c.newItemList = [&model](const QString& type) { NewItemList(model, type); };
    c.openList = [&model] { OpenList(model); };
    c.openListFile = [&model](const QString& path) { return OpenListFile(model, path); };
    c.saveList = [&model](short saveAs) { return SaveList(model, saveAs); };
    c.addFiles = [&model] { AddFiles(model); };
    c.copyItem = [&model](int index, short cut) { CopyItem(model, index, cut); };
    c.pasteItem = [&model] { PasteItem(model); };
    c.copyList = [&model] { CopyList(model); };
    c.removeItem = [&model](int index) { RemoveItem(model, index); };
    c.clearList = [&model](short ask) { ClearList(model, ask); };
    c.removeDuplicatedFiles = [&model] { RemoveDuplicatedFiles(model); };
    c.removeDeadFiles = [&model] { RemoveDeadFiles(model); };
    c.onlyKeepBitrateItems = [&model](const QString& b) { OnlyKeepBitrateItems(model, b); };
    c.moveItemUp = [&model](int index) { MoveItemUp(model, index); };
    c.moveItemDown = [&model](int index) { MoveItemDown(model, index); };
    c.clearColumns = [&model] { ClearColumns(model); };
    c.addSharedColumns = [&model] { AddSharedColumns(model); };
    c.addMP3Columns = [&model] { AddMP3Columns(model); };
    c.addMPEGColumns = [&model] { AddMPEGColumns(model); };
    c.dropFiles = [&model](const QStringList& paths) { AddDroppedFiles(model, paths); };
    c.cancelAdding = [&model] { CancelAdding(model); };

    c.startJoin = [&window, &model] {
        if (StartJoin(model)) {
            JoinWizard::RunJoin(model, &window);
        }
    };

    c.showAddDirectoryBox = [&window] { ShowModal<AddDirectoryBox>(window); };
    c.showSortWizard = [&window] { ShowModal<SortWizard>(window); };
    c.showRemoveWizard = [&window] { ShowModal<RemoveWizard>(window); };
    c.showListInfo = [&window] { ShowModal<ListInfo>(window); };
    // The tag editor for the selected row's file; without a file it stays unseen.
    c.showID3Tag = [&window, &model](const QString& path) {
        if (!path.isEmpty()) {
            ID3Tag::ShowFor(model, path, &window);
        }
    };

    c.showPreferences = [&window] {
        ShowLastingWindow<PreferencesWindow>(window, window.preferencesWindow);
    };
    c.showTips = [&window] { ShowLastingWindow<TipsWindow>(window, window.tipsWindow); };
    c.showHelpManual = [&model] { HelpManual(model); };
    c.checkForUpdate = [&model] { HelpCheckForUpdate(model); };
    c.showAbout = [&window] { ShowModal<AboutWindow>(window); };

    // Desktop: the file opens in whatever the user's system has for it. An
    // empty path (no row selected) is handed on as it is and opens nothing.
    c.shellOpen = [](const QString& path) { ShellOpen(path, InstallFolder()); };
    c.showFileProperties = [&window](const QString& path) {
        ShowFileProperties(path, InstallFolder(), static_cast<std::uint32_t>(window.winId()));
    };
}
