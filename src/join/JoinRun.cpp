#include "join/JoinRun.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
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
#include "join/RemakeProbeScan.h"
#include "join/RemakeStreams.h"
#include "list/CellValues.h"
#include "list/MainModel.h"
#include "platform/EventTurn.h"
#include "platform/FileHelpers.h"
#include "platform/ProcessKiller.h"
#include "platform/ProcessRunner.h"

namespace {

const QString kOperation1 = QStringLiteral("1");
const QString kOperation2 = QStringLiteral("2");
// How much of the fix script's output is kept: its start and its end.
constexpr qsizetype kToolOutputHead = 256 * 1024;
constexpr qsizetype kToolOutputTail = 4096;
// How long the run waits for a failed fix script to end, so that the last
// words of its tool have arrived.
constexpr int kFailedScriptWaitMs = 5000;
QString& scriptShellSetting() {
    static QString shell;
    return shell;
}

QString scriptShell() {
    return scriptShellSetting().isEmpty() ? QStringLiteral("/bin/sh") : scriptShellSetting();
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
    // Named and owned as the window's are, so that they can be found.
    tickTimer_.setObjectName(QStringLiteral("Timer"));
    tickTimer_.setParent(this);
    tickTimer_.setInterval(10);
    clockTimer_.setObjectName(QStringLiteral("ElapsedTimer"));
    clockTimer_.setParent(this);
    clockTimer_.setInterval(1000);
    connect(&tickTimer_, &QTimer::timeout, this, &JoinRun::tick);
    connect(&clockTimer_, &QTimer::timeout, this, &JoinRun::clockTick);
    connect(&state_, &JoinWizardState::changed, this, &JoinRun::syncTimers);
    connect(this, &JoinRun::shellEnded, this, [this] {
        if (ownTimers_) {
            tick();
        }
    });
}

// Told from inside the shell's own end handler: the signal goes out from the
// event loop, where a tick may delete that shell's runner.
void JoinRun::onShellEnded(const ProcessRunner* shell) {
    if (state_.timerEnabled() && shell == currentShell()) {
        QMetaObject::invokeMethod(this, &JoinRun::shellEnded, Qt::QueuedConnection);
    }
}

JoinRun::~JoinRun() {
    ReleaseJoinLock();
}

JoinRun::LauncherFactory JoinRun::setLauncherFactory(LauncherFactory factory) {
    return std::exchange(launcherFactory(), std::move(factory));
}

QString JoinRun::setScriptShell(const QString& shell) {
    return std::exchange(scriptShellSetting(), shell);
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
    if (const auto kilobytes = CellValues().listKilobytes(model_.state.sizeCaption())) {
        state_.setProgressMax(static_cast<float>(*kilobytes * 1024.0));
    }
    state_.setOperationText(QStringLiteral("Operation 1 of 2"));
    state_.setOperationTag(kOperation1);
    elapsedSeconds_ = 0;
    cancelled_ = false;
    failed_ = false;
    // TempFile must come to hold what the items hold now.
    startSizes_ = ItemSizesOnDisk(model_);
    toolOutputHead_.clear();
    toolOutputTail_.clear();

    makeMarker();
    // Hidden and with its output dropped: of the first script the run reads
    // nothing but the end of its shell.
    delete firstScript_;
    firstScript_ = new ProcessRunner(this);
    firstScript_->setOutputDiscarded(true);
    connect(firstScript_, &ProcessRunner::processEnded, this,
            [this, shell = firstScript_] { onShellEnded(shell); });
    firstScript_->command(scriptShell(), {AppDataPath(JoinNames::kTempFileScript)});
    firstScriptPid_ = firstScript_->processId();
    startProbeScan();
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
    // The end of a shell is known from an event handled before this tick, and
    // a script that reaches its end removes the marker before its shell
    // exits: a marker seen after the end is one that nobody will remove.
    const bool shellEnded = shellGone();
    const bool running = markerExists();
    if (running && shellEnded) {
        failOnGoneShell();
        return;
    }
    QString watched;
    if (operation == kOperation1 && running) {
        watched = TempFilePath(model_);
    } else if (operation == kOperation2 && running) {
        watched = OutputFilePath(model_);
    } else if (operation == kOperation2) {
        if (const std::optional<JoinFailure> failure = postCheck()) {
            fail(*failure);
        } else {
            FinishWizard(model_, state_, JoinEnd::Finished);
        }
        return;
    } else if (operation == kOperation1) {
        if (const std::optional<JoinFailure> failure = CheckJoinedFile(model_, startSizes_)) {
            fail(*failure);
            return;
        }
        if (probeScan_ && !probeScan_->finished()) {
            return;  // the remake waits for the map of the streams
        }
        startOperation2();
        if (failed_) {
            return;
        }
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
        writeRemakeProbe();
        // The fix script's marker: the script removes it at its end.
        makeMarker();
        delete launcher_;
        launcher_ = launcherFactory() ? launcherFactory()(this) : new ProcessRunner(this);
        connect(launcher_, &ProcessRunner::dataReceived, this, &JoinRun::dataReceived);
        connect(launcher_, &ProcessRunner::processEnded, this,
                [this, shell = launcher_] { onShellEnded(shell); });
        launcher_->setBufferSize(8192);
        launcher_->setStopTimeout(1000);
        // A script that does not start is told by the next tick: its
        // marker stays while its shell is gone.
        launcher_->command(scriptShell(), {AppDataPath(script)});
        return;
    }
    // Nothing to fix: the raw join takes the final name, and with JoinTemp
    // gone the next tick finishes.
    QFile temp(TempFilePath(model_));
    if (!temp.rename(OutputFilePath(model_))) {
        if (const auto failure = CheckRenamedFile(model_, temp.errorString())) {
            fail(*failure);
        }
    }
}

ProcessRunner* JoinRun::currentShell() const {
    const QString operation = state_.operationTag();
    if (operation == kOperation1) {
        return firstScript_;
    }
    return operation == kOperation2 ? launcher_ : nullptr;
}

bool JoinRun::shellGone() const {
    const ProcessRunner* shell = currentShell();
    return shell != nullptr && shell->status() != ProcessRunner::Running;
}

void JoinRun::failOnGoneShell() {
    ProcessRunner* shell = currentShell();
    // A killed shell may leave its copy or its tool behind, still writing.
    shell->endLeftovers();
    const bool first = shell == firstScript_;
    const QString script = first ? JoinNames::kTempFileScript : FixScriptName(model_);
    fail(ScriptShellFailure(first ? JoiningStepName() : FixingStepName(), AppDataPath(script),
                            *shell));
}

// A remake reads the join only as far as its streams first appear: the
// parts are scanned for them while the first script copies them.
void JoinRun::startProbeScan() {
    probeScan_.reset();
    if (!IsRemakeScript(FixScriptName(model_))) {
        return;
    }
    probeScan_ = std::make_unique<RemakeProbeScan>(ItemPaths(model_));
}

// The map of the streams in the debug log, and the remake script written
// again with the probe that the map gives. A map that does not speak for the
// whole join leaves the script as the pre-flight wrote it, reading the whole
// join.
void JoinRun::writeRemakeProbe() {
    if (!probeScan_) {
        return;
    }
    const JoinStreamMap& map = probeScan_->map();
    for (const QString& record : JoinStreamRecords(map, probeScan_->parts())) {
        log(record);
    }
    if (map.whole) {
        WriteRemakeScript(model_, ProbeOfJoin(map));
    }
    probeScan_.reset();
}

std::optional<JoinFailure> JoinRun::postCheck() {
    if (FixScriptName(model_).isEmpty()) {
        // TempFile took the final name at the start of JoinOperation 2.
        return CheckRenamedFile(model_, QString());
    }
    if (ReadFailureRecord() && launcher_ != nullptr) {
        // The script has removed its marker and ends: its tool's last words
        // may still be on their way.
        launcher_->waitForEnd(kFailedScriptWaitMs);
    }
    if (std::optional<JoinFailure> failure = CheckFixedFile(model_, toolOutputTail_)) {
        return failure;
    }
    if (!LogPath().isEmpty()) {
        for (const QString& stream : LeftOutStreams(toolOutputHead_)) {
            LogEvent(QStringLiteral("Left out: ") + stream, 4);
        }
    }
    QFile::remove(TempFilePath(model_));
    return std::nullopt;
}

void JoinRun::fail(const JoinFailure& failure) {
    failed_ = true;
    probeScan_.reset();
    state_.setTimerEnabled(false);
    log(JoinFailedLogRecord(failure));
    const QList<LeftBehindFile> left = DeleteFailedJoinOutput(model_);
    FinishWizard(model_, state_, JoinEnd::Failed);
    model_.questions.msgBox(JoinFailedMessage(failure, left), Msg::OkOnly + Msg::Critical);
}

void JoinRun::clockTick() {
    if (elapsedSeconds_ < std::numeric_limits<std::int16_t>::max()) {
        ++elapsedSeconds_;
    }
    state_.setElapsedTimeText(ClockText(elapsedSeconds_));
    giveEventsATurn();
}

void JoinRun::dataReceived(const QString& text) {
    if (toolOutputHead_.size() < kToolOutputHead) {
        toolOutputHead_ += text;
    }
    toolOutputTail_ = (toolOutputTail_ + text).right(kToolOutputTail);
    HandleToolOutput(model_, state_, text);
}

void JoinRun::cancelClicked() {
    state_.setTimerEnabled(false);
    probeScan_.reset();
    RemoveMarkerAndScripts();
    // A shell goes on reading a script that was deleted under it, so the shell
    // of the first script is ended with it, and so is the fix script's
    // launcher with everything it started.
    if (firstScript_ != nullptr) {
        firstScript_->stop();
    }
    KillToolsInAppData();
    if (launcher_ != nullptr) {
        launcher_->stop();
        delete launcher_;
        launcher_ = nullptr;
    }
    DeleteToolsFromAppData();
    DeleteStepRecords();

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
    FinishWizard(model_, state_, JoinEnd::Cancelled);
    state_.requestFocusOnFord();
}

QStringList JoinRun::leftOutStreams() const {
    return LeftOutStreams(toolOutputHead_);
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
