#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "join/JoinFailure.h"

struct MainModel;
class JoinWizardState;
class ProcessRunner;
class RemakeProbeScan;

// The run of a join, from the launch of the first script to the finished or
// cancelled wizard. A 10 ms timer carries it through tick(); a 1 s clock
// through clockTick(). The run never holds a path: every tick reads OutputFile
// from the shared dialog and works out TempFile and the JoinCase anew.
//
// A script tells the run that it has ended in one way only: it removes the
// empty folder JoinTemp in AppDataFolder, which the run created before it
// started the script. Each tick looks at the JoinOperation ("1" makes
// TempFile, "2" makes OutputFile) and at that folder:
//   "1" and JoinTemp there: the join runs, TempFile is watched;
//   "2" and JoinTemp there: the fix runs, OutputFile is watched;
//   "2" and JoinTemp gone:  post-check and finish;
//   "1" and JoinTemp gone:  check of TempFile, then JoinOperation 2 starts.
// The run also holds the shell of each script: a shell that could not be
// started, or that has ended while JoinTemp is still there, will never remove
// it, and the run fails at the next tick rather than wait for ever.
//
// The end of the running script's shell is told by shellEnded(): the run's
// next step is due then, so a tick runs as soon as the event loop is free
// rather than up to a timer interval later. That tick is the timer's own
// work, no second path: with its own timers the run ticks on shellEnded()
// itself; a face that drives the ticks connects it to tick() as well.
//
// A step that failed (told by the record an sh script leaves, or found by
// the checks of TempFile and OutputFile) ends the run in the failed state:
// both files are deleted, the wizard says "Failed!", and a message names the
// step, the file and the reason.
//
// The window owns one run and its state; it forwards the clicks of
// CancelButton and of the Options menu here and shows the state.
class JoinRun : public QObject {
    Q_OBJECT
public:
    JoinRun(MainModel& model, JoinWizardState& state, QObject* parent = nullptr);
    ~JoinRun() override;

    // The window's load: the bar's maximum from the list's size, "Operation 1
    // of 2", JoinTemp, the hidden launch of TempFile.bat, the records. With
    // ownTimers the run's own timers call tick() and clockTick() while the
    // state says they are enabled; without, the caller calls them.
    void load(bool ownTimers = true);

    // One tick of the 10 ms timer: the four cases above, then the progress.
    void tick();
    // One tick of the 1 s clock: ElapsedSeconds up (it stops at 32767), the
    // clock text, a turn for pending events.
    void clockTick();

    // CancelButton, both faces: the clean-up of AppDataFolder; on "&Cancel"
    // the wait until no output or temporary file is left, and the cancelled
    // state; on "&Close" the request to close the window.
    void cancelClicked();

    // The Options menu.
    void launchFile();
    void openFolder();
    void setID3Tag();

    // The DataReceived handler of the fix script's launcher.
    void dataReceived(const QString& text);

signals:
    // The shell of the script that the run waits for has ended (its end is
    // known to the run from now on). It comes from the event loop, never from
    // inside the shell's own end handler.
    void shellEnded();

public:
    std::int16_t elapsedSeconds() const { return elapsedSeconds_; }
    void setElapsedSeconds(std::int16_t seconds) { elapsedSeconds_ = seconds; }
    bool cancelled() const { return cancelled_; }
    bool failed() const { return failed_; }
    // The launcher of the fix script, while there is one.
    ProcessRunner* launcher() const { return launcher_; }
    // The process id of the shell that runs TempFile.bat (0 when none started).
    qint64 firstScriptProcessId() const { return firstScriptPid_; }
    // The streams of the sources that the MPEG remake left out, as its tool
    // described them; empty for a join that left none out.
    QStringList leftOutStreams() const;

    // Where the launchers of the fix scripts come from; the program makes
    // plain ProcessRunners. A test may hand out one that is busy already.
    using LauncherFactory = std::function<ProcessRunner*(QObject* parent)>;
    static LauncherFactory setLauncherFactory(LauncherFactory factory);
    // The shell that runs the scripts, "/bin/sh"; a test may name one that
    // cannot be started. Returns the previous one; empty restores the default.
    static QString setScriptShell(const QString& shell);

private:
    void startProbeScan();
    void writeRemakeProbe();
    void startOperation2();
    // The shell of the running JoinOperation's script: the first script's in
    // JoinOperation 1, the fix script's in JoinOperation 2 (none when nothing
    // is fixed).
    ProcessRunner* currentShell() const;
    // True when that shell could not be started or has ended.
    bool shellGone() const;
    // The failed state for a script whose shell is gone while its marker is
    // still there; what the shell left running is ended first.
    void failOnGoneShell();
    // The post-check of JoinOperation 2: what failed, or nothing when
    // OutputFile is whole (TempFile is then deleted).
    std::optional<JoinFailure> postCheck();
    // The failed state: nothing left under either file's name, "Failed!",
    // the record in the debug log and the message.
    void fail(const JoinFailure& failure);
    void syncTimers();
    // The end of a script's shell: shellEnded() when it is the running one.
    void onShellEnded(const ProcessRunner* shell);

    MainModel& model_;
    JoinWizardState& state_;
    QTimer tickTimer_;
    QTimer clockTimer_;
    bool ownTimers_ = false;
    std::int16_t elapsedSeconds_ = 0;
    bool cancelled_ = false;
    bool failed_ = false;
    // The sizes of the items' files when the join started.
    QList<qint64> startSizes_;
    // What the fix script printed: its start (where the remake lists the
    // streams) and its last lines (where a tool says why it failed).
    QString toolOutputHead_;
    QString toolOutputTail_;
    // The shell of TempFile.bat, whose output is discarded, and the launcher of
    // the fix script.
    ProcessRunner* firstScript_ = nullptr;
    ProcessRunner* launcher_ = nullptr;
    qint64 firstScriptPid_ = 0;
    // The scan of the parts for where their streams first appear, while the
    // first script of a remade MPEG join runs.
    std::unique_ptr<RemakeProbeScan> probeScan_;
};
