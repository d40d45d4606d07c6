#include "platform/ProcessRunner.h"

#include <unistd.h>
#include <QFileInfo>
#include <cerrno>
#include <csignal>

ProcessRunner::ProcessRunner(QObject* parent) : QObject(parent) {}

ProcessRunner::~ProcessRunner() {
    if (isRunning()) {
        // Nothing may outlive its runner unseen: the command is ended, quietly.
        process_->disconnect(this);
        ::kill(-static_cast<pid_t>(process_->processId()), SIGKILL);
        process_->waitForFinished(stopTimeoutMs_);
    }
}

bool ProcessRunner::isRunning() const {
    return process_ != nullptr && process_->state() != QProcess::NotRunning;
}

qint64 ProcessRunner::processId() const {
    return process_ ? process_->processId() : 0;
}

void ProcessRunner::command(const QString& program, const QStringList& arguments) {
    if (isRunning()) {
        status_ = AlreadyRunning;
        return;
    }
    program_ = program;
    errorNumber_ = 0;
    crashed_ = false;
    exitCode_ = 0;
    endSignal_ = 0;
    group_ = 0;
    decoder_.resetState();

    // A missing or unrunnable program is told by its errno, as the shell would.
    const QFileInfo info(program);
    if (program.contains(QLatin1Char('/'))) {
        if (!info.exists()) {
            status_ = Failed;
            errorNumber_ = ENOENT;
            return;
        }
        if (!info.isFile() || !info.isExecutable()) {
            status_ = Failed;
            errorNumber_ = EACCES;
            return;
        }
    }

    delete process_;
    process_ = new QProcess(this);
    process_->setStandardInputFile(QProcess::nullDevice());
    if (outputDiscarded_) {
        process_->setStandardOutputFile(QProcess::nullDevice());
        process_->setStandardErrorFile(QProcess::nullDevice());
    } else {
        process_->setProcessChannelMode(QProcess::MergedChannels);
    }
    process_->setReadChannel(QProcess::StandardOutput);
    // A group of its own, so that stop() reaches the tools the command starts.
    process_->setChildProcessModifier([] { ::setpgid(0, 0); });
    connect(process_, &QProcess::readyReadStandardOutput, this, &ProcessRunner::readOutput);
    connect(process_, &QProcess::finished, this, &ProcessRunner::onFinished);

    process_->start(program, arguments, QIODevice::ReadOnly);
    if (!process_->waitForStarted()) {
        status_ = Failed;
        errorNumber_ = ENOEXEC;
        return;
    }
    group_ = process_->processId();
    status_ = Running;
}

void ProcessRunner::readOutput() {
    if (process_ == nullptr) {
        return;
    }
    const qint64 chunk = bufferSize_ > 0 ? bufferSize_ : 8192;
    while (process_->bytesAvailable() > 0) {
        const QByteArray bytes = process_->read(chunk);
        if (bytes.isEmpty()) {
            break;
        }
        // The decoder keeps a character split between two chunks for the next.
        const QString text = decoder_.decode(bytes);
        if (!text.isEmpty()) {
            emit dataReceived(text);
        }
    }
}

void ProcessRunner::onFinished(int exitCode, QProcess::ExitStatus exitStatus) {
    readOutput();
    // A crash says nothing through the exit code: look at the status first.
    crashed_ = exitStatus == QProcess::CrashExit;
    exitCode_ = crashed_ ? -1 : exitCode;
    // On a crash the system's wait status holds the signal where the exit
    // code would stand.
    endSignal_ = crashed_ && exitCode > 0 && exitCode < NSIG ? exitCode : 0;
    status_ = Ended;
    emit processEnded();
}

bool ProcessRunner::waitForEnd(int ms) {
    if (!isRunning()) {
        return true;
    }
    return process_->waitForFinished(ms);
}

void ProcessRunner::stop() {
    if (!isRunning()) {
        return;
    }
    const qint64 pid = process_->processId();
    if (pid > 0) {
        ::kill(-static_cast<pid_t>(pid), SIGKILL);
    }
    group_ = 0;
    process_->waitForFinished(stopTimeoutMs_);
}

void ProcessRunner::endLeftovers() {
    if (group_ > 0 && !isRunning()) {
        ::kill(-static_cast<pid_t>(group_), SIGKILL);
    }
    group_ = 0;
}
