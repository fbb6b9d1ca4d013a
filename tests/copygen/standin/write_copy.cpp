// write_copy OBJECTIVE PHOTO…: has the engine of this machine's configuration write the copy of
// each photo, and prints one line each: how long it took, the title, the notes. Ends with the
// number of missing answers.

#include "copygen/LocalAIService.h"

#include <QCoroTask>
#include <QGuiApplication>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

QCoro::Task<int> write(LocalAIService& service, QStringList arguments)
{
    int missing = 0;
    const QString objective = arguments.takeFirst();
    for (const QString& photo : arguments) {
        const QUrl url = QUrl::fromLocalFile(photo);
        const GeneratedCopy copy =
            co_await service.analyze(url, objective, SocialFormat::carouselPortrait);
        const bool isMissing = service.isMissingAnswer(copy);
        missing += isMissing ? 1 : 0;
        const qint64 duration = isMissing ? -1 : service.lastDuration().value().count();
        std::printf("%lld ms\t%s\t%s\n", (long long)duration, qPrintable(copy.title),
                    qPrintable(copy.imageNotes));
        std::fflush(stdout);
    }
    co_return missing;
}

}    // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    LocalAIService service(engineProfile());
    return QCoro::waitFor(write(service, application.arguments().mid(1)));
}
