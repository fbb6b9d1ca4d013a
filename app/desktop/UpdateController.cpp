#include "app/desktop/UpdateController.h"

#include "account/AccountSession.h"
#include "account/AccountTexts.h"
#include "app/desktop/AppVersion.h"
#include "platform/PreferencesStore.h"

#include <QPointer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString lastCheckKey = u"moltiva.lastUpdateCheck"_s;    // time of the last daily question
constexpr auto firstWait = 15s;      // from the start, so as not to slow it down
constexpr auto lookingPause = 1h;    // between two looks whether the daily question is due

OfferedVersion versionForThisPlatform(const CloudCopyConfig& config)
{
#if defined(Q_OS_MACOS)
    return {config.latestMacVersion, config.macDownloadURL};
#elif defined(Q_OS_LINUX)
    return {config.latestLinuxVersion, config.linuxDownloadURL};
#else
    Q_UNUSED(config)
    return {};
#endif
}

bool isSafe(const std::optional<QUrl>& address)
{
    return address && address->isValid() && address->scheme() == u"https"_s &&
           !address->host().isEmpty();
}

}    // namespace

UpdateController::UpdateController(AccountSession& account, PreferencesStore& preferences,
                                   Calendar calendar)
    : m_account(account), m_preferences(preferences), m_calendar(std::move(calendar))
{
    connect(&m_account, &AccountSession::changed, this, &UpdateController::changed);
    m_daily.callOnTimeout(this, [this] {
        m_daily.setInterval(lookingPause);
        checkIfDue();
    });
}

OfferedVersion UpdateController::offered() const
{
    if (hasFailed())
        return {};
    OfferedVersion offered = versionForThisPlatform(m_account.cloudCopyConfig());
    if (!isSafe(offered.download))
        offered.download.reset();
    return offered;
}

bool UpdateController::hasFailed() const
{
    return m_failedVersion == m_account.configurationVersion();
}

void UpdateController::checkForUpdates()
{
    if (!m_isChecking)
        check(Occasion::userAsked);
}

void UpdateController::checkDaily()
{
    m_daily.start(firstWait);
}

void UpdateController::checkIfDue()
{
    const QDateTime now = m_calendar();
    const QDateTime last = QDateTime::fromString(
        QString::fromLatin1(m_preferences.value(lastCheckKey).value_or(QByteArray())), Qt::ISODate);
    // A time to come is due too: the clock has been put back.
    const bool isRecent = last.isValid() && last <= now && last.addDays(1) > now;
    if (m_isChecking || isRecent)
        return;
    m_preferences.setValue(lastCheckKey, now.toString(Qt::ISODate).toLatin1());
    check(Occasion::daily);
}

QCoro::Task<> UpdateController::check(Occasion occasion)
{
    const QPointer<UpdateController> self = this;
    m_isChecking = true;
    Q_EMIT changed();
    const int before = m_account.configurationVersion();
    const QString failure = co_await m_account.refreshConfiguration();
    if (!self)
        co_return;
    m_isChecking = false;
    m_failedVersion = failure.isEmpty() ? std::nullopt : std::optional(before);
    Q_EMIT changed();
    const OfferedVersion newest = offered();
    const QString version = shownLine(newest.version.value_or(QString()));
    const bool wasAsked = occasion == Occasion::userAsked;
    if (AppVersion::isRemoteVersionNewer(newest.version))
        Q_EMIT told(
            newest.download
                ? u"Hay una versión nueva de Moltiva, la %1. Se descarga en Ajustes de Moltiva."_s
                      .arg(version)
                : u"Hay una versión nueva de Moltiva, la %1, todavía sin descarga."_s.arg(version),
            false);
    else if (wasAsked && hasFailed())
        Q_EMIT told(u"No se ha podido saber si hay una versión nueva. %1"_s.arg(failure), true);
    else if (wasAsked && version.isEmpty())
        Q_EMIT told(
            u"No se sabe si hay una versión nueva: el servicio no dice cuál es la última."_s, true);
    else if (wasAsked)
        Q_EMIT told(u"Moltiva está al día."_s, false);
}
