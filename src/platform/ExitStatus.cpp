#include "platform/ExitStatus.h"

#include <cerrno>
#include <csignal>
#include <cstring>

namespace {
// The shell's status of a command that a signal ended.
constexpr int kSignalBase = 128;
constexpr int kNotFound = 127;
constexpr int kNotExecutable = 126;
}  // namespace

QString SignalReason(int signal) {
    return QString::fromLocal8Bit(::strsignal(signal));
}

QString ErrorNumberReason(int errorNumber) {
    return QString::fromLocal8Bit(std::strerror(errorNumber));
}

QString ExitStatusReason(int status) {
    if (status > kSignalBase && status < kSignalBase + NSIG) {
        return SignalReason(status - kSignalBase);
    }
    if (status == kNotFound) {
        return ErrorNumberReason(ENOENT);
    }
    if (status == kNotExecutable) {
        return ErrorNumberReason(EACCES);
    }
    return QStringLiteral("exit status ") + QString::number(status);
}
