// Test main of the core: a QCoreApplication, a pinned locale, no windows.
#include <gtest/gtest.h>

#include <QCoreApplication>

#include "support/TestEnvironment.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    PrepareTestEnvironment();
    QCoreApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
