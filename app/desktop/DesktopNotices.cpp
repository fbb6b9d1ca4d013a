#include "app/desktop/DesktopNotices.h"

#include "account/AccountTexts.h"
#include "copygen/LocalAIManager.h"
#include "platform/Desktop.h"
#include "studio/StudioSession.h"

#include <array>

using namespace Qt::StringLiterals;

DesktopNotices::DesktopNotices(Desktop& desktop, std::function<bool()> isQuiet, Clock clock,
                               QObject* parent)
    : QObject(parent), m_desktop(desktop), m_isQuiet(std::move(isQuiet)), m_clock(std::move(clock))
{
}

void DesktopNotices::follow(const StudioSession& session)
{
    connect(&session, &StudioSession::activityChanged, this, [this, &session](Activity::Kind kind) {
        if (!session.activities().find(kind))
            return;
        if (kind == Activity::Kind::generating)
            begin(Work::generation);
        else if (kind == Activity::Kind::exporting)
            begin(Work::exporting);
        else if (kind == Activity::Kind::publishing)
            begin(Work::publication);
    });
    connect(&session.copy(), &StudioCopy::ended, this, [this](const CopyOutcome& outcome) {
        const bool isStopped = outcome.state == CopyOutcome::State::cancelled;
        end(Work::generation, isStopped ? End::stopped : End::own, outcome.sentence());
    });
    // Exports and publications that the user has stopped are told as a note.
    const auto endOf = [](StatusKind kind) {
        return kind == StatusKind::note ? End::stopped : End::own;
    };
    connect(&session.exports(), &StudioExports::told, this,
            [this, &session, endOf](const QString& sentence, StatusKind kind) {
                if (!session.exports().progress())    // not a warning at the start
                    end(Work::exporting, endOf(kind), sentence);
            });
    connect(&session.publish(), &StudioPublish::told, this,
            [this, endOf](const QString& sentence, StatusKind kind) {
                end(Work::publication, endOf(kind), sentence);
            });
}

void DesktopNotices::follow(const LocalAIManager& manager)
{
    connect(&manager, &LocalAIManager::changed, this, [this, &manager] {
        if (manager.isInstallingGemma())
            return begin(Work::installation);
        const QString sentence = shownLine(manager.installMessage());
        // Another program's installation leaves no sentence, but a state of the engine.
        end(Work::installation, manager.isInstallationCancelled() ? End::stopped : End::own,
            sentence.isEmpty() ? manager.gemmaStatus().detail : sentence);
    });
}

void DesktopNotices::begin(Work work)
{
    if (!m_begun.contains(work))
        m_begun.insert(work, m_clock());
}

void DesktopNotices::end(Work work, End how, const QString& sentence)
{
    const auto begun = m_begun.constFind(work);
    if (begun == m_begun.constEnd())
        return;
    const bool wasLong = m_clock() - *begun > longWork;
    m_begun.erase(begun);
    if (!wasLong || how == End::stopped || m_isQuiet())
        return;
    static const std::array titles{u"Generación de textos"_s, u"Exportación"_s, u"Publicación"_s,
                                   u"Instalación de la IA local"_s};
    m_desktop.notify({titles[std::size_t(work)], sentence});
}
