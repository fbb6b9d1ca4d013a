#include "app/desktop/DesktopNotices.h"

#include "copygen/LocalAIManager.h"
#include "platform/Desktop.h"
#include "studio/StudioSession.h"

using namespace Qt::StringLiterals;

DesktopNotices::DesktopNotices(Desktop& desktop, std::function<bool()> isQuiet, Clock clock,
                               QObject* parent)
    : QObject(parent), m_desktop(desktop), m_isQuiet(std::move(isQuiet)), m_clock(std::move(clock))
{
}

void DesktopNotices::follow(const StudioSession& session)
{
    connect(&session, &StudioSession::activityChanged, this, [this, &session](Activity::Kind kind) {
        const bool isRunning = session.activities().find(kind);
        if (kind == Activity::Kind::generating)
            see(Work::generation, isRunning);
        else if (kind == Activity::Kind::exporting)
            see(Work::exporting, isRunning);
        else if (kind == Activity::Kind::publishing)
            see(Work::publication, isRunning);
    });
}

void DesktopNotices::follow(const LocalAIManager& manager)
{
    connect(&manager, &LocalAIManager::changed, this,
            [this, &manager] { see(Work::installation, manager.isInstallingGemma()); });
}

void DesktopNotices::see(Work work, bool isRunning)
{
    if (isRunning) {
        if (!m_begun.contains(work))
            m_begun.insert(work, m_clock());
        return;
    }
    const auto begun = m_begun.constFind(work);
    if (begun == m_begun.constEnd())
        return;
    const bool wasLong = m_clock() - *begun > longWork;
    m_begun.erase(begun);
    if (!wasLong || m_isQuiet())
        return;
    static const std::array titles{
        u"La generación de textos ha terminado"_s, u"La exportación ha terminado"_s,
        u"La publicación ha terminado"_s, u"La instalación de la IA local ha terminado"_s};
    m_desktop.notify({titles[std::size_t(work)], u"Abre Moltiva para ver el resultado."_s});
}
