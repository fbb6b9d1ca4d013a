// Stands in for the program's own command that downloads a pinned file: URL BYTES SHA256 PATH.

#include "copygen/PinnedDownload.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const PinnedFile pin{arguments[1], arguments[2].toLongLong(), arguments[3]};
    const FetchOutcome outcome = QCoro::waitFor(fetchPinned(pin, arguments[4]));
    std::fputs(outcome.reason.toUtf8().constData(), stderr);
    return outcome.status;
}
