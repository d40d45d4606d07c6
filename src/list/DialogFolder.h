#pragma once

#include <QString>

#include "app/Settings.h"

struct CommonDialog;

// After a file dialog was answered: the folder is the dialog's file name with
// every occurrence of its file title removed (so one chosen file leaves a
// folder with a trailing separator). When that differs from the folder the
// dialog opened in, it is stored as the dialog's folder in the settings; a
// stored value ends at the first character 0.
void RememberDialogFolder(const CommonDialog& dialog, Settings::DialogFolder which);
