#include "app/settings/UpdatesBinding.h"

#include "account/AccountSession.h"
#include "account/AccountTexts.h"
#include "app/desktop/UpdateController.h"
#include "app/settings/UpdatesDetailPanel.h"

UpdatesBinding::UpdatesBinding(UpdateController& updates, AccountSession& account,
                               UpdatesDetailPanel* panel)
    : QObject(panel), m_updates(updates), m_panel(panel)
{
    connect(panel, &UpdatesDetailPanel::checkRequested, &updates,
            &UpdateController::checkForUpdates);
    connect(panel, &UpdatesDetailPanel::downloadRequested, this,
            [this, &account](const QUrl& address) {
                if (!account.openPage(address))
                    m_panel->tellProblem(shownText(account.message()));
            });
    connect(&updates, &UpdateController::told, this,
            [this](const QString& sentence, bool isProblem) {
                if (isProblem)
                    m_panel->tellProblem(sentence);
            });
    connect(&updates, &UpdateController::changed, this, &UpdatesBinding::show);
    show();
}

void UpdatesBinding::show()
{
    const OfferedVersion offered = m_updates.offered();
    m_panel->setLatest(offered.version, offered.download);
    m_panel->setChecking(m_updates.isChecking());
}
