#pragma once

// Lowers the file size limit of the test process for the life of the object,
// so that a write past the limit fails half way as on a full disk (the signal
// that would end the process is ignored meanwhile).
#include <sys/resource.h>

#include <csignal>

class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        rlimit lowered = before_;
        lowered.rlim_cur = bytes;
        oldHandler_ = std::signal(SIGXFSZ, SIG_IGN);
        active_ = setrlimit(RLIMIT_FSIZE, &lowered) == 0;
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, oldHandler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

    bool active() const { return active_; }

private:
    rlimit before_{};
    sighandler_t oldHandler_ = SIG_DFL;
    bool active_ = false;
};
