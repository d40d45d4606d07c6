#pragma once

#include <QHash>
#include <QMainWindow>
#include <QPointer>
#include <functional>
#include <optional>

#include "list/MainModel.h"
#include "ui/MainCommands.h"

class ImageButton;
class LinkLabel;
class ListViewControl;
class QAction;
class QDialog;
class QLabel;
class QMenu;
class QProgressBar;
class QToolBar;
class StatusBarControl;

// The program's one long-lived window: the list, the toolbar, the column of
// image buttons, the panel of list figures and the status bar. It owns the
// MainModel that every routine works on, shows the model's ListState, and
// forwards menus, buttons and list events to the routines in MainCommands.
class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    // The design size of the client area (below the menu bar), in twips.
    static constexpr int kDesignWidthTwips = 6615;
    static constexpr int kDesignHeightTwips = 5040;
    // The outer size the window jumps back to when made smaller than the design.
    static constexpr int kOuterWidthTwips = 6735;
    static constexpr int kOuterHeightTwips = 5850;

    MainWindow(Questions& questions, Clipboard& clipboard, QWidget* parent = nullptr);
    ~MainWindow() override;

    MainModel& model() { return model_; }
    MainCommands& commands() { return commands_; }

    // Ends the program at once (File, Exit; the answered close question). The
    // program puts an immediate exit here; tests put a recorder.
    std::function<void()> exitProgram;

    // The tips and preferences windows while they live (created hidden at
    // start-up, ended by their first close).
    QPointer<QDialog> tipsWindow;
    QPointer<QDialog> preferencesWindow;

    // The client area: everything below the menu bar.
    QWidget* client() const { return client_; }
    QSize clientSize() const;
    void setClientSize(const QSize& pixels);

    // The position of the selected row, from 1; 0 when none is selected.
    int selectedIndex() const;

    // Menu and event routines, public so that other windows and tests reach
    // them the way the menus do.
    void fileMenuRule();
    void editMenuRules();
    void showNewList();
    void showContextMenu(const QPoint& globalPosition);
    void playSelectedFile();
    void viewID3Tag();
    void viewFileProperties();
    void changeListType();
    void statusPanelClicked(int panel);
    void dropFiles(const QStringList& paths);
    void toolbarButtonClick(int index);
    void toolbarMenuClick(const QString& key);

    // Controls by their design names, for the routines that read them.
    QAction* action(const QString& name) const { return actions_.value(name); }
    QMenu* menu(const QString& name) const { return menus_.value(name); }
    ListViewControl* listView() const { return listView_; }
    StatusBarControl* statusBarControl() const { return statusBar_; }
    ImageButton* deleteButton() const { return deleteButton_; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Runs the save command; true only when it wrote the list.
    bool saveListWritten(short saveAs);
    void buildMenus();
    void buildToolbar();
    void buildClientControls();
    QAction* addEntry(QMenu* menu, const QString& name, const QString& caption,
                      const QKeySequence& shortcut, std::function<void()> command);
    QAction* addSeparator(QMenu* menu, const QString& name);
    QMenu* addSubmenu(QMenu* menu, const QString& name, const QString& caption);
    ImageButton* addImageButton(const QString& name, const QString& picture, int topTwips,
                                const QString& toolTip);
    QLabel* addInfoLabel(const QString& name, const QString& caption, int left, int top, int width,
                         bool bold);
    void layoutClient();
    void refreshFromState();
    void showPicture(QLabel* label, std::optional<ListState::Picture>& shown,
                     ListState::Picture picture, const QSize& size);
    void selectionChangedInView();
    void selectIndexInView(int index);
    void deleteButtonMouseUp(Qt::MouseButton button);
    void deleteButtonClick();
    void runSeparator9();
    void runEditPreferences();
    void cancelAddingFiles();

    MainModel model_;
    MainCommands commands_;

    QWidget* client_ = nullptr;
    QToolBar* toolbar_ = nullptr;
    ListViewControl* listView_ = nullptr;
    QWidget* controlPanel_ = nullptr;
    QWidget* infoPanel_ = nullptr;
    StatusBarControl* statusBar_ = nullptr;
    QProgressBar* progressBar_ = nullptr;
    QWidget* cancelOverlay_ = nullptr;
    ImageButton* deleteButton_ = nullptr;
    QLabel* listTypeImage_ = nullptr;
    QLabel* listTypeValue_ = nullptr;
    QLabel* listCountValue_ = nullptr;
    QLabel* listDurationValue_ = nullptr;
    QLabel* listSizeValue_ = nullptr;
    QHash<QString, QAction*> actions_;
    QHash<QString, QMenu*> menus_;
    // The pictures the type image and status panel show now (none before the
    // first refresh).
    std::optional<ListState::Picture> shownTypeImage_;
    std::optional<ListState::Picture> shownStatusPicture_;
    bool syncingSelection_ = false;
    bool layingOut_ = false;
};
