// velmora-cli: describes, checks and joins MP3 and MPEG files from the
// command line, through the same routines as the Velmora window.
#include "cli/CliMain.h"

int main(int argc, char** argv) {
    return RunCommandLine(argc, argv);
}
