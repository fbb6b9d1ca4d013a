#include "account/LocalService.h"

#include "account/ServiceRendezvous.h"
#include "platform/HttpClient.h"

#include <QDir>
#include <QFile>
#include <QProcess>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::milliseconds retryPause{40};
constexpr qint64 longestLine = 200;

constexpr auto owner = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;

// The folder's name is part of the socket's, so it must exist to be looked up.
void createPrivately(const QString& folder)
{
    if (!QDir(folder).exists() && QDir().mkpath(folder))
        QFile::setPermissions(folder, owner);
}

// Why it could not start, should it not.
QString logFile(const QString& data)
{
    return QDir(data).filePath(u"servicio.log"_s);
}

bool launch(const QString& program, const QString& data, const QString& administrator)
{
    QProcess process;
    process.setProgram(program);
    process.setArguments({u"--data"_s, data, u"--port"_s, u"0"_s, u"--until-unused"_s,
                          u"--administrator"_s, administrator});
    process.setWorkingDirectory(data);    // not to hold on to the user's
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(logFile(data));
    return process.startDetached();
}

}    // namespace

LocalService::LocalService(Place place, QObject* parent)
    : QObject(parent), m_place(std::move(place))
{
    connect(&m_socket, &QLocalSocket::readyRead, this, &LocalService::read);
    connect(&m_socket, &QLocalSocket::errorOccurred, this, &LocalService::lost);
    m_retry.setSingleShot(true);
    m_retry.callOnTimeout(this, &LocalService::connectAgain);
    m_giveUp.setSingleShot(true);
    m_giveUp.callOnTimeout(this, &LocalService::settle);
}

LocalService::~LocalService()
{
    m_socket.disconnect(this);
    m_address.clear();
    settle();    // who waits learns that there is none
}

QCoro::Task<QUrl> LocalService::address(std::stop_token stop)
{
    if (m_address.isEmpty() && !stop.stop_requested()) {
        if (!m_isStarting)
            begin();
        const auto settled = std::make_shared<Completion>();
        m_waiting.append(settled);
        const std::stop_callback onStop(stop, [settled] { settled->complete(); });
        co_await settled->wait();
    }
    if (stop.stop_requested())
        throw TransportError::stopped();
    if (m_address.isEmpty()) {
        throw TransportError(TransportError::Kind::unreachable,
                             u"No se ha podido arrancar el servicio local de cuentas."_s);
    }
    const QUrl found = m_address;    // a member would be moved away: the result takes any lvalue
    co_return found;
}

void LocalService::begin()
{
    m_isStarting = true;
    m_isLaunched = false;
    createPrivately(m_place.data);
    m_giveUp.start(m_place.longestStart);
    m_retry.start(0);    // never settled before anybody can wait for it
}

void LocalService::connectAgain()
{
    m_socket.abort();
    m_socket.connectToServer(serviceSocketPath(m_place.data), QIODevice::ReadOnly);
}

void LocalService::read()
{
    if (!m_socket.canReadLine()) {
        if (m_socket.bytesAvailable() > longestLine)
            settle();
        return;
    }
    const QUrl given(QString::fromUtf8(m_socket.readLine(longestLine)).trimmed(), QUrl::StrictMode);
    if (isLoopback(given.host()))
        m_address = given;
    settle();
}

// It does not run yet, or has gone.
void LocalService::lost()
{
    m_address.clear();
    if (!m_isStarting)
        return;    // started again when it is next needed
    if (!m_isLaunched) {
        m_isLaunched = true;
        if (!launch(m_place.program, m_place.data, m_place.administrator)) {
            settle();
            return;
        }
    }
    m_retry.start(retryPause);
}

void LocalService::settle()
{
    m_isStarting = false;
    m_giveUp.stop();
    m_retry.stop();
    if (m_address.isEmpty())
        m_socket.abort();
    for (const auto& each : std::exchange(m_waiting, {}))
        each->complete();
}
