#include "app/export/ExportBinding.h"

#include "account/AccountSession.h"
#include "app/batch/BatchBinding.h"
#include "app/controls/CostButton.h"
#include "app/export/ExportDialogs.h"
#include "studio/StudioSession.h"

using namespace Qt::StringLiterals;

ExportBinding::ExportBinding(StudioSession& session, AccountSession& account,
                             const BatchBinding& column, ExportButtons* buttons,
                             PreferencesStore& preferences, QWidget* window)
    : m_session(session), m_account(account), m_batchBinding(column), m_buttons(buttons),
      m_dialogs(new ExportDialogs(session, preferences, window))
{
    connect(m_dialogs, &ExportDialogs::fileChosen, &session, &StudioSession::exportItem);
    connect(m_dialogs, &ExportDialogs::folderChosen, &session.exports(),
            &StudioExports::exportItems);
    connect(&session, &StudioSession::costsChanged, this, &ExportBinding::show);
    connect(&session, &StudioSession::activityChanged, this, &ExportBinding::show);
    connect(&account, &AccountSession::changed, this, &ExportBinding::show);
}

ExportOffer ExportBinding::offer() const
{
    const Batch& batch = m_session.batch();
    const qint64 balance = m_account.account().balance;
    const auto atMost = [](qsizetype images) { return images * exportCreditCost; };
    return {.images = batch.items.size(),
            .selected = m_session.selectedIndicesForBatch().size(),
            .isRunning = m_session.isExporting(),
            .isIncoming = m_batchBinding.showsIncoming(),
            .current = {m_session.displayedExportCurrentCost(), balance, atMost(1)},
            .several = {m_session.displayedExportAllCost(), balance,
                        atMost(m_session.exports().exportIndices().size())}};
}

void ExportBinding::show()
{
    // Uses focusWidget() instead of hasFocus(): while a file dialog is active, focusWidget() is the
    // widget that gets the focus back afterwards.
    const bool hadFocus = m_buttons->focusOrder().contains(m_buttons->window()->focusWidget());
    m_buttons->setOffer(offer());
    if (hadFocus && !m_buttons->current()->isEnabled())
        Q_EMIT leaveRequested();
}

// Returns whether exporting is impossible now, and then tells the user why. A shortcut requests an
// export even while the buttons are disabled.
bool ExportBinding::refuses()
{
    const QString refusal = refusalOf(offer());
    if (!refusal.isEmpty())
        m_session.setStatus(refusal);
    return !refusal.isEmpty();
}

void ExportBinding::exportCurrent()
{
    const PublicationItem* item = m_session.batch().currentItem();
    exportItem(item ? item->id : QUuid());
}

void ExportBinding::exportItem(QUuid item)
{
    if (!refuses())
        m_dialogs->chooseFile(item);
}

void ExportBinding::exportSeveral()
{
    if (refuses())
        return;
    QList<QUuid> items;
    for (const int index : m_session.exports().exportIndices())
        items.append(m_session.batch().items[index].id);
    m_dialogs->chooseFolder(items);
}
