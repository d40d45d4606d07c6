#include "ui/HelpCommands.h"

#include "app/AppPaths.h"
#include "app/Version.h"
#include "list/MainModel.h"
#include "platform/FileHelpers.h"
#include "platform/Shell.h"

QString PublisherSiteAddress() {
    return QStringLiteral("http://") + Version::kPublisherHost;
}

QString UpdatePageAddress() {
    return PublisherSiteAddress() + QStringLiteral("/Content/VLR/?page=update&version=") +
           QString::number(Version::kMajor) + u'.' + QString::number(Version::kMinor);
}

void HelpManual(MainModel& model) {
    const QString path = InstallFolder() + QStringLiteral("/ReadMe.htm");
    if (FileExists(path) && !IsDirectoryPath(path)) {
        OpenThroughShell(path);
        return;
    }
    model.questions.msgBox(QStringLiteral("Unable to find (ReadMe.htm) document!"),
                           Msg::OkOnly + Msg::Critical);
}

void HelpCheckForUpdate(MainModel& model) {
    const QChar cr(u'\r');
    const QString prompt =
        QStringLiteral(
            "You will be directed to our website, where you can find the latest "
            "version information.") +
        cr + QStringLiteral("Please, make sure that you are connected to the internet.") + cr + cr +
        QStringLiteral(
            "Click the \"Ok\" button to visit our website, or click the \"Cancel\" "
            "button to close this dialog.");
    if (model.questions.msgBox(prompt, Msg::OkCancel + Msg::Information) == Msg::Ok) {
        OpenThroughShell(UpdatePageAddress());
    }
}

void OpenThroughShell(const QString& target) {
    ShellOpen(target, InstallFolder());
}
