#pragma once

#include <QString>

// Everything that asks the user goes through this interface: message boxes and
// the one shared file dialog. The program plugs in the Qt dialogs; tests plug in
// a scripted double that records each question and answers from a queue.

namespace Msg {
// Buttons and icons are added together into one style value, as message boxes
// have always taken them (for example YesNoCancel + Question).
enum Style : int {
    OkOnly = 0,
    OkCancel = 1,
    AbortRetryIgnore = 2,
    YesNoCancel = 3,
    YesNo = 4,
    RetryCancel = 5,
    Critical = 16,
    Question = 32,
    Exclamation = 48,
    Information = 64,
};
inline constexpr int kButtonsMask = 0x0F;
inline constexpr int kIconMask = 0x70;

enum Answer : int { Ok = 1, Cancel = 2, Abort = 3, Retry = 4, Ignore = 5, Yes = 6, No = 7 };
}  // namespace Msg

// The state of the one file dialog of the main window. It lives as long as the
// window, so values set for one use (the file name above all) stay readable
// after the dialog has closed: the join reads its output path from here.
struct CommonDialog {
    QString dialogTitle;
    QString initDir;
    QString filter;  // "Name|*.a;*.b|All Files|*.*"
    int filterIndex = 1;
    int flags = 0;
    int maxFileSize = 260;
    // After an open with several files: folder, then each file name, separated
    // by the character 0. After one file: its full path. Empty when cancelled.
    QString fileName;
    QString fileTitle;  // the name part of fileName, as the dialog reports it
};

namespace DialogFlags {
inline constexpr int OverwritePrompt = 2;
inline constexpr int HideReadOnly = 4;
inline constexpr int AllowMultiSelect = 512;
inline constexpr int PathMustExist = 2048;
inline constexpr int FileMustExist = 4096;
inline constexpr int Explorer = 524288;
inline constexpr int LongNames = 2097152;
}  // namespace DialogFlags

class Questions {
public:
    virtual ~Questions() = default;
    // Shows a message box. An empty title means the program's own title.
    virtual int msgBox(const QString& prompt, int style, const QString& title = QString()) = 0;
    // Show the open or save dialog with the given state; the dialog writes
    // fileName and fileTitle back (both empty when the user cancelled).
    virtual void showOpen(CommonDialog& dialog) = 0;
    virtual void showSave(CommonDialog& dialog) = 0;
};
