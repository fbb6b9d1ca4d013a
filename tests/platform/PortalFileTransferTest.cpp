#include "platform/PortalFileTransfer.h"

#include <QCoroTask>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QMimeData>
#include <QProcess>
#include <QStandardPaths>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// Hands over one file for the key "123456".
class StubPortal : public QDBusVirtualObject {
public:
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override
    {
        const bool isKnown = call.interface() == u"org.freedesktop.portal.FileTransfer"_s &&
                             call.member() == u"RetrieveFiles"_s && call.signature() == u"sa{sv}"_s;
        if (isKnown && call.arguments().value(0) == u"123456"_s)
            bus.send(call.createReply(QStringList{u"/run/user/1/doc/ab/una foto.jpg"_s}));
        else
            bus.send(call.createErrorReply(QDBusError::AccessDenied, u"no"_s));
        return true;
    }
};

class SessionBus {
public:
    SessionBus()
    {
        m_daemon.start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address"_s,
                                          u"--address=unix:tmpdir=/tmp"_s});
        if (m_daemon.waitForStarted() && m_daemon.waitForReadyRead())
            m_address = QString::fromLatin1(m_daemon.readLine().trimmed());
    }
    ~SessionBus()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
    }
    QDBusConnection connection(const QString& name) const
    {
        return QDBusConnection::connectToBus(m_address, name);
    }

private:
    QProcess m_daemon;
    QString m_address;
};

}    // namespace

TEST(PortalFileTransfer, theFilesOfAKeyAreAskedOfTheDesktop)
{
    QMimeData data;
    EXPECT_EQ(portalTransferKey(data), QByteArray());
    EXPECT_FALSE(offersPortalFiles(data));
    data.setData(u"application/vnd.portal.filetransfer"_s, QByteArray("123456\0", 7));
    const QByteArray key = portalTransferKey(data);
    EXPECT_EQ(key, "123456");
    EXPECT_TRUE(offersPortalFiles(data));
    data.setData(u"application/vnd.portal.filetransfer"_s, QByteArray(100'000, 'x'));
    EXPECT_EQ(portalTransferKey(data), QByteArray());

    if (QStandardPaths::findExecutable(u"dbus-daemon"_s).isEmpty())
        GTEST_SKIP() << "needs dbus-daemon";
    const SessionBus bus;
    QDBusConnection desktop = bus.connection(u"desktop"_s);
    const QDBusConnection own = bus.connection(u"own"_s);
    ASSERT_TRUE(desktop.isConnected() && own.isConnected());
    EXPECT_FALSE(QCoro::waitFor(portalFiles(key, own))) << "there is no portal yet";
    StubPortal portal;
    ASSERT_TRUE(desktop.registerVirtualObject(u"/org/freedesktop/portal/documents"_s, &portal) &&
                desktop.registerService(u"org.freedesktop.portal.Documents"_s));
    EXPECT_EQ(QCoro::waitFor(portalFiles(key, own)),
              QList<QUrl>{QUrl(u"file:///run/user/1/doc/ab/una foto.jpg"_s)});
    EXPECT_FALSE(QCoro::waitFor(portalFiles("otra", own)));
}
