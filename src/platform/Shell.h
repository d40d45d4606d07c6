#pragma once

#include <QString>
#include <QStringList>
#include <functional>

// Opening files, folders and web pages with the desktop's own programs, and
// the file manager's folder and properties views.

// Opens a file, folder or web address with the program the desktop has chosen
// for it (xdg-open, started detached in the caller's working folder; the
// program passes its InstallFolder()). True when the opener could be started.
bool ShellOpen(const QString& pathOrUrl, const QString& workingFolder);

// Shows the folder of a file in the file manager with the file selected
// (org.freedesktop.FileManager1.ShowItems over the session bus). Without such
// a file manager the folder itself is opened (ShellOpen in workingFolder).
// True when either was asked.
bool ShowItemInFolder(const QString& path, const QString& workingFolder);

// ShowFileProperties (declared in platform/FileHelpers.h) lives here too: the
// file manager's ShowItemProperties, falling back to opening the folder.

// Seams for tests, so that nothing real is started while the calls are checked.
// The launcher starts a program detached; the file-manager call sends one
// FileManager1 method ("ShowItems" or "ShowItemProperties") with file URIs.
// Each setter returns the previous hook; an empty function restores the real one.
using ShellLauncher = std::function<bool(const QString& program, const QStringList& arguments,
                                         const QString& workingFolder)>;
using FileManagerCall = std::function<bool(const QString& method, const QStringList& uris)>;
ShellLauncher setShellLauncherHook(ShellLauncher hook);
FileManagerCall setFileManagerCallHook(FileManagerCall hook);
