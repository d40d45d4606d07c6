// The main window: its making, the list's state shown in its controls, and
// the selection kept in step with the view. The menus, the toolbar, the
// client area and the closing and list-type flows have files of their own
// (MainWindowMenus, MainWindowToolbar, MainWindowClientArea, MainWindowFlows).
#include "ui/MainWindow.h"

#include <QCoreApplication>
#include <QItemSelectionModel>
#include <QLabel>
#include <QProgressBar>

#include "app/Version.h"
#include "list/Columns.h"
#include "list/ListviewLayout.h"
#include "list/StatusBoxes.h"
#include "ui/ListViewControl.h"
#include "ui/PaintThrottle.h"
#include "ui/Pictures.h"
#include "ui/ProgramLook.h"
#include "ui/StatusBarControl.h"
#include "ui/Twips.h"

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
