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
    connect(line, &StatusLine::actionRequested, &session, &StudioSession::act);
    connect(line, &StatusLine::historyRequested, this, &StatusBinding::showHistory);
    connect(&session, &StudioSession::statusChanged, this, &StatusBinding::show);
    connect(&session, &StudioSession::activityChanged, this, &StatusBinding::followActivity);
    connect(&session, &StudioSession::copyChanged, this, &StatusBinding::showWaiting);
    show();
    showWaiting();
}

void StatusBinding::show()
{
    const Activity* foremost = m_session.activities().foremost();
    std::optional<Activity> underWay = foremost ? std::optional(*foremost) : std::nullopt;
    // Hides the stop button of an activity that is already being stopped, and of generation, which
    // has its button in the compose bar.
    if (underWay && (m_closing.isActive() || underWay->kind == Activity::Kind::generating))
        underWay->stop = {};
    m_line->setStatus(m_session.statusLog().current(), underWay);
}

void StatusBinding::showWaiting()
{
    const StudioCopy& copy = m_session.copy();
    m_line->setWaiting(copy.waiting(), copy.whyWaiting());
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

QString StatusBinding::stopText() const
{
    const Activity* foremost = m_session.activities().foremost();
    switch (foremost ? foremost->kind : Activity::Kind::importing) {
    case Activity::Kind::generating:
        return u"Cancelar la generación"_s;
    case Activity::Kind::exporting:
        return u"Detener la exportación"_s;
    case Activity::Kind::publishing:
        return u"Detener la publicación"_s;
    case Activity::Kind::account:
    case Activity::Kind::restoring:
    case Activity::Kind::importing:
        break;
    }
    return u"Detener la importación"_s;
}

void StatusBinding::stop()
{
    if (canStop())
        m_session.activities().stop(m_session.activities().foremost()->kind);
}

bool StatusBinding::delaysClosing()
{
    m_isClosing = true;
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
    const QString what = kind == Activity::Kind::generating   ? u"la generación"_s
                         : kind == Activity::Kind::publishing ? u"la publicación"_s
                                                              : u"la exportación"_s;
    m_session.statusLog().tellStep(kind, u"Terminando %1 antes de cerrar…"_s.arg(what));
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
