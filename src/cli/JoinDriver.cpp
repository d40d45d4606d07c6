#include "cli/JoinDriver.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QLocale>
#include <QTimer>

#include "cli/CliContext.h"
#include "cli/CliOutput.h"
#include "cli/CliQuestions.h"
#include "cli/CommandLine.h"
#include "cli/JoinProgressReport.h"
#include "join/JoinProgress.h"
#include "join/JoinRun.h"
#include "join/JoinWizardState.h"
#include "join/StartJoin.h"
#include "list/Columns.h"
#include "list/MainModel.h"
#include "platform/InterruptWatcher.h"
#include "platform/Terminal.h"

namespace {

// How often the driver looks whether the run has come to an end.
constexpr int kWatchIntervalMs = 20;

const QString kFinished = QStringLiteral("Finished!");
const QString kFailed = QStringLiteral("Failed!");

JoinProgressReport::Form formOf(ProgressForm form) {
    switch (form) {
        case ProgressForm::Bar:
            return JoinProgressReport::Form::Bar;
        case ProgressForm::Lines:
            return JoinProgressReport::Form::Lines;
        case ProgressForm::None:
            return JoinProgressReport::Form::None;
        case ProgressForm::Auto:
            break;
    }
    return StandardErrorIsTerminal() ? JoinProgressReport::Form::Bar
                                     : JoinProgressReport::Form::Lines;
}

void warnOfList(CliContext& cli, const MainModel& model) {
    if (model.state.listStatus() == QLatin1String("Orange")) {
        cli.output.warning(QStringLiteral(
            "the list is Orange: the files differ in sampling rate; it is joined all the same"));
    }
    const QLocale locale;
    for (const int position : model.items.markedRows()) {
        cli.output.warning(QStringLiteral("row ") + locale.toString(position) +
                           QStringLiteral(" (") + model.items.cell(position, SharedCell::Filename) +
                           QStringLiteral("): ") + model.items.rowCheck(position).reason);
    }
}

// The run has come to an end of its own: finished, failed, or stopped with
// its timers off and nothing at the output (where the window would wait for
// a click on Cancel).
bool runEnded(const JoinWizardState& state) {
    return state.operationText() == kFinished || state.operationText() == kFailed ||
           (!state.timerEnabled() && state.cancelButtonCaption() == QLatin1String("&Cancel"));
}

// Runs the event loop until the run ends, a signal comes, or a box told an
// error while the run goes on (a fix script that could not be started: the
// window would wait for Cancel). The progress is read between the run's
// ticks, where its figures agree with each other (a tick that starts the
// second operation sets them one by one).
void waitForEnd(CliContext& cli, const JoinWizardState& state, JoinProgressReport& progress) {
    const int errorsBefore = cli.questions.errorCount();
    QEventLoop loop;
    QTimer watch;
    watch.setInterval(kWatchIntervalMs);
    QObject::connect(&watch, &QTimer::timeout, &loop, [&] {
        progress.update(state);
        if (runEnded(state) || cli.interrupts.signalNumber() != 0 ||
            cli.questions.errorCount() > errorsBefore) {
            loop.quit();
        }
    });
    QObject::connect(&cli.interrupts, &InterruptWatcher::interrupted, &loop, &QEventLoop::quit);
    // The end of the run is seen as the run reaches it, not at the next look.
    QObject::connect(&state, &JoinWizardState::changed, &loop, [&] {
        if (runEnded(state)) {
            loop.quit();
        }
    });
    watch.start();
    if (cli.interrupts.signalNumber() == 0) {
        loop.exec();
    }
}

void reportJoined(CliContext& cli, const MainModel& model, const JoinRun& run,
                  const QString& outputFile) {
    for (const QString& stream : run.leftOutStreams()) {
        cli.output.warning(QStringLiteral("left out: ") + stream);
    }
    const QLocale locale;
    cli.output.note(QStringLiteral("Joined ") + locale.toString(model.items.count()) +
                    QStringLiteral(" files into ") + outputFile + QStringLiteral(" (") +
                    FormatThousands(static_cast<double>(QFileInfo(outputFile).size()) / 1024.0) +
                    QStringLiteral(" KB)."));
}

}  // namespace

JoinOutcome JoinListInto(CliContext& cli, MainModel& model, const QString& outputFile) {
    if (cli.interrupts.signalNumber() != 0) {
        return JoinOutcome::Interrupted;
    }
    warnOfList(cli, model);
    cli.questions.prepareJoin(outputFile, cli.options.overwrite);
    if (!StartJoin(model)) {
        return JoinOutcome::Refused;
    }

    JoinWizardState state;
    JoinRun run(model, state);
    JoinProgressReport progress(cli.output, formOf(cli.options.progress));
    run.load(true);
    waitForEnd(cli, state, progress);
    progress.finish(state);

    if (state.operationText() == kFinished) {
        reportJoined(cli, model, run, outputFile);
        run.cancelClicked();  // the "&Close" face: the per-user folder is cleaned
        return JoinOutcome::Joined;
    }
    if (state.operationText() == kFailed) {
        // The run has said why and deleted the output; the close cleans up.
        run.cancelClicked();
        return JoinOutcome::Failed;
    }
    // Interrupted, or a run that cannot go on: the window's Cancel, which
    // waits until nothing is left under the output's names, then its Close.
    run.cancelClicked();
    run.cancelClicked();
    if (cli.interrupts.signalNumber() != 0) {
        cli.output.note(QStringLiteral("Interrupted: the join was cancelled; nothing is left."));
        return JoinOutcome::Interrupted;
    }
    cli.output.error(QStringLiteral("the join could not go on and was cancelled"));
    return JoinOutcome::Failed;
}
