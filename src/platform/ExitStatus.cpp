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

QString ExitStatusReason(int status) {
    if (status > kSignalBase && status < kSignalBase + NSIG) {
        return QString::fromLocal8Bit(::strsignal(status - kSignalBase));
    }
    if (status == kNotFound) {
        return QString::fromLocal8Bit(std::strerror(ENOENT));
    }
    if (status == kNotExecutable) {
        return QString::fromLocal8Bit(std::strerror(EACCES));
    }
    return QStringLiteral("exit status ") + QString::number(status);
}
