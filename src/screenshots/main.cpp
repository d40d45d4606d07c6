// The program with its screenshot scenes: scripts/screenshots.sh and the
// desktop placement test run this in place of velmora, which carries none of
// the scenes.
#include "screenshots/ScreenshotScenes.h"
#include "ui/ProgramMain.h"

int main(int argc, char** argv) {
    return RunProgram(argc, argv, PrepareScreenshotScene);
}
