// Test main of the windows: a QApplication on the offscreen platform unless
// another is asked for, and a pinned locale.
#include <gtest/gtest.h>

#include <QApplication>

#include "support/TestEnvironment.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    PrepareTestEnvironment();
    QApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
