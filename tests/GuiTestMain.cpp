#include "tests/Settle.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

// Fonts and event loops need an application; no display is needed.
int main(int argc, char** argv)
{
    // The list of the cases is asked for without the environment of the tests.
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
