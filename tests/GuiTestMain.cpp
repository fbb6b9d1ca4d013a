#include "tests/Settle.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

// Creates an application, which fonts and event loops need; the platform "offscreen" needs no
// display.
int main(int argc, char** argv)
{
    // CTest lists the test cases without the environment in which it runs them.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    int result = 0;
    {
        const QGuiApplication application(argc, argv);
        result = RUN_ALL_TESTS();
        settleWorkers();
    }
    letThreadsGo();
    return result;
}
