#include "support/TestEnvironment.h"

#include <QLocale>
#include <clocale>
#include <cstdlib>

void PrepareTestEnvironment() {
    setenv("LC_ALL", "C.UTF-8", 1);
    std::setlocale(LC_ALL, "C.UTF-8");
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

QString SampleMediaFolder() {
    return QStringLiteral(VELMORA_SAMPLE_MEDIA);
}
