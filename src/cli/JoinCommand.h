#pragma once

struct CliContext;

// velmora-cli join: one join of the list the sources make into the output;
// with --each, one join per folder into the output folder, each named after
// its folder, a failure in one folder reported and the next one joined, and a
// summary line at the end. Returns the exit status: 0 joined, 1 failed or
// refused (the worst of the folders), 2 a bad command line, 130 interrupted.
int RunJoinCommand(CliContext& cli);
