#include "app/theme/StudioStyle.h"
#include "app/theme/Theme.h"
#include "tests/Settle.h"

#include <QApplication>
#include <QTemporaryFile>

#include <gtest/gtest.h>

namespace {

constexpr const char* twoScreens = R"({"screens": [
    {"name": "one", "x": 0, "y": 0, "width": 800, "height": 800,
     "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1},
    {"name": "two", "x": 2000, "y": 0, "width": 800, "height": 800,
     "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 2}]})";

}    // namespace

int main(int argc, char** argv)
{
    // CTest lists the test cases without the environment in which it runs them.
    // The second screen has two device pixels per logical pixel.
    QTemporaryFile screens;
    if (!screens.open() || screens.write(twoScreens) < 0 || !screens.flush())
        return 1;
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + QFile::encodeName(screens.fileName()));
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
