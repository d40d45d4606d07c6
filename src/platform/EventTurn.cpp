#include "platform/EventTurn.h"

#include <QCoreApplication>
#include <utility>

namespace {
std::function<void()>& hook() {
    static std::function<void()> current;
    return current;
}
}  // namespace

void giveEventsATurn() {
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
