#include "platform/DesktopPortal.h"

#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString portalService = u"org.freedesktop.portal.Desktop"_s;
const QString portalPath = u"/org/freedesktop/portal/desktop"_s;
const QString settingsInterface = u"org.freedesktop.portal.Settings"_s;
const QString noticeService = u"org.freedesktop.Notifications"_s;
const QString noticePath = u"/org/freedesktop/Notifications"_s;
const QString appearance = u"org.freedesktop.appearance"_s;
const QString gnomeInterface = u"org.gnome.desktop.interface"_s;
constexpr int answerTime = 100;    // ms that offersFileDialogs() waits

using SettingGroups = QMap<QString, QVariantMap>;

}    // namespace

DesktopPortal::DesktopPortal(const QDBusConnection& bus) : m_bus(bus)
{
    qDBusRegisterMetaType<SettingGroups>();
    show();
    m_bus.connect(portalService, portalPath, settingsInterface, u"SettingChanged"_s, this,
                  SLOT(takeChange(QDBusMessage)));
    m_bus.connect(noticeService, noticePath, noticeService, u"ActivationToken"_s, this,
                  SLOT(keepToken(uint, QString)));
    m_bus.connect(noticeService, noticePath, noticeService, u"ActionInvoked"_s, this,
                  SLOT(press(uint, QString)));
    const auto* portal = new QDBusServiceWatcher(portalService, m_bus,
                                                 QDBusServiceWatcher::WatchForRegistration, this);
    connect(portal, &QDBusServiceWatcher::serviceRegistered, this, &DesktopPortal::ask);
    ask();
}

void DesktopPortal::ask()
{
    QDBusMessage question =
        QDBusMessage::createMethodCall(portalService, portalPath, settingsInterface, u"ReadAll"_s);
    question << QStringList{appearance, gnomeInterface};
    auto* reply = new QDBusPendingCallWatcher(m_bus.asyncCall(question), this);
    connect(reply, &QDBusPendingCallWatcher::finished, this, &DesktopPortal::takeAll);
}

void DesktopPortal::takeAll(QDBusPendingCallWatcher* reply)
{
    reply->deleteLater();
    const QDBusPendingReply<SettingGroups> answer = *reply;
    const SettingGroups groups = answer.isError() ? SettingGroups() : answer.value();
    for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
        for (auto setting = group->cbegin(); setting != group->cend(); ++setting)
            take(group.key(), setting.key(), setting.value());
    }
    // Neither a desktop without a portal nor one that does not tell its scheme has a preference.
    if (m_scheme == ColorScheme::unknown)
        m_scheme = ColorScheme::noPreference;
    show();
}

void DesktopPortal::takeChange(const QDBusMessage& change)
{
    const QVariantList told = change.arguments();
    if (told.size() == 3)
        take(told[0].toString(), told[1].toString(), told[2].value<QDBusVariant>().variant());
    show();
}

void DesktopPortal::take(const QString& group, const QString& key, const QVariant& told)
{
    if (group == appearance && key == u"color-scheme"_s) {
        const uint scheme = told.toUInt();
        m_scheme = scheme == 1   ? ColorScheme::dark
                   : scheme == 2 ? ColorScheme::light
                                 : ColorScheme::noPreference;
    } else if (group == appearance && key == u"reduced-motion"_s) {
        m_asksForLessMotion = told.toUInt() == 1;
    } else if (group == gnomeInterface && key == u"enable-animations"_s) {
        m_hasAnimations = told.toBool();
    }
}

void DesktopPortal::show()
{
    setPreferences({.scheme = m_scheme, .reducesMotion = m_asksForLessMotion || !m_hasAnimations});
}

bool DesktopPortal::offersFileDialogs(const QDBusConnection& bus)
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        portalService, portalPath, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    question << u"org.freedesktop.portal.FileChooser"_s << u"version"_s;
    const QDBusReply<QDBusVariant> version = bus.call(question, QDBus::Block, answerTime);
    return version.isValid() && version.value().variant().toUInt() >= 1;
}

void DesktopPortal::notify(const DesktopNotice& notice)
{
    QDBusMessage request =
        QDBusMessage::createMethodCall(noticeService, noticePath, noticeService, u"Notify"_s);
    const int usualTime = -1;
    request << u"Moltiva"_s << m_notice << u"moltiva"_s << notice.title
            << notice.sentence.toHtmlEscaped() << QStringList{u"default"_s, u"Abrir Moltiva"_s}
            << QVariantMap{{u"desktop-entry"_s, u"moltiva"_s}} << usualTime;
    auto* reply = new QDBusPendingCallWatcher(m_bus.asyncCall(request), this);
    connect(reply, &QDBusPendingCallWatcher::finished, this, [this, reply] {
        reply->deleteLater();
        const QDBusPendingReply<uint> number = *reply;
        if (!number.isError())
            m_notice = number.value();
    });
}

void DesktopPortal::keepToken(uint notice, const QString& token)
{
    if (notice == m_notice)
        m_token = token.toUtf8();
}

void DesktopPortal::press(uint notice, const QString&)
{
    if (notice == m_notice && notice != 0)
        Q_EMIT noticePressed(std::exchange(m_token, {}));
}
