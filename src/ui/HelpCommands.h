#pragma once

#include <QString>

struct MainModel;

// The help commands of the main window that open documents and pages through
// the shell.

// "http://" + the publisher's host: the program's web site.
QString PublisherSiteAddress();

// The update page for this version: the site + "/Content/VLR/?page=update&version=1.61".
QString UpdatePageAddress();

// Opens ReadMe.htm of the install folder in the user's browser, or says
// "Unable to find (ReadMe.htm) document!" when it is not there.
void HelpManual(MainModel& model);

// Asks whether to visit the web site and, on OK, opens the update page.
void HelpCheckForUpdate(MainModel& model);

// Opens a file or web address with the program the system has for it.
void OpenThroughShell(const QString& target);
