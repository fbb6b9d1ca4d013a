#include "app/theme/StudioStyle.h"
#include "app/theme/Theme.h"
#include "tests/Settle.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    // The build runs this program to list its cases, without the tests' environment.
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
