#include "platform/EventTurn.h"

#include <QCoreApplication>
#include <utility>

namespace {
std::function<void()>& hook() {
    static std::function<void()> current;
    return current;
}

int turnDepth = 0;

struct InsideTurn {
    InsideTurn() { ++turnDepth; }
    ~InsideTurn() { --turnDepth; }
    InsideTurn(const InsideTurn&) = delete;
    InsideTurn& operator=(const InsideTurn&) = delete;
};
}  // namespace

bool insideEventTurn() {
    return turnDepth > 0;
}

void giveEventsATurn() {
    const InsideTurn inside;
    if (hook()) {
        hook()();
        return;
    }
    if (QCoreApplication::instance()) {
        QCoreApplication::processEvents();
    }
}

std::function<void()> setEventTurnHook(std::function<void()> next) {
    return std::exchange(hook(), std::move(next));
}
