#pragma once

#include <functional>

// Long loops (adding files, the removal run, the cancel wait) give pending
// events a turn after each round, so the window stays alive and a cancel click
// is served. In the program this runs the Qt event loop once; tests can put a
// scripted action in its place (a cancel click between two rows, say).
void giveEventsATurn();

// True while giveEventsATurn() runs: what happens now happens in the turn a
// long loop gives, not in the program's own event loop.
bool insideEventTurn();

// Replaces what giveEventsATurn() does; an empty function restores the default.
// Returns the previous hook so a test can put it back.
std::function<void()> setEventTurnHook(std::function<void()> hook);
