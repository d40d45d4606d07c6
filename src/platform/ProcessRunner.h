#pragma once

#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringDecoder>
#include <QStringList>

// Runs one command hidden and hands on what it prints. Standard output and
// standard error are merged, and each chunk that arrives is one
// dataReceived(text); when the command has ended, processEnded() follows.
// Standard input is /dev/null, so nothing can ever wait for an answer. The
// command runs in a process group of its own, so that stop() ends it with
// every process it started. A runner whose output is discarded sends both
// channels to /dev/null and hands on nothing but the end.
class ProcessRunner : public QObject {
    Q_OBJECT
public:
    // What status() tells right after a command was given.
    enum Status : int {
        Idle = 0,            // nothing given yet
        Running = 3,         // the command has started
        AlreadyRunning = 1,  // a command of this runner still runs; the new one was not started
        Failed = 2,          // the command could not be started; see errorNumber()
        Ended = 4,           // the command has ended
    };

    explicit ProcessRunner(QObject* parent = nullptr);
    ~ProcessRunner() override;

    // The size of the read buffer in bytes and the time in milliseconds that
    // stop() waits for the command to end. Set before the command.
    void setBufferSize(int bytes) { bufferSize_ = bytes; }
    int bufferSize() const { return bufferSize_; }
    void setStopTimeout(int ms) { stopTimeoutMs_ = ms; }
    int stopTimeout() const { return stopTimeoutMs_; }
    // Standard output and error to /dev/null instead of dataReceived(). Set
    // before the command.
    void setOutputDiscarded(bool discarded) { outputDiscarded_ = discarded; }

    // Starts program with its arguments (no shell in between) and waits until
    // it has started or failed to.
    void command(const QString& program, const QStringList& arguments);

    int status() const { return status_; }
    // The reason of the last failure to start: an errno value (2 for a
    // missing program, 13 for one that may not be run), 0 when none.
    int errorNumber() const { return errorNumber_; }

    // Ends the running command and every process of its group; nothing when
    // none runs. Returns when the command has ended or the stop timeout passed.
    void stop();

    // Ends by SIGKILL what the command left running in its process group when
    // it ended itself (the tool of a shell that was killed). Call it as soon
    // as the end has been seen: once the group is empty, its number may be
    // given to another.
    void endLeftovers();

    // Waits until the command has ended, handing on what it still prints and
    // then processEnded(), or until ms have passed. True when it has ended.
    bool waitForEnd(int ms);

    bool isRunning() const;
    qint64 processId() const;
    // The program of the last command given.
    QString program() const { return program_; }

    // After the end: whether the command crashed (killed by a signal) and,
    // when it did not, its exit code; when it did, the signal's number (0
    // where the system did not tell it).
    bool crashed() const { return crashed_; }
    int exitCode() const { return exitCode_; }
    int endSignal() const { return endSignal_; }

signals:
    void dataReceived(const QString& text);
    void processEnded();

private:
    void readOutput();
    void onFinished(int exitCode, QProcess::ExitStatus exitStatus);

    QProcess* process_ = nullptr;
    QString program_;
    QStringDecoder decoder_{QStringDecoder::Utf8};
    int bufferSize_ = 8192;
    int stopTimeoutMs_ = 1000;
    bool outputDiscarded_ = false;
    int status_ = Idle;
    int errorNumber_ = 0;
    bool crashed_ = false;
    int exitCode_ = 0;
    int endSignal_ = 0;
    // The process group of the last command that started: its process id.
    qint64 group_ = 0;
};
