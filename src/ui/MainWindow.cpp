#include "ui/MainWindow.h"

#include <QAction>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDialog>
#include <QFont>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QToolBar>
#include <QToolButton>

#include "app/Version.h"
#include "list/Columns.h"
#include "list/ListviewLayout.h"
#include "ui/ImageButton.h"
#include "ui/LinkLabel.h"
#include "ui/ListViewControl.h"
#include "ui/NewListWindow.h"
#include "ui/PaintThrottle.h"
#include "ui/Pictures.h"
#include "ui/ProgramLook.h"
#include "ui/StatusBarControl.h"
#include "ui/StatusBoxes.h"
#include "ui/Twips.h"

namespace {
constexpr int kToolbarHeight = 810;
constexpr int kListViewLeft = 60;
constexpr int kListViewTop = 885;
constexpr int kControlPanelTop = 900;
constexpr int kControlPanelWidth = 630;
constexpr int kControlPanelHeight = 2850;
constexpr int kImageButtonHeight = 570;
constexpr int kInfoPanelLeft = 80;
constexpr int kInfoPanelHeight = 900;
constexpr int kLabelHeight = 195;

const QString kID3TagCaption = QStringLiteral("&ID3 Tag");
const QString kFilePropertiesCaption = QStringLiteral("&File Properties");
const QString kPreferencesCaption = QStringLiteral("&Preferences");
const QString kOnlyKeepDesignCaption = QStringLiteral("&Only Keep [Bitrate] Items");
}  // namespace

MainWindow::MainWindow(Questions& questions, Clipboard& clipboard, QWidget* parent)
    : QMainWindow(parent), model_(questions, clipboard) {
    setObjectName(QStringLiteral("MainWindow"));
    ProgramLook::apply(this);
    setWindowTitle(Version::kProgramTitle);
    exitProgram = [] { QCoreApplication::exit(0); };

    client_ = new QWidget(this);
    client_->setObjectName(QStringLiteral("Client"));
    setCentralWidget(client_);

    buildMenus();
    buildToolbar();
    buildClientControls();
    // Before any layout has run, the list carries the four shared columns in
    // their design widths; the first layout routine replaces them.
    AddSharedColumns(model_);

    WireMainCommands(*this, commands_);

    connect(&model_.state, &ListState::changed, this, &MainWindow::refreshFromState);
    connect(&model_.state, &ListState::listFocusRequested, listView_,
            [this] { listView_->setFocus(); });
    client_->installEventFilter(this);
    new PaintThrottle(this);

    // Load step: panel 1 shows the name and version with a trailing blank; the
    // progress bar lies over panel 1, the cancel link inside panel 2.
    statusBar_->panel(1)->setText(Version::kProgramTitle + u' ' + Version::text() + u' ');
    statusBar_->panel(1)->setToolTip(Version::kProgramTitle);
    progressBar_->move(Twips::toPixels(10), Twips::toPixels(50));
    progressBar_->resize(statusBar_->panelWidth(1) - Twips::toPixels(10),
                         statusBar_->height() - Twips::toPixels(60));
    cancelOverlay_->move(statusBar_->panelWidth(1) + Twips::toPixels(1360), Twips::toPixels(50));

    refreshFromState();
    setClientSize(Twips::size(kDesignWidthTwips, kDesignHeightTwips));
}

MainWindow::~MainWindow() {
    client_->removeEventFilter(this);
}

// ---------------------------------------------------------------- building

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

void MainWindow::buildToolbar() {
    toolbar_ = new QToolBar(client_);
    toolbar_->setObjectName(QStringLiteral("Toolbar"));
    toolbar_->setMovable(false);
    toolbar_->setFloatable(false);
    toolbar_->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    toolbar_->setIconSize(QSize(24, 24));
    // Seven captioned buttons share the design width of the window.
    toolbar_->setStyleSheet(
        QStringLiteral("QToolBar { spacing: 0px; padding: 0px; }"
                       "QToolButton { font-size: 7pt; padding: 1px 1px; margin: 0px; }"
                       "QToolButton[popupMode=\"1\"] { padding-right: 11px; }"
                       "QToolButton::menu-button { width: 10px; border: none;"
                       " background: transparent; }"));

    struct Button {
        const char* caption;
        const char* icon;
        bool dropDown;
    };
    const Button buttons[] = {
        {"New List", "toolbar_new", false},     {"Open List", "toolbar_open", false},
        {"Save List", "toolbar_save", false},   {"Add File(s)", "toolbar_add", true},
        {"Sort List", "toolbar_sort", false},   {"Check List", "toolbar_check", true},
        {"Join Files!", "toolbar_join", false},
    };
    int index = 0;
    for (const Button& b : buttons) {
        ++index;
        auto* button = new QAction(Pictures::icon(QString::fromLatin1(b.icon)),
                                   QString::fromLatin1(b.caption), this);
        button->setObjectName(QStringLiteral("ToolbarButton%1").arg(index));
        button->setToolTip(QString::fromLatin1(b.caption));
        connect(button, &QAction::triggered, this, [this, index] { toolbarButtonClick(index); });
        toolbar_->addAction(button);
        actions_.insert(button->objectName(), button);
        if (!b.dropDown) {
            continue;
        }
        auto* dropDown = new QMenu(this);
        dropDown->setObjectName(QStringLiteral("ToolbarButton%1Menu").arg(index));
        const QList<QPair<QString, QString>> entries =
            index == 4 ? QList<QPair<QString, QString>>{{"AddFiles", "Add File(s)"},
                                                        {"AddDirectory", "Add Directory"}}
                       : QList<QPair<QString, QString>>{{"CheckForDupes", "For: Duplicated Files"},
                                                        {"CheckForDead", "For: Dead Files"}};
        for (const auto& [key, caption] : entries) {
            QAction* entry = dropDown->addAction(caption);
            entry->setObjectName(key);
            connect(entry, &QAction::triggered, this, [this, key = key] { toolbarMenuClick(key); });
        }
        button->setMenu(dropDown);
        menus_.insert(dropDown->objectName(), dropDown);
        if (auto* tool = qobject_cast<QToolButton*>(toolbar_->widgetForAction(button))) {
            tool->setPopupMode(QToolButton::MenuButtonPopup);
        }
    }
}

ImageButton* MainWindow::addImageButton(const QString& name, const QString& picture, int topTwips,
                                        const QString& toolTip) {
    auto* button = new ImageButton(QStringLiteral("button_%1_normal").arg(picture),
                                   QStringLiteral("button_%1_pressed").arg(picture), controlPanel_);
    button->setObjectName(name);
    button->setToolTip(toolTip);
    button->setGeometry(Twips::rect(0, topTwips, kControlPanelWidth, kImageButtonHeight));
    return button;
}

QLabel* MainWindow::addInfoLabel(const QString& name, const QString& caption, int left, int top,
                                 int width, bool bold) {
    auto* label = new QLabel(caption, infoPanel_);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setGeometry(Twips::rect(left, top, width, kLabelHeight));
    if (bold) {
        QFont f = label->font();
        f.setBold(true);
        label->setFont(f);
    }
    return label;
}

void MainWindow::buildClientControls() {
    listView_ = new ListViewControl(client_);
    listView_->setObjectName(QStringLiteral("ListView"));
    listView_->setModel(&model_.items);
    listView_->move(Twips::point(kListViewLeft, kListViewTop));
    auto widths = [this] { listView_->applyColumnWidths(); };
    connect(&model_.items, &QAbstractItemModel::columnsInserted, this, widths);
    connect(&model_.items, &QAbstractItemModel::columnsRemoved, this, widths);
    connect(&model_.items, &QAbstractItemModel::modelReset, this, widths);
    connect(&model_.items, &QAbstractItemModel::headerDataChanged, this, widths);
    connect(listView_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &MainWindow::selectionChangedInView);
    connect(&model_.items, &QAbstractItemModel::modelReset, this,
            &MainWindow::selectionChangedInView);
    connect(&model_.items, &QAbstractItemModel::rowsRemoved, this,
            &MainWindow::selectionChangedInView);
    connect(&model_.items, &QAbstractItemModel::rowsInserted, this,
            &MainWindow::selectionChangedInView);
    connect(&model_.items, &QAbstractItemModel::layoutChanged, this,
            &MainWindow::selectionChangedInView);
    connect(listView_, &ListViewControl::doubleClickedAnywhere, this,
            &MainWindow::playSelectedFile);
    connect(listView_, &ListViewControl::rightPressed, this, &MainWindow::showContextMenu);
    connect(listView_, &ListViewControl::filesDropped, this, &MainWindow::dropFiles);

    controlPanel_ = new QWidget(client_);
    controlPanel_->setObjectName(QStringLiteral("ControlPanel"));
    controlPanel_->setGeometry(
        Twips::rect(0, kControlPanelTop, kControlPanelWidth, kControlPanelHeight));
    ImageButton* up = addImageButton(QStringLiteral("UpButton"), QStringLiteral("up"), 0,
                                     QStringLiteral("Move Item Up"));
    ImageButton* down = addImageButton(QStringLiteral("DownButton"), QStringLiteral("down"),
                                       kImageButtonHeight, QStringLiteral("Move Item Down"));
    deleteButton_ = addImageButton(QStringLiteral("DeleteButton"), QStringLiteral("delete"),
                                   2 * kImageButtonHeight,
                                   QStringLiteral("Remove Item (right-click for more options)"));
    ImageButton* play = addImageButton(QStringLiteral("PlayButton"), QStringLiteral("play"),
                                       3 * kImageButtonHeight, QStringLiteral("Play File"));
    ImageButton* properties =
        addImageButton(QStringLiteral("PropertiesButton"), QStringLiteral("properties"),
                       4 * kImageButtonHeight, QStringLiteral("File Properties"));
    connect(up, &ImageButton::clicked, this,
            [this] { RunCommand(commands_.moveItemUp, selectedIndex()); });
    connect(down, &ImageButton::clicked, this,
            [this] { RunCommand(commands_.moveItemDown, selectedIndex()); });
    connect(deleteButton_, &ImageButton::mouseUp, this, &MainWindow::deleteButtonMouseUp);
    connect(deleteButton_, &ImageButton::clicked, this, &MainWindow::deleteButtonClick);
    connect(play, &ImageButton::clicked, this, &MainWindow::playSelectedFile);
    connect(properties, &ImageButton::clicked, this, &MainWindow::viewFileProperties);

    auto* info = new QFrame(client_);
    info->setObjectName(QStringLiteral("InfoPanel"));
    info->setFrameStyle(QFrame::Box | QFrame::Sunken);
    infoPanel_ = info;
    listTypeImage_ = new QLabel(infoPanel_);
    listTypeImage_->setObjectName(QStringLiteral("ListTypeImage"));
    listTypeImage_->setGeometry(Twips::rect(120, 150, 300, 300));
    addInfoLabel(QStringLiteral("ListTypeLabel"), QStringLiteral("List Type:"), 480, 220, 945,
                 true);
    listTypeValue_ =
        addInfoLabel(QStringLiteral("ListTypeValue"), QStringLiteral("?"), 1560, 225, 480, false);
    auto* change = new LinkLabel(QStringLiteral("(Change)"), infoPanel_);
    change->setObjectName(QStringLiteral("ChangeListType"));
    change->setToolTip(QStringLiteral("Change List Type"));
    change->setGeometry(Twips::rect(2140, 225, 810, kLabelHeight));
    connect(change, &LinkLabel::clicked, this, &MainWindow::changeListType);

    auto figureImage = [this](const QString& name, const QString& picture, int left, int top) {
        auto* image = new QLabel(infoPanel_);
        image->setObjectName(name);
        image->setGeometry(Twips::rect(left, top, 240, 240));
        image->setPixmap(Pictures::pixmap(picture, image->size()));
    };
    // The values are as wide as the panel allows, so the largest figures
    // (a million rows, 999,999,999 KB) show whole.
    figureImage(QStringLiteral("ListCountImage"), QStringLiteral("figure_count"), 180, 535);
    addInfoLabel(QStringLiteral("ListCountLabel"), QStringLiteral("Total items in list:"), 490, 560,
                 1755, true);
    listCountValue_ =
        addInfoLabel(QStringLiteral("ListCountValue"), QStringLiteral("0"), 2385, 555, 1300, false);
    figureImage(QStringLiteral("ListDurationImage"), QStringLiteral("figure_duration"), 3780, 200);
    addInfoLabel(QStringLiteral("ListDurationLabel"), QStringLiteral("Duration:"), 4080, 225, 900,
                 true);
    listDurationValue_ = addInfoLabel(QStringLiteral("ListDurationValue"),
                                      QStringLiteral("00:00:00"), 5115, 225, 1140, false);
    figureImage(QStringLiteral("ListSizeImage"), QStringLiteral("figure_size"), 3780, 535);
    addInfoLabel(QStringLiteral("ListSizeLabel"), QStringLiteral("Filesize:"), 4080, 555, 810,
                 true);
    listSizeValue_ = addInfoLabel(QStringLiteral("ListSizeValue"), QStringLiteral("0 KB"), 4950,
                                  555, 1460, false);

    statusBar_ = new StatusBarControl(client_);
    statusBar_->panel(3)->setToolTip(QStringLiteral("Status Indicator"));
    connect(statusBar_, &StatusBarControl::panelClicked, this, &MainWindow::statusPanelClicked);

    progressBar_ = new QProgressBar(statusBar_);
    progressBar_->setObjectName(QStringLiteral("AddFilesProgressBar"));
    progressBar_->setTextVisible(false);
    progressBar_->hide();

    cancelOverlay_ = new QWidget(statusBar_);
    cancelOverlay_->setObjectName(QStringLiteral("CancelOverlay"));
    cancelOverlay_->resize(Twips::size(735, 240));
    auto* cancel = new LinkLabel(QStringLiteral("(Cancel)"), cancelOverlay_);
    cancel->setObjectName(QStringLiteral("CancelLabel"));
    cancel->setToolTip(QStringLiteral("Cancel Operation"));
    cancel->setGeometry(Twips::rect(0, 0, 735, kLabelHeight));
    connect(cancel, &LinkLabel::clicked, this, &MainWindow::cancelAddingFiles);
    cancelOverlay_->hide();
}

// ---------------------------------------------------------------- layout

QSize MainWindow::clientSize() const {
    return client_->size();
}

void MainWindow::setClientSize(const QSize& pixels) {
    const int menuHeight =
        menuBar()->isVisible() || !isVisible() ? menuBar()->sizeHint().height() : 0;
    resize(pixels.width(), pixels.height() + menuHeight);
    // A window not shown yet gets its layout now, so that its controls have
    // their places before the first show.
    if (!isVisible()) {
        client_->resize(pixels);
        layoutClient();
    }
}

void MainWindow::layoutClient() {
    if (isMinimized() || layingOut_) {
        return;
    }
    layingOut_ = true;
    // A normal window made smaller than its design size jumps back to the
    // design's outer size on that axis.
    if (!isMaximized() && !isFullScreen() && isVisible()) {
        const int frameWidth = frameGeometry().width() - width();
        const int frameHeight = frameGeometry().height() - height();
        int newWidth = width();
        int newHeight = height();
        if (Twips::fromPixels(client_->height()) < kDesignHeightTwips) {
            newHeight = Twips::toPixels(kOuterHeightTwips) - frameHeight;
        }
        if (Twips::fromPixels(client_->width()) < kDesignWidthTwips) {
            newWidth = Twips::toPixels(kOuterWidthTwips) - frameWidth;
        }
        if (newWidth != width() || newHeight != height()) {
            resize(newWidth, newHeight);
        }
    }
    const int w = Twips::fromPixels(client_->width());
    const int h = Twips::fromPixels(client_->height());
    toolbar_->setGeometry(0, 0, client_->width(), Twips::toPixels(kToolbarHeight));
    controlPanel_->move(Twips::toPixels(w - kControlPanelWidth - 100),
                        Twips::toPixels(kControlPanelTop));
    infoPanel_->setGeometry(Twips::toPixels(kInfoPanelLeft),
                            Twips::toPixels(h - kInfoPanelHeight - 380), Twips::toPixels(w - 170),
                            Twips::toPixels(kInfoPanelHeight));
    listView_->resize(Twips::toPixels(w - kControlPanelWidth - 270),
                      Twips::toPixels(h - kToolbarHeight - kInfoPanelHeight - 450));
    statusBar_->setGeometry(0, client_->height() - statusBar_->height(), client_->width(),
                            statusBar_->height());
    layingOut_ = false;
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == client_ && event->type() == QEvent::Resize) {
        layoutClient();
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && !isMinimized()) {
        layoutClient();
    }
}

// ---------------------------------------------------------------- state

namespace {
// Each control is touched only when its value differs from what it shows, so
// a change of one value (the bar's, while files are added) costs one control.
void showText(QLabel* label, const QString& text) {
    if (label->text() != text) {
        label->setText(text);
    }
}
}  // namespace

void MainWindow::showPicture(QLabel* label, std::optional<ListState::Picture>& shown,
                             ListState::Picture picture, const QSize& size) {
    if (shown == picture) {
        return;
    }
    shown = picture;
    label->setPixmap(Pictures::forState(picture, size));
}

void MainWindow::refreshFromState() {
    const ListState& s = model_.state;
    if (windowTitle() != s.windowTitle()) {
        setWindowTitle(s.windowTitle());
    }
    showText(listTypeValue_, s.listType());
    showPicture(listTypeImage_, shownTypeImage_, s.typeImage(), listTypeImage_->size());
    showText(listCountValue_, s.countCaption());
    showText(listDurationValue_, s.durationCaption());
    showText(listSizeValue_, s.sizeCaption());
    showText(statusBar_->panel(2), s.statusPanel2());
    showPicture(statusBar_->panel(3), shownStatusPicture_, s.statusPicture(), QSize(12, 12));
    if (progressBar_->maximum() != s.progressMax()) {
        progressBar_->setMaximum(s.progressMax());
    }
    if (progressBar_->value() != s.progressValue()) {
        progressBar_->setValue(s.progressValue());
    }
    if (progressBar_->isHidden() == s.progressVisible()) {
        progressBar_->setVisible(s.progressVisible());
    }
    if (cancelOverlay_->isHidden() == s.cancelOverlayVisible()) {
        cancelOverlay_->setVisible(s.cancelOverlayVisible());
    }
    selectIndexInView(s.selectedIndex());
}

int MainWindow::selectedIndex() const {
    const int index = model_.state.selectedIndex();
    return index >= 1 && index <= model_.items.count() ? index : 0;
}

void MainWindow::selectionChangedInView() {
    if (syncingSelection_) {
        return;
    }
    const QModelIndexList rows = listView_->selectionModel()->selectedRows();
    const int index = rows.isEmpty() ? 0 : rows.first().row() + 1;
    syncingSelection_ = true;
    model_.state.setSelectedIndex(index);
    syncingSelection_ = false;
}

void MainWindow::selectIndexInView(int index) {
    if (syncingSelection_) {
        return;
    }
    QItemSelectionModel* selection = listView_->selectionModel();
    const QModelIndexList rows = selection->selectedRows();
    const int shown = rows.isEmpty() ? 0 : rows.first().row() + 1;
    if (shown == index) {
        return;
    }
    syncingSelection_ = true;
    if (index >= 1 && index <= model_.items.count()) {
        const QModelIndex at = model_.items.index(index - 1, SharedCell::Filename);
        selection->setCurrentIndex(at,
                                   QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        listView_->scrollTo(at);
    } else {
        selection->clearSelection();
    }
    syncingSelection_ = false;
}

// ---------------------------------------------------------------- menus

void MainWindow::fileMenuRule() {
    actions_.value(QStringLiteral("FileSaveListAs"))
        ->setEnabled(!model_.state.listFileName().isEmpty());
}

void MainWindow::editMenuRules() {
    const bool hasRows = model_.items.count() >= 1;
    actions_.value(QStringLiteral("RemoveItemsRemoveWizard"))->setEnabled(hasRows);
    if (hasRows && model_.state.listType() == QLatin1String("MP3")) {
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

// ---------------------------------------------------------------- toolbar, buttons

void MainWindow::toolbarButtonClick(int index) {
    switch (index) {
        case 1:
            showNewList();
            break;
        case 2:
            RunCommand(commands_.openList);
            break;
        case 3:
            RunCommand(commands_.saveList, short(0));
            break;
        case 4:
            RunCommand(commands_.addFiles);
            break;
        case 5:
            RunCommand(commands_.showSortWizard);
            break;
        case 6:
            model_.questions.msgBox(
                QStringLiteral("Please, select one of the check-tools by clicking on the arrow."),
                Msg::OkOnly + Msg::Information);
            break;
        case 7:
            RunCommand(commands_.startJoin);
            break;
        default:
            break;
    }
}

void MainWindow::toolbarMenuClick(const QString& key) {
    if (key == QLatin1String("AddFiles")) {
        RunCommand(commands_.addFiles);
    } else if (key == QLatin1String("AddDirectory")) {
        RunCommand(commands_.showAddDirectoryBox);
    } else if (key == QLatin1String("CheckForDupes")) {
        RunCommand(commands_.removeDuplicatedFiles);
    } else if (key == QLatin1String("CheckForDead")) {
        RunCommand(commands_.removeDeadFiles);
    }
}

void MainWindow::deleteButtonMouseUp(Qt::MouseButton button) {
    if (button != Qt::RightButton) {
        return;
    }
    // The submenu gets no opening event of its own, so the Edit rules run here.
    editMenuRules();
    const QPoint spot(Twips::fromPixels(listView_->width()) + 130,
                      Twips::fromPixels(listView_->y()) + 1150);
    menus_.value(QStringLiteral("EditRemoveItems"))
        ->exec(client_->mapToGlobal(Twips::point(spot.x(), spot.y())));
    deleteButton_->setTag(QStringLiteral("popup"));
}

void MainWindow::deleteButtonClick() {
    // The click that follows a right-button pop-up removes nothing.
    if (deleteButton_->tag() == QLatin1String("popup")) {
        deleteButton_->setTag(QString());
        return;
    }
    RunCommand(commands_.removeItem, selectedIndex());
}

// ---------------------------------------------------------------- list type, status

void MainWindow::changeListType() {
    if (model_.items.count() > 0) {
        const int answer = model_.questions.msgBox(
            QStringLiteral("Warning: this action will clear your list, and then change the type "
                           "of list.\n\nWould you like to save your list first?"),
            Msg::YesNoCancel + Msg::Exclamation);
        if (answer == Msg::Yes) {
            // The list goes only when its save really wrote it: a cancelled
            // save dialog or a failed save keeps list, type and title.
            if (!saveListWritten(0)) {
                return;
            }
            RunCommand(commands_.clearList, short(0));
        } else if (answer == Msg::No) {
            RunCommand(commands_.clearList, short(0));
        } else {
            return;
        }
    }
    RunCommand(commands_.clearColumns);
    RunCommand(commands_.addSharedColumns);
    if (model_.state.listType() == QLatin1String("MP3")) {
        model_.state.setListType(QStringLiteral("MPEG"));
        model_.state.setTypeImage(ListState::Picture::MPEG);
        RunCommand(commands_.addMPEGColumns);
    } else {
        model_.state.setListType(QStringLiteral("MP3"));
        model_.state.setTypeImage(ListState::Picture::MP3);
        RunCommand(commands_.addMP3Columns);
    }
}

void MainWindow::statusPanelClicked(int panel) {
    if (panel == 3) {
        ShowListStatusBox(model_);
    }
}

void MainWindow::dropFiles(const QStringList& paths) {
    RunCommand(commands_.dropFiles, paths);
}

void MainWindow::cancelAddingFiles() {
    RunCommand(commands_.cancelAdding);
}

// ---------------------------------------------------------------- closing

bool MainWindow::saveListWritten(short saveAs) {
    return commands_.saveList && commands_.saveList(saveAs);
}

void MainWindow::closeEvent(QCloseEvent* event) {
    const int answer = model_.questions.msgBox(QStringLiteral("Would you like to save your list?"),
                                               Msg::YesNoCancel + Msg::Question);
    if (answer == Msg::Yes) {
        // The program ends only when the save really wrote the list: a
        // cancelled save dialog or a failed save keeps the window and the list.
        if (!saveListWritten(0)) {
            event->ignore();
            return;
        }
    } else if (answer != Msg::No) {
        event->ignore();
        return;
    }
    event->accept();
    exitProgram();
}
