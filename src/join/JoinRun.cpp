#include "join/JoinRun.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <limits>
#include <utility>

#include "app/AppPaths.h"
#include "app/DebugLog.h"
#include "join/FinishWizard.h"
#include "join/JoinCleanup.h"
#include "join/JoinLock.h"
#include "join/JoinProgress.h"
#include "join/JoinScripts.h"
#include "join/JoinWizardState.h"
#include "list/MainModel.h"
#include "platform/DetachedLaunch.h"
#include "platform/EventTurn.h"
#include "platform/FileHelpers.h"
#include "platform/ProcessKiller.h"
#include "platform/ProcessRunner.h"

namespace {

const QString kOperation1 = QStringLiteral("1");
const QString kOperation2 = QStringLiteral("2");
QString& scriptShell() {
    static QString shell;
    return shell;
}

JoinRun::LauncherFactory& launcherFactory() {
    static JoinRun::LauncherFactory factory;
    return factory;
}

void log(const QString& text) {
    if (!LogPath().isEmpty()) {
        LogEvent(text, 4);
    }
}

QString markerFolder() {
    return AppDataPath(JoinNames::kMarkerFolder);
}

bool markerExists() {
    return QFileInfo(markerFolder()).isDir();
}

void makeMarker() {
    if (!markerExists()) {
        QDir().mkpath(markerFolder());
    }
}

}  // namespace

JoinRun::JoinRun(MainModel& model, JoinWizardState& state, QObject* parent)
    : QObject(parent), model_(model), state_(state) {
    tickTimer_.setInterval(10);
    clockTimer_.setInterval(1000);
    connect(&tickTimer_, &QTimer::timeout, this, &JoinRun::tick);
    connect(&clockTimer_, &QTimer::timeout, this, &JoinRun::clockTick);
    connect(&state_, &JoinWizardState::changed, this, &JoinRun::syncTimers);
}

JoinRun::~JoinRun() {
    ReleaseJoinLock();
}

JoinRun::LauncherFactory JoinRun::setLauncherFactory(LauncherFactory factory) {
    return std::exchange(launcherFactory(), std::move(factory));
}

QString JoinRun::setScriptShell(const QString& shell) {
    return std::exchange(scriptShell(), shell);
}

void JoinRun::syncTimers() {
    if (!ownTimers_) {
        return;
    }
    if (state_.timerEnabled() != tickTimer_.isActive()) {
        state_.timerEnabled() ? tickTimer_.start() : tickTimer_.stop();
    }
    if (state_.elapsedTimerEnabled() != clockTimer_.isActive()) {
        state_.elapsedTimerEnabled() ? clockTimer_.start() : clockTimer_.stop();
    }
}

void JoinRun::load(bool ownTimers) {
    ownTimers_ = ownTimers;
    // Both timers run from the window's start.
    state_.setTimerEnabled(true);
    state_.setElapsedTimerEnabled(true);
    syncTimers();

    // The bar counts the list's bytes, in the precision of its KB figure.
    QString sizeText = model_.state.sizeCaption();
    sizeText.replace(QStringLiteral(" KB"), QString());
    bool ok = false;
    const double kilobytes = QLocale().toDouble(sizeText.trimmed(), &ok);
    if (ok) {
        state_.setProgressMax(static_cast<float>(kilobytes * 1024.0));
    }
    state_.setOperationText(QStringLiteral("Operation 1 of 2"));
    state_.setOperationTag(kOperation1);
    elapsedSeconds_ = 0;
    cancelled_ = false;

    makeMarker();
    firstScriptPid_ = LaunchScriptDetached(AppDataPath(JoinNames::kTempFileScript));
    if (!LogPath().isEmpty()) {
        LogEvent(QStringLiteral("BAT1 Launched."), 4);
        LogEvent(QStringLiteral("OutputFile=") + OutputFilePath(model_), 4);
    }
}

void JoinRun::tick() {
    if (!state_.timerEnabled()) {
        return;
    }
    const QString operation = state_.operationTag();
    const bool running = markerExists();
    QString watched;
    if (operation == kOperation1 && running) {
        watched = TempFilePath(model_);
    } else if (operation == kOperation2 && running) {
        watched = OutputFilePath(model_);
    } else if (operation == kOperation2) {
        postCheck();
        FinishWizard(model_, state_, cancelled_);
        return;
    } else if (operation == kOperation1) {
        startOperation2();
        watched = OutputFilePath(model_);
    } else {
        return;  // not loaded
    }
    UpdateSizeSource(model_, state_, watched);
}

void JoinRun::startOperation2() {
    log(QStringLiteral("Operation1 Size=") + state_.writtenSizeText());
    state_.setOperationText(QStringLiteral("Operation 2 of 2"));
    state_.setOperationTag(kOperation2);
    state_.setProgressValue(0.0F);
    state_.setWrittenSizeText(QStringLiteral("0 KB"));
    state_.setWindowCaption(QStringLiteral("Join Wizard"));

    // MP3.bat, MPEG2.bat, or MPEG.bat where MPEG-1 video is remade.
    const QString script = FixScriptName(model_);
    if (!script.isEmpty()) {
        // The fix script's marker: the script removes it at its end.
        makeMarker();
        delete launcher_;
        launcher_ = launcherFactory() ? launcherFactory()(this) : new ProcessRunner(this);
        connect(launcher_, &ProcessRunner::dataReceived, this, &JoinRun::dataReceived);
        launcher_->setBufferSize(8192);
        launcher_->setStopTimeout(1000);
        const QString shell = scriptShell().isEmpty() ? QStringLiteral("/bin/sh") : scriptShell();
        launcher_->command(shell, {AppDataPath(script)});
        const int status = launcher_->status();
        if (status == ProcessRunner::AlreadyRunning) {
            model_.questions.msgBox(QStringLiteral("Process is already running!"),
                                    Msg::OkOnly + Msg::Critical);
        } else if (status == ProcessRunner::Failed) {
            model_.questions.msgBox(QStringLiteral("An error occured!\rError Details: ") +
                                        QString::number(launcher_->errorNumber()),
                                    Msg::OkOnly + Msg::Critical);
        }
        return;
    }
    // Nothing to fix: the raw join takes the final name, and with JoinTemp
    // gone the next tick finishes.
    QFile::rename(TempFilePath(model_), OutputFilePath(model_));
}

void JoinRun::postCheck() {
    const QString output = OutputFilePath(model_);
    const QString temp = TempFilePath(model_);
    // The best file on disk becomes OutputFile. An empty file from the MPEG-2
    // tool (remaking MPEG-2 or MPEG-1 video) counts as a failure; the MP3 fix
    // only as one when it left nothing.
    const QString script = FixScriptName(model_);
    if (script == JoinNames::kMpeg2Script || script == JoinNames::kMpeg1Script) {
        const QFileInfo info(output);
        if (!info.isFile() || info.size() == 0) {
            QFile::remove(output);
            QFile::rename(temp, output);
        } else {
            QFile::remove(temp);
        }
    } else if (script == JoinNames::kMp3Script) {
        if (!FileExists(output)) {
            QFile::rename(temp, output);
        } else {
            QFile::remove(temp);
        }
    }
}

void JoinRun::clockTick() {
    if (elapsedSeconds_ < std::numeric_limits<std::int16_t>::max()) {
        ++elapsedSeconds_;
    }
    state_.setElapsedTimeText(ClockText(elapsedSeconds_));
    giveEventsATurn();
}

void JoinRun::dataReceived(const QString& text) {
    HandleToolOutput(model_, state_, text);
}

void JoinRun::cancelClicked() {
    state_.setTimerEnabled(false);
    RemoveMarkerAndScripts();
    // A shell goes on reading a script that was deleted under it, so the shell
    // of the first script is ended with it, and so is the fix script's
    // launcher with everything it started.
    KillScriptShell(firstScriptPid_, AppDataPath(JoinNames::kTempFileScript));
    firstScriptPid_ = 0;
    KillToolsInAppData();
    if (launcher_ != nullptr) {
        launcher_->stop();
        delete launcher_;
        launcher_ = nullptr;
    }
    DeleteToolsFromAppData();

    if (state_.cancelButtonCaption() != QStringLiteral("&Cancel")) {
        // The join is over: another running copy may join now.
        ReleaseJoinLock();
        state_.requestClose();
        return;
    }
    state_.setCancelButtonEnabled(false);
    cancelled_ = true;
    const QList<LeftBehindFile> left = WaitForJoinOutputGone(OutputFilePath(model_), state_);
    // Nothing of the cancelled join runs any more: another running copy may
    // join now.
    ReleaseJoinLock();
    state_.setCancelButtonEnabled(true);
    if (!left.isEmpty()) {
        model_.questions.msgBox(LeftBehindMessage(left), Msg::OkOnly + Msg::Exclamation);
    }
    FinishWizard(model_, state_, cancelled_);
    state_.requestFocusOnFord();
}

void JoinRun::launchFile() {
    LaunchOutputFile(model_);
}

void JoinRun::openFolder() {
    OpenOutputFolder(model_);
}

void JoinRun::setID3Tag() {
    SetID3TagOfOutput(model_, state_);
}
