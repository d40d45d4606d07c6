#pragma once

// Runs the code of a block as a user without special rights, so that folder
// and file modes decide what it may do. For root the real and effective ids
// become those of "nobody" for the life of the object (the saved ones stay,
// so they can be taken back); any other user already is one.
#include <unistd.h>

class PlainUser {
public:
    PlainUser() {
        if (::geteuid() == 0) {
            dropped_ = ::setresgid(65534, 65534, 0) == 0 && ::setresuid(65534, 65534, 0) == 0;
        }
    }
    ~PlainUser() {
        if (dropped_) {
            (void)::setresuid(0, 0, 0);
            (void)::setresgid(0, 0, 0);
        }
    }
    PlainUser(const PlainUser&) = delete;
    PlainUser& operator=(const PlainUser&) = delete;

private:
    bool dropped_ = false;
};
