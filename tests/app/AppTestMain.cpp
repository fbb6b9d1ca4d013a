#include "app/theme/StudioStyle.h"
#include "app/theme/Theme.h"
#include "tests/Settle.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    // CTest lists the test cases without the environment in which it runs them.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    int result = 0;
    {
        QApplication application(argc, argv);
        dress(application, darkTheme(), Motion::reduced);
        result = RUN_ALL_TESTS();
        settleWorkers();
    }
    letThreadsGo();
    return result;
}
