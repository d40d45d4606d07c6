#pragma once

class CliOutput;
class CliQuestions;
class Clipboard;
class InterruptWatcher;
struct CliOptions;

// What every command of the command line works with.
struct CliContext {
    const CliOptions& options;
    CliOutput& output;
    CliQuestions& questions;
    Clipboard& clipboard;
    InterruptWatcher& interrupts;
};
