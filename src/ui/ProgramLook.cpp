#include "ui/ProgramLook.h"

#include <QWidget>

#include "ui/Pictures.h"

namespace ProgramLook {

QFont font() {
    // Verdana where it is installed; else the nearest sans family, in order.
    QFont result(QStringLiteral("Verdana"));
    result.setFamilies({QStringLiteral("Verdana"), QStringLiteral("DejaVu Sans"),
                        QStringLiteral("Bitstream Vera Sans")});
    result.setPointSize(8);
    return result;
}

QIcon icon() {
    return QIcon(Pictures::programIconPath());
}

void apply(QWidget* window) {
    window->setFont(font());
    window->setWindowIcon(icon());
}

}  // namespace ProgramLook
