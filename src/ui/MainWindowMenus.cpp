// The main window's menu bar, its entries and their rules, and the context
// menu of the list.
#include <QAction>
#include <QMenu>
#include <QMenuBar>

#include "list/Columns.h"
#include "ui/MainWindow.h"
#include "ui/NewListWindow.h"

namespace {
const QString kID3TagCaption = QStringLiteral("&ID3 Tag");
const QString kFilePropertiesCaption = QStringLiteral("&File Properties");
const QString kPreferencesCaption = QStringLiteral("&Preferences");
const QString kOnlyKeepDesignCaption = QStringLiteral("&Only Keep [Bitrate] Items");
}  // namespace

QAction* MainWindow::addEntry(QMenu* menu, const QString& name, const QString& caption,
                              const QKeySequence& shortcut, std::function<void()> command) {
    auto* entry = new QAction(caption, this);
    entry->setObjectName(name);
    if (!shortcut.isEmpty()) {
        entry->setShortcut(shortcut);
        entry->setShortcutContext(Qt::WindowShortcut);
    }
    connect(entry, &QAction::triggered, this, [command = std::move(command)] { command(); });
    menu->addAction(entry);
    // The shortcuts work while the menus are closed, so the window carries them.
    addAction(entry);
    actions_.insert(name, entry);
    return entry;
}

QAction* MainWindow::addSeparator(QMenu* menu, const QString& name) {
    // A separator carries no text: some styles would draw it beside the line.
    auto* separator = new QAction(this);
    separator->setObjectName(name);
    separator->setSeparator(true);
    menu->addAction(separator);
    actions_.insert(name, separator);
    return separator;
}

QMenu* MainWindow::addSubmenu(QMenu* menu, const QString& name, const QString& caption) {
    QMenu* sub = menu->addMenu(caption);
    sub->setObjectName(name);
    sub->menuAction()->setObjectName(name);
    menus_.insert(name, sub);
    return sub;
}

void MainWindow::buildMenus() {
    QMenuBar* bar = menuBar();
    bar->setObjectName(QStringLiteral("MenuBar"));
    auto topMenu = [this, bar](const QString& name, const QString& caption) {
        QMenu* m = bar->addMenu(caption);
        m->setObjectName(name);
        m->menuAction()->setObjectName(name);
        menus_.insert(name, m);
        return m;
    };
    auto& c = commands_;

    QMenu* file = topMenu(QStringLiteral("FileMenu"), QStringLiteral("&File"));
    connect(file, &QMenu::aboutToShow, this, &MainWindow::fileMenuRule);
    addEntry(file, QStringLiteral("FileNewList"), QStringLiteral("&New List"),
             QKeySequence(Qt::CTRL | Qt::Key_N), [this] { showNewList(); });
    addEntry(file, QStringLiteral("FileOpenList"), QStringLiteral("&Open List"),
             QKeySequence(Qt::CTRL | Qt::Key_O), [&c] { RunCommand(c.openList); });
    addSeparator(file, QStringLiteral("Separator1"));
    addEntry(file, QStringLiteral("FileSaveList"), QStringLiteral("&Save List"),
             QKeySequence(Qt::CTRL | Qt::Key_S), [&c] { RunCommand(c.saveList, short(0)); });
    addEntry(file, QStringLiteral("FileSaveListAs"), QStringLiteral("Save List &As..."), {},
             [&c] { RunCommand(c.saveList, short(-1)); });
    addSeparator(file, QStringLiteral("Separator2"));
    addEntry(file, QStringLiteral("FileJoinFiles"), QStringLiteral("&Join Files!"),
             QKeySequence(Qt::Key_F5), [&c] { RunCommand(c.startJoin); });
    addSeparator(file, QStringLiteral("Separator3"));
    addEntry(file, QStringLiteral("FileExit"), QStringLiteral("&Exit"),
             QKeySequence(Qt::CTRL | Qt::Key_E), [this] { exitProgram(); });

    QMenu* edit = topMenu(QStringLiteral("EditMenu"), QStringLiteral("&Edit"));
    connect(edit, &QMenu::aboutToShow, this, &MainWindow::editMenuRules);
    QMenu* clip = addSubmenu(edit, QStringLiteral("EditClipboard"), QStringLiteral("&Clipboard"));
    addEntry(clip, QStringLiteral("ClipboardCut"), QStringLiteral("&Cut Item"),
             QKeySequence(Qt::CTRL | Qt::Key_X),
             [this, &c] { RunCommand(c.copyItem, selectedIndex(), short(-1)); });
    addEntry(clip, QStringLiteral("ClipboardCopy"), QStringLiteral("&Copy Item"),
             QKeySequence(Qt::CTRL | Qt::Key_C),
             [this, &c] { RunCommand(c.copyItem, selectedIndex(), short(0)); });
    addEntry(clip, QStringLiteral("ClipboardPaste"), QStringLiteral("&Paste Item"),
             QKeySequence(Qt::CTRL | Qt::Key_V), [&c] { RunCommand(c.pasteItem); });
    addSeparator(clip, QStringLiteral("Separator4"));
    addEntry(clip, QStringLiteral("ClipboardCopyList"), QStringLiteral("&Copy List"),
             QKeySequence(Qt::CTRL | Qt::Key_B), [&c] { RunCommand(c.copyList); });
    addSeparator(edit, QStringLiteral("Separator5"));
    addEntry(edit, QStringLiteral("EditAddFiles"), QStringLiteral("&Add File(s)"),
             QKeySequence(Qt::CTRL | Qt::Key_F), [&c] { RunCommand(c.addFiles); });
    addEntry(edit, QStringLiteral("EditAddDirectory"), QStringLiteral("&Add Directory"),
             QKeySequence(Qt::CTRL | Qt::Key_D), [&c] { RunCommand(c.showAddDirectoryBox); });
    addSeparator(edit, QStringLiteral("Separator6"));
    QMenu* remove =
        addSubmenu(edit, QStringLiteral("EditRemoveItems"), QStringLiteral("&Remove Item(s)"));
    addEntry(remove, QStringLiteral("RemoveItemsRemoveItem"), QStringLiteral("&Remove Item"),
             QKeySequence(Qt::Key_Delete),
             [this, &c] { RunCommand(c.removeItem, selectedIndex()); });
    addEntry(remove, QStringLiteral("RemoveItemsClearList"), QStringLiteral("&Clear List"),
             QKeySequence(Qt::SHIFT | Qt::Key_Delete),
             [&c] { RunCommand(c.clearList, short(-1)); });
    addSeparator(remove, QStringLiteral("Separator7"));
    addEntry(remove, QStringLiteral("RemoveItemsRemoveDuplicatedFiles"),
             QStringLiteral("&Remove Duplicated Files"), QKeySequence(Qt::CTRL | Qt::Key_Q),
             [&c] { RunCommand(c.removeDuplicatedFiles); });
    addEntry(remove, QStringLiteral("RemoveItemsRemoveDeadFiles"),
             QStringLiteral("&Remove Dead Files"), QKeySequence(Qt::CTRL | Qt::Key_W),
             [&c] { RunCommand(c.removeDeadFiles); });
    addSeparator(remove, QStringLiteral("Separator14"));
    QAction* onlyKeep =
        addEntry(remove, QStringLiteral("RemoveSpecialOnlyKeepBitrateItems"),
                 kOnlyKeepDesignCaption, {}, [this, &c] {
                     RunCommand(c.onlyKeepBitrateItems,
                                model_.items.cell(selectedIndex(), Mp3Cell::Bitrate));
                 });
    onlyKeep->setEnabled(false);  // created disabled, and nothing enables it
    addEntry(remove, QStringLiteral("RemoveItemsRemoveWizard"), QStringLiteral("&Remove Wizard"),
             {}, [&c] { RunCommand(c.showRemoveWizard); });
    QMenu* move =
        addSubmenu(edit, QStringLiteral("MoveSelectedItem"), QStringLiteral("&Move Selected Item"));
    addEntry(move, QStringLiteral("MoveSelectedItemMoveItemUp"), QStringLiteral("&Move Item Up"),
             {}, [this, &c] { RunCommand(c.moveItemUp, selectedIndex()); });
    addEntry(move, QStringLiteral("MoveSelectedItemMoveItemDown"),
             QStringLiteral("&Move Item Down"), {},
             [this, &c] { RunCommand(c.moveItemDown, selectedIndex()); });
    addSeparator(edit, QStringLiteral("Separator8"));
    addEntry(edit, QStringLiteral("EditSortWizard"), QStringLiteral("&Sort Wizard"),
             QKeySequence(Qt::CTRL | Qt::Key_R), [&c] { RunCommand(c.showSortWizard); });
    QAction* sep9 = addSeparator(edit, QStringLiteral("Separator9"));
    connect(sep9, &QAction::triggered, this, &MainWindow::runSeparator9);
    addEntry(edit, QStringLiteral("EditPreferences"), kPreferencesCaption, {},
             [this] { runEditPreferences(); });

    QMenu* view = topMenu(QStringLiteral("ViewMenu"), QStringLiteral("&View"));
    addEntry(view, QStringLiteral("ViewListInfo"), QStringLiteral("&List Info"),
             QKeySequence(Qt::CTRL | Qt::Key_I), [&c] { RunCommand(c.showListInfo); });
    addSeparator(view, QStringLiteral("Separator11"));
    addEntry(view, QStringLiteral("ViewID3Tag"), QStringLiteral("&ID3 Tag"), {},
             [this] { viewID3Tag(); });
    addEntry(view, QStringLiteral("ViewFileProperties"), QStringLiteral("&File Properties"), {},
             [this] { viewFileProperties(); });

    QMenu* help = topMenu(QStringLiteral("HelpMenu"), QStringLiteral("&Help"));
    addEntry(help, QStringLiteral("HelpManual"), QStringLiteral("&Read Me"),
             QKeySequence(Qt::Key_F1), [&c] { RunCommand(c.showHelpManual); });
    addSeparator(help, QStringLiteral("Separator12"));
    addEntry(help, QStringLiteral("TipOfTheDay"), QStringLiteral("&Tip of the day"), {},
             [&c] { RunCommand(c.showTips); });
    addEntry(help, QStringLiteral("HelpCheckForUpdate"), QStringLiteral("&Check for update"), {},
             [&c] { RunCommand(c.checkForUpdate); });
    addSeparator(help, QStringLiteral("Separator13"));
    addEntry(help, QStringLiteral("HelpAbout"), QStringLiteral("&About..."), {},
             [&c] { RunCommand(c.showAbout); });
}

void MainWindow::fileMenuRule() {
    actions_.value(QStringLiteral("FileSaveListAs"))
        ->setEnabled(!model_.state.listFileName().isEmpty());
}

void MainWindow::editMenuRules() {
    const bool hasRows = model_.items.count() >= 1;
    actions_.value(QStringLiteral("RemoveItemsRemoveWizard"))->setEnabled(hasRows);
    if (hasRows && model_.state.type() == ListType::Mp3) {
        actions_.value(QStringLiteral("RemoveSpecialOnlyKeepBitrateItems"))
            ->setText(QStringLiteral("&Only Keep [") +
                      model_.items.cell(selectedIndex(), Mp3Cell::Bitrate) +
                      QStringLiteral("] Items"));
    }
}

void MainWindow::showNewList() {
    NewListWindow window(this);
    window.createList = [this](const QString& type) { RunCommand(commands_.newItemList, type); };
    window.run();
}

void MainWindow::showContextMenu(const QPoint& globalPosition) {
    QAction* sortWizard = actions_.value(QStringLiteral("EditSortWizard"));
    QAction* sep9 = actions_.value(QStringLiteral("Separator9"));
    QAction* preferences = actions_.value(QStringLiteral("EditPreferences"));
    sortWizard->setVisible(false);
    sep9->setSeparator(false);
    sep9->setText(kID3TagCaption);
    preferences->setText(kFilePropertiesCaption);
    menus_.value(QStringLiteral("EditMenu"))->exec(globalPosition);
    sortWizard->setVisible(true);
    sep9->setText(QString());
    sep9->setSeparator(true);
    preferences->setText(kPreferencesCaption);
}

void MainWindow::runSeparator9() {
    if (actions_.value(QStringLiteral("Separator9"))->text() == kID3TagCaption) {
        viewID3Tag();
    }
}

void MainWindow::runEditPreferences() {
    if (actions_.value(QStringLiteral("EditPreferences"))->text() == kFilePropertiesCaption) {
        viewFileProperties();
    } else {
        RunCommand(commands_.showPreferences);
    }
}

void MainWindow::viewID3Tag() {
    RunCommand(commands_.showID3Tag, model_.items.cell(selectedIndex(), SharedCell::Filepath));
}

void MainWindow::viewFileProperties() {
    RunCommand(commands_.showFileProperties,
               model_.items.cell(selectedIndex(), SharedCell::Filepath));
}

void MainWindow::playSelectedFile() {
    RunCommand(commands_.shellOpen, model_.items.cell(selectedIndex(), SharedCell::Filepath));
}
