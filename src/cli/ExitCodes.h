#pragma once

// The exit statuses of velmora-cli, the same in every command.
namespace ExitCode {
inline constexpr int kOk = 0;             // done; check: the list is Green
inline constexpr int kOrange = 1;         // check: the list is Orange
inline constexpr int kJoinNot = 1;        // join: failed or refused; nothing is left
inline constexpr int kUsage = 2;          // a bad command line, or a source that cannot be read
inline constexpr int kRed = 3;            // check: the list is Red (a join would refuse it)
inline constexpr int kInterrupted = 130;  // Ctrl-C (128 + the signal's number)
}  // namespace ExitCode
