#pragma once

#include <utility>

// Calls f with the arguments when it is set: a command or step left empty
// does nothing.
template <typename F, typename... Args>
void RunCommand(const F& f, Args&&... args) {
    if (f) {
        f(std::forward<Args>(args)...);
    }
}
