#include "account/ServiceRendezvous.h"
#include "platform/Memory.h"
#include "service/Rendezvous.h"
#include "service/Server.h"
#include "service/Service.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalSocket>
#include <QLockFile>
#include <QSocketNotifier>
#include <QStandardPaths>
#include <QThread>

#include <csignal>
#include <cstdio>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

enum ExitCode { exitDone, exitFailed, exitWrongUse, exitRunning };

constexpr int endingWait = 6000, startRetryPause = 40;    // ms

void tell(const QString& sentence)
{
    std::fprintf(stderr, "moltiva-service: %s\n", qPrintable(sentence));
}

// The toolkit's remarks on broken pictures are nobody's business here.
void quietMessages(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qPrintable(text));
}

struct Options {
    QString data, host, administrator;
    int port = 0;
    bool untilUnused = false;
};

enum class Wish { run, help, version, wrong };

QString usage()
{
    return uR"(Uso: moltiva-service [opciones]

Servicio de cuentas y sitio web de Moltiva en este equipo.

  --data DIR             carpeta de los datos; sin ella, la de Moltiva
  --port N               puerto; 0 o nada: el de la última vez o uno libre
  --host DIRECCIÓN       dónde escucha; sin ella, 127.0.0.1
  --until-unused         termina cuando ninguna ventana lo usa
  --administrator EMAIL  la cuenta que puede subir plantillas
  --help, --version
)"_s;
}

Wish readOptions(const QStringList& arguments, Options& options)
{
    QCommandLineParser parser;
    const QString port = u"port"_s, data = u"data"_s, host = u"host"_s;
    const QString administrator = u"administrator"_s, untilUnused = u"until-unused"_s;
    const QString help = u"help"_s, version = u"version"_s;
    parser.addOptions({{data, {}, u"DIR"_s},
                       {port, {}, u"N"_s, u"0"_s},
                       {host, {}, u"ADDR"_s, u"127.0.0.1"_s},
                       {administrator, {}, u"EMAIL"_s},
                       {untilUnused, {}},
                       {{u"h"_s, help}, {}},
                       {version, {}}});
    if (!parser.parse(arguments) || !parser.positionalArguments().isEmpty())
        return Wish::wrong;
    if (parser.isSet(help))
        return Wish::help;
    if (parser.isSet(version))
        return Wish::version;
    bool isNumber = false;
    options.port = parser.value(port).toInt(&isNumber);
    options.data = parser.value(data);
    options.host = parser.value(host);
    options.administrator = parser.value(administrator);
    options.untilUnused = parser.isSet(untilUnused);
    if (options.data.isEmpty() && !parser.isSet(data))
        options.data =
            QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + u"/service"_s;
    const bool isRight = isNumber && options.port >= 0 && options.port <= 65535 &&
                         !options.data.isEmpty() && !options.host.isEmpty();
    return isRight ? Wish::run : Wish::wrong;
}

bool preparePrivately(const QString& folder)
{
    // What there is already stays as its owner wanted it.
    ::umask(077);
    return QDir().mkpath(folder);
}

bool somebodyAnswers(const QString& folder)
{
    QLocalSocket socket;
    socket.connectToServer(serviceSocketPath(folder));
    return socket.waitForConnected(startRetryPause) && socket.waitForReadyRead(1000);
}

// One that is just ending lets go soon; one that answers will not.
enum class Claim { ours, running, impossible };
Claim claim(QLockFile& lock, const QString& folder)
{
    lock.setStaleLockTime(0);    // held as long as its process lives
    QElapsedTimer watch;
    for (watch.start(); watch.elapsed() < endingWait; QThread::msleep(startRetryPause)) {
        if (lock.tryLock(0))
            return Claim::ours;
        if (lock.error() != QLockFile::LockFailedError)
            return Claim::impossible;
        if (somebodyAnswers(folder))
            return Claim::running;
    }
    return Claim::running;
}

std::array<int, 2> signalPipe{-1, -1};

extern "C" void onSignal(int)
{
    const char byte = 0;
    [[maybe_unused]] const auto written = ::write(signalPipe[1], &byte, 1);
}

void quitOnSignals(QCoreApplication& application)
{
    if (::pipe(signalPipe.data()) != 0)
        return;
    auto* notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, &application);
    QObject::connect(notifier, &QSocketNotifier::activated, &application, &QCoreApplication::quit);
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
}

void allowManyConnections()
{
    rlimit files{};
    if (::getrlimit(RLIMIT_NOFILE, &files) == 0) {
        files.rlim_cur = std::min<rlim_t>(files.rlim_max, 4096);
        ::setrlimit(RLIMIT_NOFILE, &files);
    }
}

// Pages that are open in a browser stay of use when the next service listens at the same port.
int lastPort(const QString& file)
{
    QFile kept(file);
    return kept.open(QIODevice::ReadOnly) ? std::clamp(kept.read(16).trimmed().toInt(), 0, 65535)
                                          : 0;
}

void keepPort(const QString& file, int port)
{
    QFile kept(file);
    if (kept.open(QIODevice::WriteOnly))
        kept.write(QByteArray::number(port) + '\n');
}

QString sentence(const DatabaseError& error, const QString& folder)
{
    switch (error.kind()) {
    case DatabaseError::Kind::tooNew:
        return u"los datos de %1 son de una versión más nueva."_s.arg(folder);
    case DatabaseError::Kind::wrongSums:
        return u"los créditos de la base de datos de %1 no cuadran: alguien la ha cambiado."_s.arg(
            folder);
    case DatabaseError::Kind::failed:
        break;
    }
    return u"no se puede abrir la base de datos de %1: está dañada, en uso o sin permiso."_s.arg(
        folder);
}

int serve(QCoreApplication& application, const Options& options)
{
    const QString folder = QDir(options.data).canonicalPath();
    Service service({.dataFolder = folder, .administrator = options.administrator, .now = {}});
    Server server(service, options.host);
    const QString portFile = QDir(folder).filePath(u"puerto"_s);
    if (!server.start(options.port, lastPort(portFile))) {
        tell(u"no se puede escuchar en %1, puerto %2."_s.arg(options.host).arg(options.port));
        return exitFailed;
    }
    keepPort(portFile, server.port());

    const QByteArray line = server.address().toUtf8() + '\n';
    Rendezvous rendezvous(serviceSocketPath(folder), line, {});
    if (!rendezvous.isListening() && options.untilUnused) {
        tell(u"no se puede crear el punto de encuentro con las ventanas."_s);
        return exitFailed;
    }
    if (options.untilUnused)
        QObject::connect(&rendezvous, &Rendezvous::unused, &application, &QCoreApplication::quit);
    quitOnSignals(application);
    std::fputs(line.constData(), stdout);
    std::fflush(stdout);

    const int result = QCoreApplication::exec();
    rendezvous.close();    // who comes now must find nobody and start another
    const bool hasEnded = server.stop();
    service.database().checkpoint();
    // Who waits for the next start has not all day, and what was acknowledged is on the disk.
    if (!hasEnded)
        ::_exit(result);    // the next one takes over the lock
    return result;
}

}    // namespace

int main(int argc, char** argv)
{
    settleAllocator();    // posts of hundreds of megabytes would stay
    qInstallMessageHandler(quietMessages);
    std::signal(SIGPIPE, SIG_IGN);
    QCoreApplication application(argc, argv);
    // That of the program whose data and configuration it shares.
    QCoreApplication::setApplicationName(u"moltiva"_s);
    Options options;
    switch (readOptions(QCoreApplication::arguments(), options)) {
    case Wish::run:
        break;
    case Wish::help:
        std::fputs(qPrintable(usage()), stdout);
        return exitDone;
    case Wish::version:
        std::puts("moltiva-service " MOLTIVA_VERSION);
        return exitDone;
    case Wish::wrong:
        std::fputs(qPrintable(usage()), stderr);
        return exitWrongUse;
    }
    if (!preparePrivately(options.data)) {
        tell(u"no se puede crear la carpeta %1."_s.arg(options.data));
        return exitFailed;
    }
    allowManyConnections();
    QLockFile lock(QDir(options.data).filePath(u"servicio.lock"_s));
    switch (claim(lock, options.data)) {
    case Claim::ours:
        break;
    case Claim::running:
        tell(u"ya hay un servicio en marcha con los datos de %1."_s.arg(options.data));
        return exitRunning;
    case Claim::impossible:
        tell(u"no se puede escribir en %1."_s.arg(options.data));
        return exitFailed;
    }
    try {
        return serve(application, options);
    } catch (const DatabaseError& error) {
        tell(sentence(error, options.data));
        return exitFailed;
    }
}
