#pragma once

#include <functional>

class AppLauncher;

// The whole run of the program: the application object, its look, the
// questions and the clipboard, the start-up and the event loop. beforeStart,
// when set, sees the launcher just before the start-up runs (the screenshot
// scenes set themselves up there). Returns the exit code of the event loop.
int RunProgram(int argc, char** argv,
               const std::function<void(AppLauncher&)>& beforeStart = nullptr);
