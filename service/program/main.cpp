#include "account/ServiceRendezvous.h"
#include "platform/EndingSignals.h"
#include "platform/Memory.h"
#include "platform/SystemLock.h"
#include "platform/UserFolders.h"
#include "service/Rendezvous.h"
#include "service/Service.h"
#include "service/http/Server.h"
#include "service/store/Accounts.h"
#include "service/store/Schema.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QThread>

#include <array>
#include <csignal>
#include <cstdio>
#include <memory>

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

// Drops Qt's warnings, which are about broken pictures, and writes fatal messages only.
void quietMessages(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qPrintable(text));
}

struct Options {
    QString data, host;
    QString administrator;         // only with `untilUnused`
    QString namedAdministrator;    // if not empty: make that account administrator and exit
    int port = 0;
    bool untilUnused = false;
};

enum class Wish { run, help, version, wrong };

struct OptionRow {
    QStringView name, value, standard;    // `standard`: the value without the option
    QStringView help;
    QStringView letter = {};    // its short form
};
constexpr OptionRow dataOption{
    u"data", u"DIR", {}, u"carpeta de los datos; sin ella, la de Moltiva"};
constexpr OptionRow portOption{u"port", u"N", u"0",
                               u"puerto; 0 o nada: el de la última vez o uno libre"};
constexpr OptionRow hostOption{u"host", u"DIRECCIÓN", u"127.0.0.1",
                               u"dónde escucha; sin ella, 127.0.0.1"};
constexpr OptionRow untilUnusedOption{
    u"until-unused", {}, {}, u"solo para programas de este usuario; termina cuando ninguno lo usa"};
constexpr OptionRow administratorOption{
    u"administrator", u"EMAIL", {}, u"con --until-unused: la cuenta que puede subir plantillas"};
constexpr OptionRow nameAdministratorOption{
    u"name-administrator",
    u"EMAIL",
    {},
    u"da ese permiso, en vez de a la de antes, a una cuenta que ya existe, y termina; el servicio "
    "puede estar en marcha"};
constexpr OptionRow helpOption{u"help", {}, {}, u"muestra esta ayuda", u"h"};
constexpr OptionRow versionOption{u"version", {}, {}, u"muestra la versión"};
constexpr std::array optionRows{dataOption,        portOption,          hostOption,
                                untilUnusedOption, administratorOption, nameAdministratorOption,
                                helpOption,        versionOption};

struct ExitRow {
    ExitCode code;
    QStringView meaning;
};
constexpr std::array exitRows{
    ExitRow{exitDone, u"ha terminado porque se lo han pedido o nadie lo usa"},
    ExitRow{exitFailed, u"no puede arrancar"},
    ExitRow{exitWrongUse, u"mal uso"},
    ExitRow{exitRunning, u"ya hay un servicio en marcha con esos datos"},
};

QString usage()
{
    QString text = u"Uso: moltiva-service [opciones]\n\n"
                   "Servicio de cuentas y sitio web de Moltiva en este equipo.\n\n"_s;
    for (const OptionRow& row : optionRows) {
        const QString letter = row.letter.isEmpty() ? QString() : u"-%1, "_s.arg(row.letter);
        const QString call = u"--%1 %2"_s.arg(row.name, row.value).trimmed();
        text += u"  %1%2\n      %3\n"_s.arg(letter, call, row.help);
    }
    text += u"\nEstado de salida:\n"_s;
    for (const auto& [code, meaning] : exitRows)
        text += u"  %1  %2\n"_s.arg(QString::number(code), meaning);
    return text;
}

Wish readOptions(const QStringList& arguments, Options& options)
{
    QCommandLineParser parser;
    for (const OptionRow& row : optionRows) {
        QStringList names{row.name.toString()};
        if (!row.letter.isEmpty())
            names.append(row.letter.toString());
        parser.addOption({names, {}, row.value.toString(), row.standard.toString()});
    }
    if (!parser.parse(arguments) || !parser.positionalArguments().isEmpty())
        return Wish::wrong;
    const auto isSet = [&parser](const OptionRow& row) {
        return parser.isSet(row.name.toString());
    };
    const auto value = [&parser](const OptionRow& row) {
        return parser.value(row.name.toString());
    };
    if (isSet(helpOption))
        return Wish::help;
    if (isSet(versionOption))
        return Wish::version;
    bool isNumber = false;
    options.port = value(portOption).toInt(&isNumber);
    options.data = value(dataOption);
    options.host = value(hostOption);
    options.administrator = value(administratorOption);
    options.namedAdministrator = value(nameAdministratorOption);
    options.untilUnused = isSet(untilUnusedOption);
    if (options.data.isEmpty() && !isSet(dataOption))
        options.data =
            QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + u"/service"_s;
    const bool isRight = isNumber && options.port >= 0 && options.port <= 65535 &&
                         !options.data.isEmpty() && !options.host.isEmpty() &&
                         (options.administrator.isEmpty() || options.untilUnused) &&
                         isSet(nameAdministratorOption) != options.namedAdministrator.isEmpty();
    return isRight ? Wish::run : Wish::wrong;
}

bool preparePrivately(const QString& folder)
{
    // Folders that exist keep their permissions; new ones are for this user only.
    ::umask(077);
    return QDir().mkpath(folder);
}

bool somebodyAnswers(const QString& folder)
{
    const QString path = serviceSocketPath(folder);
    QLocalSocket socket;
    socket.connectToServer(path);
    return !path.isEmpty() && socket.waitForConnected(startRetryPause) && leadsToOwnUser(socket) &&
           socket.waitForReadyRead(1000);
}

// Takes the lock of the data folder. Waits for a service that is ending and will free the lock, but
// not for a service that still answers.
std::unique_ptr<SystemLock> claimed(const QString& folder)
{
    const QString file = QDir(folder).filePath(u"servicio.lock"_s);
    auto lock = std::make_unique<SystemLock>(file);
    QElapsedTimer watch;
    watch.start();
    while (lock->state() == SystemLock::State::others && watch.elapsed() < endingWait &&
           !somebodyAnswers(folder)) {
        QThread::msleep(startRetryPause);
        lock = std::make_unique<SystemLock>(file);
    }
    return lock;
}

void allowManyConnections()
{
    rlimit files{};
    if (::getrlimit(RLIMIT_NOFILE, &files) == 0) {
        files.rlim_cur = std::min<rlim_t>(files.rlim_max, 4096);
        ::setrlimit(RLIMIT_NOFILE, &files);
    }
}

QString portFile(const QString& folder)
{
    return QDir(folder).filePath(u"puerto"_s);
}

// The port of the last run; 0 if unknown. Listening on it again keeps pages usable that are open in
// a browser.
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
    const QString place = u"la base de datos de cuentas y créditos de %1"_s.arg(folder);
    switch (error.kind()) {
    case DatabaseError::Kind::tooNew:
        return place + u" es de una versión más nueva."_s;
    case DatabaseError::Kind::wrongSums:
        return u"los créditos de la base de datos de %1 no cuadran: alguien la ha cambiado."_s.arg(
            folder);
    case DatabaseError::Kind::inUse:
        return place + u" está en uso por otro programa."_s;
    case DatabaseError::Kind::damaged:
        return place + u" está dañada."_s;
    case DatabaseError::Kind::vanished:
        return place + u" ha desaparecido."_s;
    case DatabaseError::Kind::forbidden:
        return u"no se puede abrir %1: %2."_s.arg(place, whyNotWritable(folder));
    case DatabaseError::Kind::failed:
        break;
    }
    return u"no se puede abrir %1: %2."_s.arg(
        place, whyNotWritable(folder, QString::fromUtf8(error.what())));
}

// Sets aside what is left of a damaged or missing database, and returns the sentence that tells the
// user. The user must learn of it before the next start creates an empty database, because the lost
// one recorded paid credits.
QString sentenceOfLoss(const DatabaseError& error, const QString& folder)
{
    const bool wasDamaged = error.kind() == DatabaseError::Kind::damaged;
    const QString aside = setDatabaseAside(Service::databaseFile(folder));
    const QString told = sentence(error, folder);
    if (wasDamaged && aside.isEmpty())
        return told + u" Tampoco se ha podido apartar."_s;
    QFile::remove(portFile(folder));
    return told +
           (aside.isEmpty() ? QString()
                            : u" Se ha apartado como «%1»."_s.arg(QFileInfo(aside).fileName())) +
           u" La próxima vez se empezará una vacía."_s;
}

int appointAdministrator(const Options& options)
{
    const QString file = Service::databaseFile(options.data);
    const auto email = normalizedEmail(options.namedAdministrator);
    std::optional<Account> account;
    if (email && QFile::exists(file)) {
        Database database(file, &bringUpToDate, Database::History::usedBefore);
        Transaction transaction(database);
        account = accountWithEmail(transaction, *email);
        if (account)
            nameAdministrator(transaction, *account);
        transaction.commit();
    }
    if (!account) {
        tell(u"no hay ninguna cuenta con el email %1 en %2."_s.arg(options.namedAdministrator,
                                                                   options.data));
        return exitFailed;
    }
    std::printf("%s puede subir plantillas.\n", qPrintable(account->email));
    return exitDone;
}

int serve(QCoreApplication& application, const Options& options)
{
    const QString folder = QDir(options.data).canonicalPath();
    const QString kept = portFile(folder);
    using History = Database::History;
    Service service(
        {.dataFolder = folder,
         .history = QFile::exists(kept) ? History::usedBefore : History::perhapsNew,
         .audience = options.untilUnused ? ServiceAudience::ownUser : ServiceAudience::everybody,
         .administrator = options.administrator,
         .now = {}});
    Server server(service, options.host);
    if (!server.start(options.port, lastPort(kept))) {
        tell(u"no se puede escuchar en %1, puerto %2."_s.arg(options.host).arg(options.port));
        return exitFailed;
    }
    keepPort(kept, server.port());

    const QByteArray line = server.address().toUtf8() + '\n';
    Rendezvous rendezvous(serviceSocketPath(folder), line, {});
    if (!rendezvous.isListening() && options.untilUnused) {
        tell(u"no hay una carpeta privada para el punto de encuentro con las ventanas."_s);
        return exitFailed;
    }
    if (options.untilUnused)
        QObject::connect(&rendezvous, &Rendezvous::unused, &application, &QCoreApplication::quit);
    onEndingSignals(application, &QCoreApplication::quit);
    std::fputs(line.constData(), stdout);
    std::fflush(stdout);

    const int result = QCoreApplication::exec();
    rendezvous.close();    // a program that connects now must find nobody and start another service
    const bool hasEnded = server.stop();
    service.database().checkpoint();
    // Cuts off requests that have not ended: another service may be waiting to start, and every
    // confirmed change is on the disk.
    if (!hasEnded)
        ::_exit(result);    // frees the lock without waiting for threads
    return result;
}

int prepareAndServe(QCoreApplication& application, const Options& options)
{
    const QString& folder = options.data;
    if (!preparePrivately(folder)) {
        tell(u"no se puede crear la carpeta %1."_s.arg(folder));
        return exitFailed;
    }
    allowManyConnections();
    const auto lock = claimed(folder);
    if (lock->state() == SystemLock::State::others) {
        tell(u"ya hay un servicio en marcha con los datos de %1."_s.arg(folder));
        return exitRunning;
    }
    if (!lock->isOurs()) {
        tell(u"no se puede usar la carpeta %1: %2."_s.arg(folder, whyNotWritable(folder)));
        return exitFailed;
    }
    try {
        return serve(application, options);
    } catch (const DatabaseError& error) {
        using enum DatabaseError::Kind;
        if (error.kind() != damaged && error.kind() != vanished)
            throw;
        tell(sentenceOfLoss(error, folder));
        return exitFailed;
    }
}

}    // namespace

int main(int argc, char** argv)
{
    fixAllocatorThresholds();    // so that freed memory of large posts returns to the system
    qInstallMessageHandler(quietMessages);
    ignoreRelativeFolders();
    std::signal(SIGPIPE, SIG_IGN);
    QCoreApplication application(argc, argv);
    // The studio has the same name, so that the service shares its data and configuration folders.
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
    try {
        if (!options.namedAdministrator.isEmpty())
            return appointAdministrator(options);
        return prepareAndServe(application, options);
    } catch (const DatabaseError& error) {
        tell(sentence(error, options.data));
        return exitFailed;
    }
}
