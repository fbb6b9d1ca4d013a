#include "account/LocalService.h"

#include "account/ServiceRendezvous.h"
#include "platform/HttpClient.h"
#include "platform/UserFolders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <cerrno>
#include <utility>

#include <poll.h>
#include <unistd.h>

extern "C" {    // glibc 2.36 declares no C linkage in this header
#include <sys/pidfd.h>
}

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::milliseconds retryPause{40};
// longestLine in bytes, longestReason in characters.
constexpr qint64 longestLine = 200, longestReason = 400;

constexpr auto owner = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;

// Creates the data folder, accessible to its user only. It must exist before serviceSocketPath(),
// which needs its canonical path.
bool createPrivately(const QString& folder)
{
    return QDir(folder).exists() || (QDir().mkpath(folder) && QFile::setPermissions(folder, owner));
}

// Also true for an ended process that has not been reaped. False if the system cannot tell.
bool hasEnded(qint64 process)
{
    const int handle = ::pidfd_open(pid_t(process), 0);
    if (handle < 0)
        return errno == ESRCH;
    pollfd ending{handle, POLLIN, 0};
    const bool is = ::poll(&ending, 1, 0) > 0;
    ::close(handle);
    return is;
}

}    // namespace

QString localServiceProgram()
{
    return QDir(QCoreApplication::applicationDirPath()).filePath(u"moltiva-service"_s);
}

LocalService::LocalService(Place place, QObject* parent)
    : QObject(parent), m_place(std::move(place))
{
    connect(&m_socket, &QLocalSocket::connected, this, [this] {
        if (!leadsToOwnUser(m_socket))
            endSearch(u"en su lugar está el programa de otro usuario de este equipo."_s);
    });
    connect(&m_socket, &QLocalSocket::readyRead, this, &LocalService::read);
    connect(&m_socket, &QLocalSocket::errorOccurred, this, &LocalService::lost);
    m_retry.setSingleShot(true);
    m_retry.callOnTimeout(this, &LocalService::connectAgain);
    m_giveUp.setSingleShot(true);
    m_giveUp.callOnTimeout(this, [this] {
        endSearch(u"no contesta. Lo que haya dejado escrito está en %1."_s.arg(logFile()));
    });
}

LocalService::~LocalService()
{
    m_socket.disconnect(this);
    m_address.clear();
    endSearch(u"se ha dejado de esperar."_s);
}

QCoro::Task<QUrl> LocalService::address(std::stop_token stop)
{
    if (m_address.isEmpty() && !stop.stop_requested()) {
        if (!m_isStarting)
            begin();
        const auto ended = std::make_shared<Completion>();
        m_waiting.append(ended);
        const std::stop_callback onStop(stop, [ended] { ended->complete(); });
        co_await ended->wait();
    }
    if (stop.stop_requested())
        throw TransportError::stopped();
    if (m_address.isEmpty()) {
        throw TransportError(
            TransportError::Kind::unreachable,
            u"No se ha podido arrancar el servicio local de cuentas: %1"_s.arg(m_problem));
    }
    const QUrl found = m_address;    // copied: `co_return m_address` would move out of the member
    co_return found;
}

void LocalService::begin()
{
    m_isStarting = true;
    m_isLastLook = false;
    m_process = 0;
    m_giveUp.start(m_place.longestStart);
    m_retry.start(0);    // not at once: address() must be waiting before the attempt ends
}

void LocalService::connectAgain()
{
    if (!createPrivately(m_place.data)) {
        endSearch(u"no se puede crear la carpeta %1: %2."_s.arg(
            m_place.data, whyNotWritable(QFileInfo(m_place.data).path())));
        return;
    }
    const QString path = serviceSocketPath(m_place.data);
    if (path.isEmpty()) {
        endSearch(
            u"ni XDG_RUNTIME_DIR es una carpeta tuya y privada ni cabe un socket en %1."_s.arg(
                m_place.data));
        return;
    }
    m_socket.abort();
    m_socket.connectToServer(path, QIODevice::ReadOnly);
}

void LocalService::read()
{
    if (!m_socket.canReadLine()) {
        if (m_socket.bytesAvailable() > longestLine)
            endSearch(u"da una dirección que no sirve."_s);
        return;
    }
    const QUrl given(QString::fromUtf8(m_socket.readLine(longestLine)).trimmed(), QUrl::StrictMode);
    if (!isLoopback(given.host())) {
        endSearch(u"da una dirección que no sirve."_s);
        return;
    }
    m_address = given;
    endSearch();
}

// Called when the socket could not connect or lost its connection: the service is not running yet,
// or has ended.
void LocalService::lost()
{
    m_address.clear();
    if (!m_isStarting)
        return;    // the next call of address() starts the service again
    if (m_process == 0 && !launch())
        return;
    // The launched service ends at once if another one is running already. Connecting once more,
    // before giving up, reaches that one.
    if (hasEnded(m_process) && std::exchange(m_isLastLook, true)) {
        endSearch(reasonInLog());
        return;
    }
    m_retry.start(retryPause);
}

bool LocalService::launch()
{
    if (!QFile(logFile()).open(QIODevice::WriteOnly)) {
        endSearch(
            u"no se puede escribir en %1: %2."_s.arg(m_place.data, whyNotWritable(m_place.data)));
        return false;
    }
    QProcess process;
    process.setProgram(m_place.program);
    process.setArguments({u"--data"_s, m_place.data, u"--port"_s, u"0"_s, u"--until-unused"_s,
                          u"--administrator"_s, m_place.administrator});
    // Not the user's current folder, whose disk could not be unmounted while the service runs.
    process.setWorkingDirectory(m_place.data);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(logFile());
    if (process.startDetached(&m_process))
        return true;
    endSearch(u"no se puede ejecutar %1."_s.arg(m_place.program));
    return false;
}

QString LocalService::logFile() const
{
    return QDir(m_place.data).filePath(u"servicio.log"_s);
}

// The last line of the log: the service's own sentence, or why the system could not run it.
QString LocalService::reasonInLog() const
{
    QFile log(logFile());
    const QString all =
        log.open(QIODevice::ReadOnly) ? QString::fromUtf8(log.readAll()) : QString();
    QString reason = all.trimmed().section(u'\n', -1).right(longestReason);
    const QString mark = u"moltiva-service: "_s;
    if (reason.startsWith(mark))
        reason.remove(0, mark.size());
    if (!reason.isEmpty())
        return reason;
    return u"ha terminado sin dejar dicho por qué (%1)."_s.arg(
        whyNotWritable(m_place.data, logFile()));
}

void LocalService::endSearch(const QString& problem)
{
    m_isStarting = false;
    m_problem = problem;
    m_giveUp.stop();
    m_retry.stop();
    if (m_address.isEmpty())
        m_socket.abort();
    for (const auto& each : std::exchange(m_waiting, {}))
        each->complete();
}
