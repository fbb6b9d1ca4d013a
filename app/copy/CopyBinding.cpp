#include "app/copy/CopyBinding.h"

#include "account/AccountSession.h"
#include "account/AccountTexts.h"
#include "app/copy/ComposeBar.h"
#include "app/copy/EngineRow.h"
#include "copygen/LocalAIManager.h"
#include "copygen/LocalAIService.h"
#include "studio/StudioSession.h"

using namespace Qt::StringLiterals;

namespace {

const QString cloudIsOff = u"La IA en nube está desactivada en Tallerio."_s;

// The row has room for the size of what would be downloaded.
QString absentSentence(const LocalAIManager& manager)
{
    const QString detail = manager.gemmaStatus().detail;
    if (manager.canResume() || !detail.startsWith(u"No instalado."))
        return detail;
    QString size = formatBytes(manager.downloadSize());
    size.replace(u' ', QChar::Nbsp);
    return u"No instalado. Descarga: %1."_s.arg(size);
}

}    // namespace

CopyBinding::CopyBinding(StudioSession& session, AccountSession& account, ComposeBar* bar,
                         EngineRow* row)
    : m_session(session), m_account(account), m_bar(bar), m_row(row)
{
    connectBar();
    connectRow();
    connect(&session, &StudioSession::copyChanged, this, &CopyBinding::show);
    connect(&session, &StudioSession::generationModeChanged, this, &CopyBinding::show);
    connect(&session, &StudioSession::activityChanged, this, [this](Activity::Kind kind) {
        if (kind == Activity::Kind::importing)
            show();
    });
    connect(&session.copy(), &StudioCopy::starting, bar, &ComposeBar::finishEdit);
    connect(&account, &AccountSession::changed, this, &CopyBinding::show);
    show();
}

void CopyBinding::connectBar()
{
    connect(m_bar, &ComposeBar::modeChosen, &m_session, &StudioSession::setGenerationMode);
    connect(m_bar, &ComposeBar::cancelRequested, &m_session.copy(), &StudioCopy::cancel);
}

void CopyBinding::connectRow()
{
    connect(m_row, &EngineRow::installRequested, this, [this] {
        if (m_manager)
            m_manager->installGemma();
    });
    connect(m_row, &EngineRow::cancelRequested, this, [this] {
        if (m_manager)
            m_manager->cancelInstall();
    });
    connect(m_row, &EngineRow::licenceRequested, this, [this] {
        if (m_manager)
            m_account.openPage(m_manager->licenceURL());    // tells what fails
    });
    connect(m_row, &EngineRow::settingsRequested, this, &CopyBinding::settingsRequested);
}

void CopyBinding::setLocalEngine(LocalAIManager& manager, const LocalAIService& service)
{
    m_manager = &manager;
    m_service = &service;
    connect(&manager, &LocalAIManager::changed, this, &CopyBinding::followManager);
    show();
}

// Tells in the status line how an installation or its removal has ended.
void CopyBinding::followManager()
{
    const bool isBusy = m_manager->isInstallingGemma() || m_manager->isUninstalling();
    const bool hasEnded = m_wasBusy && !isBusy;
    m_wasBusy = isBusy;
    show();
    const QString message = shownLine(m_manager->installMessage());
    if (hasEnded && !message.isEmpty())
        m_session.setStatus(message, m_manager->hasFailed() ? StatusKind::error : StatusKind::done);
}

void CopyBinding::show()
{
    m_bar->setState(composeState());
    const bool isInstalling = m_manager && m_manager->isInstallingGemma();
    if (m_session.generationMode() == CopyGenerationMode::cloud && !isInstalling)
        m_row->setShown(cloudShown());
    else
        m_row->setShown(engineShown());
}

ComposeState CopyBinding::composeState() const
{
    const StudioCopy& copy = m_session.copy();
    const CloudCopyConfig& config = m_account.cloudCopyConfig();
    const Activity* import = m_session.activities().find(Activity::Kind::importing);
    ComposeState state{.mode = m_session.generationMode()};
    state.credits = {row(CopyGenerationMode::local).cost, config.costCredits};
    state.cloudRefusal = config.enabled ? QString() : cloudIsOff;
    state.offer = {.images = m_session.selectedIndicesForBatch().size(),
                   .mostImages = m_session.batch().items.size(),
                   .refusal = copy.whyNotGenerate()};
    if (import && !import->incoming.isEmpty())
        state.offer.refusal = u"Espera a que termine la importación."_s;
    if (state.mode == CopyGenerationMode::cloud)
        state.offer.cost = Cost{.credits = copy.cost(),
                                .balance = m_account.account().balance,
                                .most = config.costCredits * state.offer.mostImages};
    if (m_session.isAnalyzing()) {
        state.mode = copy.runMode();
        state.run = ComposeRun{.position = copy.position(),
                               .finished = copy.finished(),
                               .total = copy.total(),
                               .isStopping = copy.isStopping()};
    }
    return state;
}

EngineShown CopyBinding::cloudShown() const
{
    const CloudCopyConfig& config = m_account.cloudCopyConfig();
    return {.look = EngineLook::cloud,
            .name = u"IA en la nube"_s,
            .sentence = config.enabled ? u"%1 por imagen."_s.arg(creditsText(config.costCredits))
                                       : cloudIsOff};
}

EngineShown CopyBinding::engineShown() const
{
    if (!m_manager)
        return {.name = row(LocalAIEngine::gemma4E2B).title.toString()};
    EngineShown shown{.name = m_manager->engineTitle()};
    const LocalAIEngineStatus status = m_manager->gemmaStatus();
    if (m_manager->isInstallingGemma()) {
        const InstallMessage& message = m_manager->installMessageParts();
        const bool isElsewhere = m_manager->isInstallingElsewhere();
        shown.look = EngineLook::installing;
        shown.sentence = message.work;
        shown.aside = isElsewhere ? u"en otra ventana"_s : message.remaining;
        shown.canCancel = !isElsewhere;
        shown.progress = m_manager->installProgress();
    } else if (m_manager->isUninstalling()) {
        shown.sentence = u"Desinstalando…"_s;
    } else if (m_manager->canGenerate()) {
        shown.look = EngineLook::ready;
        shown.sentence = status.detail;
        if (const auto last = m_service->lastDuration()) {
            const auto seconds = std::chrono::round<std::chrono::seconds>(*last);
            shown.aside = u"última imagen: %1"_s.arg(formatDuration(seconds.count()));
        }
    } else if (m_manager->hasFailed()) {
        shown.look = EngineLook::failed;
        shown.sentence = m_manager->installMessage();
    } else if (!m_manager->needsInstallation()) {
        shown.sentence = status.detail;    // why the configured engine cannot be used
    } else {
        shown.look = EngineLook::absent;
        shown.sentence = absentSentence(*m_manager);
        shown.about =
            QString(m_manager->engineSubtitle() + u' ' + m_manager->machineNote()).trimmed();
        shown.hasLicence = !m_manager->licenceURL().isEmpty();
    }
    return shown;
}
