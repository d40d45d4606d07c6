#include "platform/Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

bool StandardErrorIsTerminal() {
    return ::isatty(STDERR_FILENO) == 1;
}

int StandardErrorColumns() {
    struct winsize size = {};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0) {
        return 0;
    }
    return size.ws_col;
}
