#pragma once

// velmora-cli: the second face of Velmora over the same core as the window.
// Reads the command line, prepares the per-user folder (whose Settings.ini it
// reads and never writes), and runs the command. Returns the exit status.
int RunCommandLine(int argc, char** argv);
