#pragma once

#include <QApplication>
#include <QElapsedTimer>
#include <QMenu>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>

#include "support/MemoryClipboard.h"
#include "support/ScriptedQuestions.h"
#include "ui/MainWindow.h"

// Runs action on the first modal window or pop-up menu that comes up, polling
// the event loop (the window opens inside a nested loop of the code under test).
// The returned handle stops the polling when called.
using StopPolling = std::function<void()>;
inline StopPolling WhenModalShows(std::function<void(QWidget*)> action, int timeoutMs = 5000) {
    auto timer = std::make_shared<QElapsedTimer>();
    timer->start();
    auto poll = std::make_shared<std::function<void()>>();
    *poll = [action, timer, poll, timeoutMs] {
        QWidget* w = QApplication::activePopupWidget();
        if (w == nullptr) {
            w = QApplication::activeModalWidget();
        }
        if (w != nullptr && w->isVisible()) {
            action(w);
            *poll = nullptr;
            return;
        }
        if (timer->elapsed() > timeoutMs) {
            *poll = nullptr;
            return;
        }
        QTimer::singleShot(10, [poll] {
            if (*poll) {
                (*poll)();
            }
        });
    };
    QTimer::singleShot(0, [poll] {
        if (*poll) {
            (*poll)();
        }
    });
    return [poll] { *poll = nullptr; };
}

// The captions of the visible entries of a menu, separators as "-".
inline QStringList VisibleCaptions(QMenu* menu) {
    QStringList captions;
    for (QAction* a : menu->actions()) {
        if (a->isVisible()) {
            captions << (a->isSeparator() ? QStringLiteral("-") : a->text());
        }
    }
    return captions;
}

// A main window with scripted questions and a memory clipboard, and a record
// of every forwarded command.
struct WindowFixture {
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    std::unique_ptr<MainWindow> window;
    QStringList calls;
    int exits = 0;

    WindowFixture() {
        window = std::make_unique<MainWindow>(questions, clipboard);
        window->exitProgram = [this] { ++exits; };
        record();
    }

    MainModel& model() { return window->model(); }

    // Puts a recorder in place of every command.
    void record() {
        MainCommands& c = window->commands();
        auto note = [this](const QString& text) { calls << text; };
        c.newItemList = [note](const QString& t) { note("NewItemList " + t); };
        c.openList = [note] { note("OpenList"); };
        c.saveList = [note](short s) {
            note("SaveList " + QString::number(s));
            return true;
        };
        c.addFiles = [note] { note("AddFiles"); };
        c.copyItem = [note](int i, short cut) {
            note(QStringLiteral("CopyItem %1 %2").arg(i).arg(cut));
        };
        c.pasteItem = [note] { note("PasteItem"); };
        c.copyList = [note] { note("CopyList"); };
        c.removeItem = [note](int i) { note("RemoveItem " + QString::number(i)); };
        c.clearList = [note](short a) { note("ClearList " + QString::number(a)); };
        c.removeDuplicatedFiles = [note] { note("RemoveDuplicatedFiles"); };
        c.removeDeadFiles = [note] { note("RemoveDeadFiles"); };
        c.onlyKeepBitrateItems = [note](const QString& b) { note("OnlyKeepBitrateItems " + b); };
        c.moveItemUp = [note](int i) { note("MoveItemUp " + QString::number(i)); };
        c.moveItemDown = [note](int i) { note("MoveItemDown " + QString::number(i)); };
        c.clearColumns = [note] { note("ClearColumns"); };
        c.addSharedColumns = [note] { note("AddSharedColumns"); };
        c.addMP3Columns = [note] { note("AddMP3Columns"); };
        c.addMPEGColumns = [note] { note("AddMPEGColumns"); };
        c.dropFiles = [note](const QStringList& p) { note("Drop " + p.join(u'|')); };
        c.startJoin = [note] { note("StartJoin"); };
        c.showAddDirectoryBox = [note] { note("AddDirectoryBox"); };
        c.showSortWizard = [note] { note("SortWizard"); };
        c.showRemoveWizard = [note] { note("RemoveWizard"); };
        c.showListInfo = [note] { note("ListInfo"); };
        c.showPreferences = [note] { note("PreferencesWindow"); };
        c.showTips = [note] { note("TipsWindow"); };
        c.showHelpManual = [note] { note("HelpManual"); };
        c.checkForUpdate = [note] { note("HelpCheckForUpdate"); };
        c.showAbout = [note] { note("AboutWindow"); };
        c.showID3Tag = [note](const QString& p) { note("ID3Tag " + p); };
        c.shellOpen = [note](const QString& p) { note("ShellOpen " + p); };
        c.showFileProperties = [note](const QString& p) { note("FileProperties " + p); };
    }

    // An MP3 list of n rows with four shared columns and eight MP3 columns;
    // cell 3 holds "/music/<i>.mp3", cell 10 "<i>28 kbps".
    void fillMp3List(int n) {
        ItemList& items = model().items;
        items.clearColumns();
        for (const char* h : {"Filename", "Filesize", "Date Modified", "Filepath", "Artist",
                              "Title", "Album", "Year", "Genre", "Duration", "Bitrate", "Hertz"}) {
            items.addColumn(QString::fromLatin1(h), QByteArray(h) == "Filepath" ? 0 : 1440);
        }
        model().state.setListType(QStringLiteral("MP3"));
        for (int i = 1; i <= n; ++i) {
            items.addRow(QStringLiteral("%1.mp3").arg(i));
            items.setCell(i, 3, QStringLiteral("/music/%1.mp3").arg(i));
            items.setCell(i, 10, QStringLiteral("%1 kbps").arg(i * 32));
        }
    }
};
