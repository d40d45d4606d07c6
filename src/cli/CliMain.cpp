#include "cli/CliMain.h"

#include <QCoreApplication>

#include "app/AppPaths.h"
#include "app/IniFile.h"
#include "app/Settings.h"
#include "app/Startup.h"
#include "app/Version.h"
#include "cli/CheckCommand.h"
#include "cli/CliContext.h"
#include "cli/CliOutput.h"
#include "cli/CliQuestions.h"
#include "cli/CommandLine.h"
#include "cli/ExitCodes.h"
#include "cli/InfoCommand.h"
#include "cli/JoinCommand.h"
#include "cli/TextClipboard.h"
#include "media/Utf8Locale.h"
#include "platform/InterruptWatcher.h"
#include "platform/ProcessKiller.h"

namespace {

int runCommand(CliContext& cli) {
    switch (cli.options.command) {
        case CliCommand::Info:
            return RunInfo(cli);
        case CliCommand::Check:
            return RunCheck(cli);
        case CliCommand::Join:
            return RunJoinCommand(cli);
        case CliCommand::None:
            break;
    }
    return ExitCode::kUsage;
}

// A cancel ends the tools of a join by name; here only those that run from
// this user's per-user folder, where the join copied them.
void killOnlyToolsOfTheAppDataFolder() {
    const QString folder = AppDataFolder() + u'/';
    setProcessKillFilter([folder](qint64 pid) { return ExecutablePathOf(pid).startsWith(folder); });
}

}  // namespace

int RunCommandLine(int argc, char** argv) {
    // File names beyond ASCII must reach the media library intact.
    EnsureUtf8CLocale();
    const QStringList arguments = CommandLineOf(argc, argv);
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("velmora-cli"));
    QCoreApplication::setApplicationVersion(Version::text());

    CliOutput output;
    const ParsedCommandLine parsed = ParseCommandLine(arguments);
    const CliOptions& options = parsed.options;
    if (!parsed.error.isEmpty()) {
        output.error(parsed.error);
        output.plain(UsageLine(options.command) + QStringLiteral("\nTry 'velmora-cli ") +
                     (options.command == CliCommand::None ? QString()
                                                          : CommandName(options.command) + u' ') +
                     QStringLiteral("--help' for more."));
        return ExitCode::kUsage;
    }
    if (options.help) {
        output.result(CommandHelp(options.command));
        return ExitCode::kOk;
    }
    if (options.version) {
        output.result(QStringLiteral("velmora-cli ") + Version::text());
        return ExitCode::kOk;
    }
    output.setQuiet(options.quiet);

    // The window's settings are read as they stand; the command line keeps
    // its choices (--no-tags) to itself.
    SetSettingsReadOnly(true);
    if (options.noTags) {
        Settings::OverrideJoinWritesTagsAndChapters(false);
    }
    CliQuestions questions(output);
    if (PrepareAppDataFolder(questions).isEmpty()) {
        return ExitCode::kJoinNot;
    }
    if (options.debug) {
        StartDebugLog();
    }
    killOnlyToolsOfTheAppDataFolder();

    TextClipboard clipboard;
    InterruptWatcher interrupts;
    CliContext cli{options, output, questions, clipboard, interrupts};
    return runCommand(cli);
}
