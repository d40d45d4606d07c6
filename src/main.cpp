// Velmora: keeps an ordered list of MP3 or MPEG files, grades how well they
// fit together, and joins them into one file with external tools.
#include "ui/ProgramMain.h"

int main(int argc, char** argv) {
    return RunProgram(argc, argv);
}
