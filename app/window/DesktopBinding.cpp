#include "app/window/DesktopBinding.h"

#include "account/AccountSession.h"
#include "app/desktop/Appearance.h"
#include "app/desktop/DesktopNotices.h"
#include "app/desktop/RecentPlaces.h"
#include "app/desktop/UpdateController.h"
#include "app/settings/AppSettingsWindow.h"
#include "app/settings/AppearanceDetailPanel.h"
#include "app/settings/UpdatesBinding.h"
#include "app/stage/EmptyState.h"
#include "app/window/StatusBinding.h"
#include "platform/Desktop.h"
#include "platform/NotificationCenter.h"
#include "studio/StudioSession.h"

#include <QGuiApplication>
#include <QUrl>

using namespace Qt::StringLiterals;

DesktopBinding::DesktopBinding(StudioSession& session, AccountSession& account,
                               PreferencesStore& preferences, const StatusBinding& status)
    : m_session(session), m_account(account), m_status(status),
      m_updates(std::make_unique<UpdateController>(account, preferences)),
      m_appearance(new Appearance(preferences, this))
{
    connect(m_updates.get(), &UpdateController::told, this,
            [this](const QString& sentence, bool isProblem) {
                m_session.setStatus(sentence, isProblem ? StatusKind::warning : StatusKind::done);
            });
    followLinks();
}

DesktopBinding::~DesktopBinding() = default;

void DesktopBinding::followLinks()
{
    notificationCenter().subscribe(
        Notification::deepLinkReceived, this, [this](const QVariant& link) {
            const QUrl url = link.toUrl();
            if (AccountSession::isDeepLink(url))
                return;
            const bool isElsewhere = url.isValid() && url.scheme() != u"moltiva"_s;
            m_session.setStatus(isElsewhere ? u"Moltiva solo abre fotos que están en este equipo."_s
                                            : u"Moltiva no reconoce el enlace que se ha abierto."_s,
                                StatusKind::warning);
        });
}

void DesktopBinding::follow(Desktop& desktop)
{
    m_appearance->follow(desktop);
    const auto isQuiet = [this] {
        return m_status.isClosing() || QGuiApplication::applicationState() == Qt::ApplicationActive;
    };
    m_notices = new DesktopNotices(desktop, isQuiet, &std::chrono::steady_clock::now, this);
    m_notices->follow(m_session);
    connect(&desktop, &Desktop::noticePressed, this, &DesktopBinding::noticePressed);
}

void DesktopBinding::follow(const LocalAIManager& manager)
{
    if (m_notices)
        m_notices->follow(manager);
}

void DesktopBinding::showRecent(RecentPlaces& recent, EmptyState* emptyState)
{
    const auto show = [&recent, emptyState] { emptyState->setPlaces(recent.places()); };
    connect(&recent, &RecentPlaces::changed, emptyState, show);
    show();
    recent.look();
}

void DesktopBinding::connectSettings(AppSettingsWindow* settings)
{
    new UpdatesBinding(*m_updates, m_account, settings->updatesPanel());
    AppearanceDetailPanel* panel = settings->appearancePanel();
    const auto show = [this, panel] {
        panel->setTheme(m_appearance->choice(), m_appearance->isSchemeKnown());
    };
    show();
    connect(m_appearance, &Appearance::changed, panel, show);
    connect(panel, &AppearanceDetailPanel::themeChosen, m_appearance, &Appearance::choose);
}
