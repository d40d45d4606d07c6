#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>

class Questions;

// Small routines over the file system that the whole program shares. Paths use
// the native separator "/".

// The text behind the last separator; a path without one comes back whole.
QString GetFileNameFromPath(const QString& path);

// True for an existing file or folder; a path that cannot be stat'ed is missing.
bool FileExists(const QString& path);

// True when the path names an existing folder.
bool IsDirectoryPath(const QString& path);

// True when the folder's entries can be read by this process now: it is
// opened for listing, which is what decides, whoever the user is.
bool FolderCanBeListed(const QString& path);

// Creates a folder and every missing folder above it. A trailing separator is
// removed from the caller's text, in place. False when a level could not be
// made (the walk stops there); callers may ignore it.
bool MakeFolderPath(QString& path);

// Writes the bytes to the file whole or not at all: they go to a temporary
// file beside it, which takes the file's place only when every byte is
// written and flushed, so a failed write (a full disk, a size limit) leaves
// the old file, or no file. With directWriteFallback, a file in a folder
// that allows no new file is written in place instead. True when the file
// now holds the bytes; otherwise the system's reason goes to reason, when
// given.
bool WriteFileWhole(const QString& path, const QByteArray& content,
                    bool directWriteFallback = false, QString* reason = nullptr);

// The folder that holds the system's file-manager launcher, or the empty text.
QString GetWindowsFolder();

// The per-user data folder for the given folder id (the only one used is
// 0x801A, the application data folder, created when missing). Shows
// "ApplicationData Folder does not exist!" or "Invalid Folder ID!" through
// questions when the lookup fails, and then returns the empty text.
QString GetShellFolderPath(std::int32_t folderId, Questions& questions);
inline constexpr std::int32_t kAppDataFolderId = 0x801A;

// Opens the file manager's properties view of a file; without a file manager
// the folder is opened (ShellOpen in workingFolder). True when it was asked.
// (Defined with the other shell calls in platform/Shell.cpp.)
bool ShowFileProperties(const QString& path, const QString& workingFolder,
                        std::uint32_t windowHandle = 0);

// Free bytes available to the caller on the file system that holds path. The
// caller's text is trimmed and given a trailing separator, in place. 0 on failure.
double GetDiskFreeBytes(QString& path);

// The free-byte count as the sum of its two 32-bit halves, each through
// BytesToDouble: low + 2^32 * high, so no value wraps or turns negative.
double FreeBytesToDouble(std::uint64_t bytes);

// b0 + b1 * 2^8 + b2 * 2^16 + b3 * 2^24, each byte unsigned.
double BytesToDouble(std::uint8_t b0, std::uint8_t b1, std::uint8_t b2, std::uint8_t b3);
