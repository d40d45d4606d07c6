#pragma once

// What a command-line program needs to know of the terminal it writes to.

// True when standard error is a terminal (and not a file or a pipe).
bool StandardErrorIsTerminal();

// The width of the terminal of standard error in characters; 0 when it is no
// terminal or does not say.
int StandardErrorColumns();
