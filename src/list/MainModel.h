#pragma once

#include "list/ItemList.h"
#include "list/ListCheck.h"
#include "list/ListState.h"
#include "platform/Questions.h"

class Clipboard;

// What the main window owns and every routine reaches: the rows, the values
// of the whole list, the one shared file dialog, and the ways to ask the user
// and to reach the clipboard. The window holds one; tests make their own.
struct MainModel {
    MainModel(Questions& questions, Clipboard& clipboard)
        : questions(questions), clipboard(clipboard) {}

    ItemList items;
    ListState state;
    // The background check of a list opened from a list file.
    ListCheck listCheck{items};
    CommonDialog commonDialog;
    Questions& questions;
    Clipboard& clipboard;
    // The folder the file enumerator of the adding routines last listed. A
    // folder that cannot be listed leaves it as it was.
    QString fileBrowserPath;
    // The pattern it lists by; a list of an unknown type leaves it as it was.
    QString fileBrowserPattern = QStringLiteral("*.*");
};
