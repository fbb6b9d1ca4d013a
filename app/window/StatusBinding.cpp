#include "app/window/StatusBinding.h"

#include "app/window/StatusLine.h"
#include "studio/StudioSession.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {
constexpr std::chrono::seconds longestWaitForClosing{5};
}

StatusBinding::StatusBinding(StudioSession& session, StatusLine* line)
    : m_session(session), m_line(line)
{
    m_closing.setSingleShot(true);
    m_closing.setInterval(longestWaitForClosing);
    connect(&m_closing, &QTimer::timeout, this, [this] {
        m_hasWaited = true;
        Q_EMIT closeRequested();
    });
    connect(line, &StatusLine::stopRequested, this, &StatusBinding::stop);
    connect(line, &StatusLine::linkRequested, this, &StatusBinding::followLink);
    connect(line, &StatusLine::historyRequested, this, &StatusBinding::showHistory);
    connect(&session, &StudioSession::statusChanged, this, &StatusBinding::show);
    connect(&session, &StudioSession::activityChanged, this, &StatusBinding::followActivity);
    show();
}

void StatusBinding::show()
{
    const Activity* foremost = m_session.activities().foremost();
    std::optional<Activity> underWay = foremost ? std::optional(*foremost) : std::nullopt;
    if (underWay && m_closing.isActive())
        underWay->stop = {};    // hides the stop button: the activity is already being stopped
    m_line->setStatus(m_session.statusLog().current(), underWay);
}

void StatusBinding::followActivity()
{
    show();
    if (m_closing.isActive() && !m_session.activities().delayingClosing()) {
        m_closing.stop();
        // Queued, so that all receivers of activityChanged() run before the window closes.
        QMetaObject::invokeMethod(this, &StatusBinding::closeRequested, Qt::QueuedConnection);
    }
}

void StatusBinding::showHistory()
{
    m_line->showHistory(m_session.statusLog().entries());
}

bool StatusBinding::canStop() const
{
    const Activity* foremost = m_session.activities().foremost();
    return foremost && foremost->stop && !m_closing.isActive();
}

void StatusBinding::stop()
{
    if (canStop())
        m_session.activities().stop(m_session.activities().foremost()->kind);
}

bool StatusBinding::delaysClosing()
{
    const Activities& activities = m_session.activities();
    const Activity* delaying = activities.delayingClosing();
    if (!delaying || m_hasWaited)
        return false;
    if (m_closing.isActive())
        return true;
    const Activity::Kind kind = delaying->kind;
    activities.stop(kind);
    if (!activities.delayingClosing())
        return false;
    m_closing.start();
    m_session.statusLog().tellStep(kind, u"Terminando la exportación antes de cerrar…"_s);
    return true;
}

void StatusBinding::followLink()
{
    const StatusLink link = m_session.statusLog().current().link;
    if (link.isPurchase)
        return m_session.setAccountPanel(AccountPanelDestination::credits);
    if (!link.details.isEmpty())
        return m_line->showDetails(link.details);
    // Checks the folder, because openUrl() succeeds on some systems even if the folder is missing.
    if (!QFileInfo(link.folder).isDir() ||
        !QDesktopServices::openUrl(QUrl::fromLocalFile(link.folder)))
        m_session.setStatus(u"No se ha podido abrir la carpeta."_s, StatusKind::warning);
}
