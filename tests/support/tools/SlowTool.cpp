// A stand-in for a tool that takes its time whatever its arguments: the
// join's fault tests put it in place of a tool copy and end it from outside.
// It ends by itself after two minutes, so a test that fails leaves nothing
// running for long.
#include <unistd.h>

int main() {
    for (int second = 0; second < 120; ++second) {
        ::sleep(1);
    }
    return 0;
}
