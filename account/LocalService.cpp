#include "account/LocalService.h"

#include "account/ServiceRendezvous.h"
#include "platform/HttpClient.h"

#include <QDir>
#include <QFile>
#include <QProcess>

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::milliseconds retryPause{40};
constexpr qint64 longestLine = 200;

// The folder's name is part of the socket's, so it must exist to be looked up.
void createPrivately(const QString& folder)
{
    if (QDir().mkpath(folder))
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

bool launch(const QString& program, const QString& data, const QString& administrator)
{
    QProcess process;
    process.setProgram(program);
    process.setArguments({u"--data"_s, data, u"--port"_s, u"0"_s, u"--until-unused"_s,
                          u"--administrator"_s, administrator});
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
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
}

LocalService::~LocalService()
{
    m_socket.disconnect(this);
    m_address.clear();
    if (m_isStarting)
        settle();    // who waits learns that there is none
}

QCoro::Task<QUrl> LocalService::address()
{
    if (m_address.isEmpty()) {
        if (!m_isStarting)
            begin();
        co_await m_settled.wait();
    }
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
    m_settled.reset();
    m_begun = std::chrono::steady_clock::now();
    createPrivately(m_place.data);
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
            m_socket.abort();
        return;
    }
    const QUrl address(QString::fromUtf8(m_socket.readLine(longestLine)).trimmed(),
                       QUrl::StrictMode);
    if (!isLoopback(address.host()))
        return;
    m_address = address;
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
    if (std::chrono::steady_clock::now() - m_begun > longestStart)
        settle();
    else
        m_retry.start(retryPause);
}

void LocalService::settle()
{
    m_isStarting = false;
    m_settled.complete();
}
