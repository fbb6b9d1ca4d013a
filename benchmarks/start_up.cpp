// Starts the program and measures the time from then until its window is painted, until the studio
// is painted in it, and until it rests; signed in, with the account service running, first with an
// empty workspace and then with 500 photos.
//
//     start_up PROGRAM SERVICE PHOTOS     the programs moltiva and moltiva-service, a folder of
//     photos
//
// The program runs as users run it, on the display of this process, with folders of its own. It
// tells the three moments on standard error because it is started with --verbose.

#include "benchmarks/Measuring.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QProcess>
#include <QTemporaryDir>

#include <array>
#include <csignal>

using namespace Qt::StringLiterals;

namespace {

constexpr int starts = 10, photoCount = 500;
constexpr int longestStart = 120'000;    // milliseconds
constexpr std::array moments{"window painted", "studio painted", "at rest"};

struct StartTimes {
    std::array<std::vector<double>, moments.size()> milliseconds;
};

QProcessEnvironment privateFolders(const QTemporaryDir& folder)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString& name :
         {u"DATA_HOME"_s, u"CACHE_HOME"_s, u"CONFIG_HOME"_s, u"STATE_HOME"_s, u"RUNTIME_DIR"_s}) {
        const QString path = folder.filePath(name);
        QDir().mkdir(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        environment.insert(u"XDG_"_s + name, path);
    }
    environment.insert(u"HOME"_s, folder.path());
    return environment;
}

bool isRegistered(const QString& program, const QProcessEnvironment& environment)
{
    QProcess command;
    command.setProcessEnvironment(environment);
    command.start(program, {u"register"_s, u"--email"_s, u"banco@moltiva.local"_s});
    command.write("una contraseña de prueba");
    command.closeWriteChannel();
    return command.waitForFinished(longestStart) && command.exitCode() == 0;
}

// Starts the window with `photos`, waits until it rests, and ends it. Returns the time of each
// moment in milliseconds; empty if one of them did not come.
std::optional<std::array<double, moments.size()>> start(const QString& program,
                                                        const QProcessEnvironment& environment,
                                                        const QStringList& photos = {})
{
    QProcess window;
    window.setProcessEnvironment(environment);
    window.setReadChannel(QProcess::StandardError);
    QElapsedTimer watch;
    watch.start();
    window.start(program, QStringList{u"--verbose"_s} + photos);
    std::array<double, moments.size()> times{};
    std::size_t next = 0;
    while (next < moments.size() && watch.elapsed() < longestStart &&
           (window.canReadLine() || window.waitForReadyRead(1000) ||
            window.state() == QProcess::Running)) {
        while (window.canReadLine()) {
            const QByteArray line = window.readLine();
            if (next < moments.size() && line.contains(moments[next]))
                times[next++] = double(watch.nsecsElapsed()) / 1e6;
        }
    }
    ::kill(pid_t(window.processId()), SIGTERM);
    window.waitForFinished(longestStart);
    return next == moments.size() ? std::optional(times) : std::nullopt;
}

bool isMeasured(const char* what, const QString& program, const QProcessEnvironment& environment)
{
    StartTimes all;
    for (int i = 0; i < starts; ++i) {
        const auto times = start(program, environment);
        if (!times)
            return false;
        for (std::size_t moment = 0; moment < moments.size(); ++moment)
            all.milliseconds[moment].push_back((*times)[moment]);
    }
    for (std::size_t moment = 0; moment < moments.size(); ++moment)
        report(qPrintable(
                   u"%1, %2"_s.arg(QLatin1StringView(what), QLatin1StringView(moments[moment]))),
               all.milliseconds[moment]);
    return true;
}

// Makes `photoCount` files of the photos in `source`, which differ in their names only.
QStringList manyPhotos(const QString& source, const QString& target)
{
    QStringList photos, many;
    for (QDirIterator it(source, {u"*.jpg"_s}, QDir::Files); it.hasNext();)
        photos.append(it.next());
    for (int i = 0; !photos.isEmpty() && i < photoCount; ++i) {
        const QString name = QDir(target).filePath(u"%1.jpg"_s.arg(i));
        if (QFile::copy(photos[i % photos.size()], name))
            many.append(name);
    }
    return many;
}

}    // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4) {
        std::fprintf(stderr, "start_up PROGRAM SERVICE PHOTOS\n");
        return 2;
    }
    const QTemporaryDir folder;
    const QString program = arguments[1];
    const QProcessEnvironment environment = privateFolders(folder);
    QProcess service;
    service.setProcessEnvironment(environment);
    service.start(arguments[2], {u"--data"_s, folder.filePath(u"DATA_HOME/moltiva"_s)});
    const QStringList photos = manyPhotos(arguments[3], folder.path());
    const bool isDone = isRegistered(program, environment) &&
                        isMeasured("empty", program, environment) && !photos.isEmpty() &&
                        start(program, environment, photos) &&
                        isMeasured("500 photos", program, environment);
    service.terminate();
    service.waitForFinished();
    if (!isDone)
        std::fprintf(stderr, "start_up: the program or its service did not start\n");
    return isDone ? 0 : 1;
}
