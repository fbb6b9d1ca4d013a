#include "tests/Settle.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    // The list of the cases is asked for without the environment of the tests.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    settleWorkers();
    return result;
}
