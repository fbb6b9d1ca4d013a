#include "app/settings/LocalAIBinding.h"

#include "app/settings/LocalAIDetailPanel.h"
#include "copygen/LocalAIManager.h"

#include <QCoroFuture>
#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;

LocalAIBinding::LocalAIBinding(LocalAIManager& manager, LocalAIDetailPanel* panel)
    : QObject(panel), m_manager(manager), m_panel(panel)
{
    connect(&manager, &LocalAIManager::changed, this, &LocalAIBinding::show);
    connect(panel, &LocalAIDetailPanel::uninstallPressed, this, [this] { askUninstall(); });
    connect(panel, &LocalAIDetailPanel::uninstallConfirmed, this,
            [this] { m_manager.uninstallGemma(); });
    show();
}

QCoro::Task<> LocalAIBinding::askUninstall()
{
    if (std::exchange(m_isAddingUp, true))
        co_return;
    const QPointer<LocalAIBinding> self(this);
    const qint64 size = co_await m_manager.installedSize();
    if (!self)
        co_return;
    m_isAddingUp = false;
    if (m_panel->isVisible() && shown().presence == LocalAIPresence::installed)
        m_panel->askUninstall(formatBytes(size));
}

void LocalAIBinding::show()
{
    m_panel->setShown(shown());
}

LocalAIShown LocalAIBinding::shown() const
{
    LocalAIShown shown{.name = m_manager.engineTitle(),
                       .about = m_manager.engineSubtitle(),
                       .status = m_manager.gemmaStatus().detail};
    if (m_manager.isInstallingGemma())
        shown.presence = LocalAIPresence::installing;
    else if (m_manager.isUninstalling())
        shown.presence = LocalAIPresence::uninstalling;
    else if (!m_manager.needsInstallation())
        shown.presence = LocalAIPresence::foreign;
    else if (m_manager.gemmaStatus().isInstalled)
        shown.presence = LocalAIPresence::installed;
    if (m_manager.hasFailed())
        shown.failure = m_manager.installMessage();
    if (shown.presence != LocalAIPresence::installing)
        return shown;
    shown.message = m_manager.installMessage();
    shown.progress = m_manager.installProgress();
    shown.stages = m_manager.installStages();
    shown.stage = m_manager.installStage();
    if (const auto total = m_manager.installTotalBytes())
        shown.amount =
            u"%1 de %2"_s.arg(formatBytes(m_manager.installDownloadedBytes()), formatBytes(*total));
    return shown;
}
