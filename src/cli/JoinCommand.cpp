#include "cli/JoinCommand.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>

#include "cli/CliContext.h"
#include "cli/CliOutput.h"
#include "cli/CliQuestions.h"
#include "cli/CommandLine.h"
#include "cli/ExitCodes.h"
#include "cli/JoinDriver.h"
#include "cli/ListSources.h"
#include "list/MainModel.h"
#include "media/ListType.h"
#include "platform/FileHelpers.h"
#include "platform/InterruptWatcher.h"

namespace {

QString quoted(const QString& path) {
    return u'\'' + path + u'\'';
}

int statusOf(JoinOutcome outcome, const CliContext& cli) {
    switch (outcome) {
        case JoinOutcome::Joined:
            return ExitCode::kOk;
        case JoinOutcome::Refused:
        case JoinOutcome::Failed:
            return ExitCode::kJoinNot;
        case JoinOutcome::Interrupted:
            break;
    }
    return InterruptWatcher::ExitStatusFor(cli.interrupts.signalNumber());
}

int joinOne(CliContext& cli) {
    MainModel model(cli.questions, cli.clipboard);
    if (const std::optional<int> status = MakeCommandList(cli, model)) {
        return *status;
    }
    const QString output = QFileInfo(cli.options.output).absoluteFilePath();
    return statusOf(JoinListInto(cli, model, output), cli);
}

// The output folder of --each, made when missing; empty when it cannot be.
QString outputFolder(CliContext& cli) {
    QString folder = QDir::cleanPath(QFileInfo(cli.options.output).absoluteFilePath());
    if (QFileInfo(folder).isDir()) {
        return folder;
    }
    if (QFileInfo::exists(folder)) {
        cli.output.error(quoted(cli.options.output) +
                         QStringLiteral(" is no folder; join --each writes into a folder"));
        return {};
    }
    QString made = folder;
    if (!MakeFolderPath(made)) {
        cli.output.error(QStringLiteral("cannot make the folder ") + quoted(cli.options.output));
        return {};
    }
    return folder;
}

struct EachCounts {
    int joined = 0;
    int refused = 0;
    int failed = 0;
};

// The join of one folder of --each; the folder's line goes to standard output.
JoinOutcome joinFolder(CliContext& cli, const QString& folder, const QString& outFolder) {
    MainModel model(cli.questions, cli.clipboard);
    const SourceList list = MakeListFromSources(model, {folder}, cli.options.listType);
    if (cli.interrupts.signalNumber() != 0) {
        return JoinOutcome::Interrupted;
    }
    if (!list.error.isEmpty()) {
        cli.output.error(folder + QStringLiteral(": ") + list.error);
        return JoinOutcome::Refused;
    }
    for (const QString& warning : list.warnings) {
        cli.output.warning(warning);
    }
    QString name = QFileInfo(QDir::cleanPath(QFileInfo(folder).absoluteFilePath())).fileName();
    if (name.isEmpty()) {
        name = QStringLiteral("joined");
    }
    const QString extension = list.listType == ListTypeText(ListType::Mp3) ? QStringLiteral(".mp3")
                                                                           : QStringLiteral(".mpg");
    const QString output = outFolder + u'/' + name + extension;
    const JoinOutcome outcome = JoinListInto(cli, model, output);
    if (outcome == JoinOutcome::Joined) {
        cli.output.result(QStringLiteral("joined: ") + folder + QStringLiteral(" -> ") + output);
    }
    return outcome;
}

int joinEach(CliContext& cli) {
    for (const QString& folder : cli.options.paths) {
        if (!QFileInfo(folder).isDir()) {
            cli.output.error(quoted(folder) +
                             QStringLiteral(" is no folder; join --each takes folders"));
            return ExitCode::kUsage;
        }
    }
    const QString outFolder = outputFolder(cli);
    if (outFolder.isEmpty()) {
        return ExitCode::kUsage;
    }
    EachCounts counts;
    int status = ExitCode::kOk;
    for (const QString& folder : cli.options.paths) {
        const JoinOutcome outcome = joinFolder(cli, folder, outFolder);
        if (outcome == JoinOutcome::Interrupted) {
            break;
        }
        status = std::max(status, statusOf(outcome, cli));
        if (outcome == JoinOutcome::Joined) {
            ++counts.joined;
        } else if (outcome == JoinOutcome::Refused) {
            ++counts.refused;
            cli.output.result(QStringLiteral("refused: ") + folder);
        } else {
            ++counts.failed;
            cli.output.result(QStringLiteral("failed: ") + folder);
        }
    }
    const QLocale locale;
    cli.output.result(locale.toString(cli.options.paths.size()) + QStringLiteral(" folders: ") +
                      locale.toString(counts.joined) + QStringLiteral(" joined, ") +
                      locale.toString(counts.refused) + QStringLiteral(" refused, ") +
                      locale.toString(counts.failed) + QStringLiteral(" failed"));
    if (cli.interrupts.signalNumber() != 0) {
        return InterruptWatcher::ExitStatusFor(cli.interrupts.signalNumber());
    }
    return status;
}

}  // namespace

int RunJoinCommand(CliContext& cli) {
    return cli.options.each ? joinEach(cli) : joinOne(cli);
}
