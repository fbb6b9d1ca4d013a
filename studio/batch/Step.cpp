#include "studio/batch/Step.h"

#include <atomic>

Step Step::run()
{
    static std::atomic<quint64> last = 0;
    return Step(Kind::run, ++last);
}
