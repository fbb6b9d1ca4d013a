#include "app/export/ExportBinding.h"

#include "account/AccountSession.h"
#include "app/batch/BatchBinding.h"
#include "app/controls/CostButton.h"
#include "app/controls/StatusLine.h"
#include "app/export/ExportDialogs.h"
#include "studio/StudioSession.h"

#include <QDesktopServices>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {
constexpr std::chrono::seconds exportLongestWait{5};
}

ExportBinding::ExportBinding(StudioSession& session, AccountSession& account,
                             const BatchBinding& column, ExportButtons* buttons,
                             StatusLine* statusLine, PreferencesStore& preferences, QWidget* window)
    : m_session(session), m_account(account), m_column(column), m_buttons(buttons),
      m_statusLine(statusLine), m_dialogs(new ExportDialogs(session, preferences, window))
{
    m_closing.setSingleShot(true);
    m_closing.setInterval(exportLongestWait);
    connect(&m_closing, &QTimer::timeout, this, [this] {
        m_hasWaited = true;
        Q_EMIT closeRequested();
    });
    connect(m_dialogs, &ExportDialogs::fileChosen, &session, &StudioSession::exportItem);
    connect(m_dialogs, &ExportDialogs::folderChosen, &session, &StudioSession::exportItems);
    connect(m_statusLine, &StatusLine::stopRequested, this, &ExportBinding::stop);
    connect(m_statusLine, &StatusLine::linkRequested, this, &ExportBinding::followLink);
    connect(&session, &StudioSession::costsChanged, this, &ExportBinding::show);
    connect(&session, &StudioSession::exportChanged, this, &ExportBinding::exportChanged);
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
            .isIncoming = m_column.showsIncoming(),
            .current = {m_session.displayedExportCurrentCost(), balance, atMost(1)},
            .several = {m_session.displayedExportAllCost(), balance,
                        atMost(m_session.exportIndices().size())}};
}

void ExportBinding::show()
{
    // Also while a chooser has the keyboard: the window remembers what it gives it back to.
    const bool hadFocus = m_buttons->focusOrder().contains(m_buttons->window()->focusWidget());
    m_buttons->setOffer(offer());
    if (hadFocus && !m_buttons->current()->isEnabled())
        Q_EMIT leaveRequested();
}

// A key asks at any time.
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
    for (const int index : m_session.exportIndices())
        items.append(m_session.batch().items[index].id);
    m_dialogs->chooseFolder(items);
}

void ExportBinding::stop()
{
    if (m_session.isExporting())
        m_session.stopExport();
    else
        m_session.stopImport();
}

void ExportBinding::exportChanged()
{
    show();
    Q_EMIT statusOutdated();
    if (m_closing.isActive() && !m_session.isExporting()) {
        m_closing.stop();
        // The session is in the middle of telling everybody.
        QMetaObject::invokeMethod(this, &ExportBinding::closeRequested, Qt::QueuedConnection);
    }
}

Status ExportBinding::completed(Status told) const
{
    const StatusLink& link = m_session.statusLink();
    if (!m_session.isExporting() && link.isPurchase)
        told.link = u"Comprar créditos"_s;
    else if (!m_session.isExporting() && !link.folder.isEmpty())
        told.link = u"Abrir carpeta"_s;
    if (m_session.isExporting() && m_closing.isActive())
        told = {.sentence = u"Terminando la exportación antes de cerrar…"_s};
    return told;
}

Status ExportBinding::withProgress(Status told) const
{
    const std::optional<ExportProgress>& progress = m_session.exportProgress();
    if (!progress)
        return told;
    if (told.kind == StatusKind::info)
        told.kind = StatusKind::busy;
    told.goesOn = true;
    told.stoppable = !m_closing.isActive();
    told.progress.reset();
    // Nobody knows how long a reservation takes.
    if (progress->total > 0 && progress->stage != ExportProgress::Stage::charging)
        told.progress = double(progress->done) / double(progress->total);
    return told;
}

bool ExportBinding::delaysClosing()
{
    if (!m_session.isExporting() || m_hasWaited)
        return false;
    if (!m_closing.isActive()) {
        m_session.stopExport();
        if (!m_session.isExporting())
            return false;
        m_closing.start();
        Q_EMIT statusOutdated();
    }
    return true;
}

void ExportBinding::followLink()
{
    const QString folder = m_session.statusLink().folder;
    if (m_session.statusLink().isPurchase)
        return m_session.setAccountPanel(AccountPanelDestination::credits);
    if (folder.isEmpty())
        return;
    // Some systems say that they opened what is not there any more.
    if (!QFileInfo(folder).isDir() || !QDesktopServices::openUrl(QUrl::fromLocalFile(folder)))
        m_session.setStatus(u"No se ha podido abrir la carpeta."_s, StatusTone::problem);
}
