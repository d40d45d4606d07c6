#pragma once

#include <QFont>
#include <QIcon>

class QWidget;

// The look that every window of the program shares: one font at the size the
// windows are laid out for, and the program's icon in the title bar.
namespace ProgramLook {

// Verdana at 8 points, or the nearest sans family installed.
QFont font();

// The program's icon, drawn from its SVG so it is sharp at every scale.
QIcon icon();

// Gives a window the program's font and icon.
void apply(QWidget* window);

}  // namespace ProgramLook
