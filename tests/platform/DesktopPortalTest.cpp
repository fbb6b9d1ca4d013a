#include "platform/DesktopPortal.h"

#include <QDBusAbstractAdaptor>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QProcess>
#include <QStandardPaths>

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <gtest/gtest.h>

#include <thread>

using namespace Qt::StringLiterals;

using SettingGroups = QMap<QString, QVariantMap>;
Q_DECLARE_METATYPE(SettingGroups)

// What a desktop offers on its bus: the settings of its portal and its notices.
class PortalSettings : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")
public:
    SettingGroups groups;

public Q_SLOTS:
    SettingGroups ReadAll(const QStringList& wanted) const
    {
        SettingGroups given = groups;
        given.removeIf([&](const auto& group) { return !wanted.contains(group.key()); });
        return given;
    }

Q_SIGNALS:
    void SettingChanged(const QString& group, const QString& key, const QDBusVariant& value);
};

class FileChooser : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.FileChooser")
    Q_PROPERTY(uint version READ version)
public:
    explicit FileChooser(QObject* parent) : QDBusAbstractAdaptor(parent) {}
    uint version() const { return 3; }
};

class NoticeServer : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
public:
    QStringList told;
    QList<uint> replaced;

public Q_SLOTS:
    uint Notify(const QString& program, uint replaces, const QString&, const QString& title,
                const QString& body, const QStringList& actions, const QVariantMap&, int)
    {
        told.append(program + u'|' + title + u'|' + body + u'|' + actions.join(u','));
        replaced.append(replaces);
        return 7;
    }

Q_SIGNALS:
    void ActivationToken(uint notice, const QString& token);
    void ActionInvoked(uint notice, const QString& action);
};

namespace {

const QString portalObject = u"/org/freedesktop/portal/desktop"_s;

// A bus of this test alone, with a connection for the desktop and one for the program.
class DesktopPortalTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (QStandardPaths::findExecutable(u"dbus-daemon"_s).isEmpty())
            GTEST_SKIP() << "dbus-daemon is not installed";
        qDBusRegisterMetaType<SettingGroups>();
        m_bus.start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address"_s});
        ASSERT_TRUE(m_bus.waitForReadyRead());
        const QString address = QString::fromUtf8(m_bus.readLine()).trimmed();
        m_desktop = QDBusConnection::connectToBus(address, u"desktop"_s);
        m_program = QDBusConnection::connectToBus(address, u"program"_s);
        ASSERT_TRUE(m_desktop.isConnected() && m_program.isConnected());
    }
    void TearDown() override
    {
        QDBusConnection::disconnectFromBus(u"desktop"_s);
        QDBusConnection::disconnectFromBus(u"program"_s);
        m_bus.kill();
        m_bus.waitForFinished();
    }
    void offerSettings()
    {
        const auto all = QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals |
                         QDBusConnection::ExportAdaptors;
        ASSERT_TRUE(m_desktop.registerObject(portalObject, &settings, all));
        ASSERT_TRUE(m_desktop.registerService(u"org.freedesktop.portal.Desktop"_s));
    }
    void offerNotices()
    {
        const auto all = QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals;
        ASSERT_TRUE(m_desktop.registerObject(u"/org/freedesktop/Notifications"_s, &notices, all));
        ASSERT_TRUE(m_desktop.registerService(u"org.freedesktop.Notifications"_s));
    }

    QProcess m_bus;
    QDBusConnection m_desktop = QDBusConnection(u"none"_s);
    QDBusConnection m_program = QDBusConnection(u"none"_s);
    PortalSettings settings;
    NoticeServer notices;
};

}    // namespace

TEST_F(DesktopPortalTest, preferencesAreReadAndFollowed)
{
    settings.groups = {{u"org.freedesktop.appearance"_s, {{u"color-scheme"_s, 2u}}},
                       {u"org.gnome.desktop.interface"_s, {{u"enable-animations"_s, false}}}};
    offerSettings();
    DesktopPortal portal(m_program);
    QSignalSpy changes(&portal, &Desktop::preferencesChanged);
    const auto becomes = [&](ColorScheme scheme, bool reducesMotion) {
        const DesktopPreferences wanted{.scheme = scheme, .reducesMotion = reducesMotion};
        return QTest::qWaitFor([&] { return portal.preferences() == wanted; });
    };
    EXPECT_TRUE(becomes(ColorScheme::light, true));
    const auto change = [&](const QString& group, const QString& key, const QVariant& value) {
        Q_EMIT settings.SettingChanged(group, key, QDBusVariant(value));
    };
    change(u"org.freedesktop.appearance"_s, u"color-scheme"_s, 1u);
    EXPECT_TRUE(becomes(ColorScheme::dark, true));
    change(u"org.gnome.desktop.interface"_s, u"enable-animations"_s, true);
    EXPECT_TRUE(becomes(ColorScheme::dark, false));
    change(u"org.freedesktop.appearance"_s, u"reduced-motion"_s, 1u);
    EXPECT_TRUE(becomes(ColorScheme::dark, true));
    const qsizetype before = changes.count();
    change(u"org.freedesktop.appearance"_s, u"accent-color"_s, u"pink"_s);
    change(u"org.freedesktop.appearance"_s, u"color-scheme"_s, 99u);
    EXPECT_TRUE(becomes(ColorScheme::noPreference, true));
    EXPECT_EQ(changes.count(), before + 1) << "told of what has no meaning here";
}

TEST_F(DesktopPortalTest, aPortalThatComesLaterIsAsked)
{
    settings.groups = {{u"org.freedesktop.appearance"_s, {{u"color-scheme"_s, 2u}}}};
    DesktopPortal portal(m_program);
    const auto becomes = [](const DesktopPortal& asking, ColorScheme scheme) {
        return QTest::qWaitFor([&] { return asking.preferences().scheme == scheme; });
    };
    EXPECT_EQ(portal.preferences().scheme, ColorScheme::unknown);
    EXPECT_TRUE(becomes(portal, ColorScheme::noPreference)) << "there is no portal";
    portal.notify({u"Nadie"_s, u"lo muestra"_s});
    offerSettings();
    EXPECT_TRUE(becomes(portal, ColorScheme::light));
    settings.groups.clear();
    EXPECT_TRUE(becomes(DesktopPortal(m_program), ColorScheme::noPreference)) << "tells no scheme";
}

TEST_F(DesktopPortalTest, fileDialogsAreAskedFor)
{
    EXPECT_FALSE(DesktopPortal::offersFileDialogs(m_program)) << "there is no portal";
    new FileChooser(&settings);
    offerSettings();
    // On another thread, because this one has to answer.
    std::optional<bool> offers;
    std::thread asking([&, program = m_program] {
        const bool answer = DesktopPortal::offersFileDialogs(program);
        QMetaObject::invokeMethod(&settings, [&offers, answer] { offers = answer; });
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return offers.has_value(); }));
    asking.join();
    EXPECT_EQ(offers, true);
}

TEST_F(DesktopPortalTest, aPressedNoticeIsTold)
{
    offerNotices();
    DesktopPortal portal(m_program);
    QList<QByteArray> tokens;
    QObject::connect(&portal, &Desktop::noticePressed,
                     [&](const QByteArray& token) { tokens.append(token); });
    portal.notify({u"Exportación terminada"_s, u"3 <b>imágenes</b>"_s});
    ASSERT_TRUE(QTest::qWaitFor([&] { return notices.told.size() == 1; }));
    EXPECT_EQ(notices.told.first(), u"Moltiva|Exportación terminada|3 &lt;b&gt;imágenes&lt;/b&gt;|"
                                    "default,Abrir Moltiva"_s);
    // The number that the server gave it arrives later than the notice at the server.
    const auto isPressed = [&] {
        Q_EMIT notices.ActivationToken(8, u"of another program"_s);
        Q_EMIT notices.ActionInvoked(8, u"default"_s);
        Q_EMIT notices.ActivationToken(7, u"token"_s);
        Q_EMIT notices.ActionInvoked(7, u"default"_s);
        return !tokens.isEmpty();
    };
    EXPECT_TRUE(QTest::qWaitFor(isPressed));
    EXPECT_EQ(tokens.first(), "token");
    portal.notify({u"Textos generados"_s, u"Otra"_s});
    ASSERT_TRUE(QTest::qWaitFor([&] { return notices.told.size() == 2; }));
    EXPECT_EQ(notices.replaced, (QList<uint>{0, 7})) << "a second notice beside the first";
}

#include "DesktopPortalTest.moc"
