#include "studio/StudioSession.h"

#include "account/AccountSession.h"
#include "model/PlainText.h"
#include "studio/batch/BatchSelection.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

QString unreadableSentence(qsizetype files)
{
    return files == 1 ? u"1 no se ha podido leer."_s : u"%1 no se han podido leer."_s.arg(files);
}

StatusKind kindOf(const CopyOutcome& outcome)
{
    switch (outcome.state) {
    case CopyOutcome::State::done:
        return outcome.unanswered > 0 || !outcome.reason.isEmpty() || !outcome.notes.isEmpty()
                   ? StatusKind::warning
                   : StatusKind::done;
    case CopyOutcome::State::cancelled:
        return StatusKind::note;
    case CopyOutcome::State::refused:
        return StatusKind::warning;
    case CopyOutcome::State::failing:
        return StatusKind::error;
    }
    Q_UNREACHABLE();
}

}    // namespace

StudioSession::StudioSession(std::shared_ptr<PhotoCache> photos, PreferencesStore& preferences,
                             Clock clock, const OutputSize& outputSize)
    : m_log(clock), m_editing(clock), m_workspace(photos, preferences), m_imports(photos, clock),
      m_exports(photos, outputSize, chargeServices()), m_copy(copyServices(), preferences),
      m_publish(photos, outputSize, chargeServices(), m_exports.costs(), preferences)
{
    setStatus(u"Importa una imagen o una carpeta para empezar."_s);
    connect(&m_log, &StatusLog::changed, this, &StudioSession::statusChanged);

    connect(&m_editing, &Editing::aboutToMove, this, &StudioSession::aboutToMove);
    connect(&m_editing, &Editing::changed, this, &StudioSession::followChange);

    connect(&m_workspace, &Workspace::saveDue, this, &StudioSession::saveWorkspace);
    connect(&m_workspace, &Workspace::told, this,
            [this](const QString& sentence, StatusKind kind) { setStatus(sentence, kind); });
    connect(&m_workspace, &Workspace::restoreProgressed, this,
            [this](qsizetype looked, qsizetype total) {
                setActivity({.kind = Activity::Kind::restoring, .done = looked, .total = total});
                m_log.tellStep(Activity::Kind::restoring,
                               u"Restaurando sesión: %1 de %2"_s.arg(looked).arg(total));
            });
    connect(&m_workspace, &Workspace::restored, this, &StudioSession::finishRestore);
    connect(&m_workspace, &Workspace::asideRestoring, this, [this] {
        setActivity({.kind = Activity::Kind::restoring});
        m_log.tellStep(Activity::Kind::restoring, u"Recuperando la sesión apartada…"_s);
    });
    connect(&m_workspace, &Workspace::asideRestored, this, &StudioSession::finishRestoreAside);

    connect(&m_imports, &StudioImports::progressed, this, &StudioSession::showImport);
    connect(&m_imports, &StudioImports::ended, this, &StudioSession::finishImport);

    // Connected first, so that m_exports knows the new batch before other receivers of
    // batchChanged() ask for its prices.
    connect(this, &StudioSession::batchChanged, &m_exports, [this] { m_exports.follow(batch()); });
    connect(&m_exports, &StudioExports::working, this, [this](const QString& sentence) {
        m_log.tellStep(Activity::Kind::exporting, sentence);
    });
    connect(&m_exports, &StudioExports::told, this, &StudioSession::setStatus);
    connect(&m_exports, &StudioExports::toldMore, this, [this](const QString& sentence) {
        const StatusEntry told = m_log.current();
        // A sentence on the progress of an activity is not extended: it will soon be replaced.
        if (told.kind == StatusKind::working)
            setStatus(sentence.trimmed(), StatusKind::done);
        else
            setStatus(told.sentence + sentence, told.kind, told.link);
    });
    connect(&m_exports, &StudioExports::changed, this, &StudioSession::followExport);
    connect(&m_exports, &StudioExports::costsChanged, this, &StudioSession::costsChanged);

    connect(this, &StudioSession::batchChanged, &m_copy, &StudioCopy::follow);
    connect(&m_copy, &StudioCopy::changed, this, &StudioSession::followCopy);
    connect(&m_copy, &StudioCopy::working, this, [this](const QString& sentence) {
        m_log.tellStep(Activity::Kind::generating, sentence);
    });
    connect(&m_copy, &StudioCopy::ended, this, &StudioSession::finishCopy);
    connect(&m_copy, &StudioCopy::told, this,
            [this](const QString& sentence) { setStatus(sentence, StatusKind::done, copyLink()); });

    connect(&m_publish, &StudioPublish::changed, this, &StudioSession::publishChanged);
    connect(&m_publish, &StudioPublish::changed, this, &StudioSession::followPublish);
    connect(&m_publish, &StudioPublish::progressed, this, &StudioSession::followPublish);
    connect(&m_publish, &StudioPublish::working, this, [this](const QString& sentence) {
        m_log.tellStep(Activity::Kind::publishing, sentence);
    });
    connect(&m_publish, &StudioPublish::told, this, &StudioSession::setStatus);
}

StudioSession::~StudioSession()
{
    if (m_workspace.isSaveDue())
        saveWorkspace();
}

void StudioSession::followChange(Editing::Outcome outcome, Pace pace)
{
    if (outcome == Editing::Outcome::nothing) {
        // When the user lets go of a slider or key, the batch no longer changes, but its last
        // change may not be stored yet.
        if (pace == Pace::once && m_workspace.isSaveDue())
            saveWorkspace();
        return;
    }
    // Keeps the sentence about a failed save, which is still true after an edit.
    if (outcome == Editing::Outcome::edit && !m_workspace.hasFailed())
        m_log.outdate();
    if (!m_editing.isGestureActive()) {
        // Changes that follow each other quickly, as when an arrow key is held down, are stored
        // together after a pause.
        if (outcome == Editing::Outcome::selection || pace == Pace::held)
            m_workspace.saveSoon();
        else
            saveWorkspace();
    }
    Q_EMIT batchChanged();
}

void StudioSession::setActivity(const Activity& activity)
{
    m_activities.set(activity);
    Q_EMIT activityChanged(activity.kind);
}

void StudioSession::endActivity(Activity::Kind kind)
{
    m_activities.end(kind);
    m_log.endSteps(kind);
    Q_EMIT activityChanged(kind);
}

Batch StudioSession::withPayments(Batch batch)
{
    m_payments.exchange(batch);
    return batch;
}

void StudioSession::finishRestore(const std::optional<Batch>& restored)
{
    m_editing.start();
    if (restored && batch().items.isEmpty()) {
        Batch whole = withPayments(*restored);
        const qsizetype paidCopies = m_copy.applyPaid(whole);
        m_editing.replace(whole);
        QString sentence = u"Sesión restaurada con %1 imagen(es)."_s.arg(batch().items.size());
        if (paidCopies > 0) {
            sentence += u" Con los textos de la nube que ya estaban pagados de %1."_s.arg(
                counted(paidCopies, u"imagen", u"imágenes"));
            saveWorkspace();
        }
        setStatus(sentence, StatusKind::done);
    }
    const bool isAside = hasWorkspaceAside() || m_workspace.isAsideDue();
    m_copy.dropPaid(isAside ? PaidCopies::Others::mayReturn : PaidCopies::Others::areGone);
    if (const QString problem = m_workspace.takeProblem(); !problem.isEmpty())
        setStatus(problem, StatusKind::warning);
    endActivity(Activity::Kind::restoring);
    Q_EMIT batchChanged();
    m_exports.startTelling();
    if (!m_loadAfterRestore.isEmpty())
        load(std::exchange(m_loadAfterRestore, {}));
}

void StudioSession::finishRestoreAside(const WorkspaceStore::Restored& restored)
{
    if (restored.workspace) {
        setStatus(u"Sesión restaurada con %1 imagen(es)."_s.arg(restored.workspace->items.size()),
                  StatusKind::done);
        m_editing.bringBack([&](Batch& batch) {
            batch = withPayments(*restored.workspace);
            m_copy.applyPaid(batch);
        });
        if (restored.isComplete)
            m_workspace.clearAside();
    } else {
        setStatus(u"La sesión apartada sigue sin poder leerse. ¿Falta conectar un disco?"_s,
                  StatusKind::warning);
    }
    endActivity(Activity::Kind::restoring);
}

void StudioSession::load(const QList<QUrl>& filesAndFolders)
{
    if (m_workspace.isRestoring()) {
        m_loadAfterRestore = filesAndFolders;
        return;
    }
    m_log.tellStep(Activity::Kind::importing, u"Buscando imágenes…"_s);
    setActivity({.kind = Activity::Kind::importing, .total = 0, .stop = [this] { stopImport(); }});
    m_imports.start(filesAndFolders);
}

void StudioSession::showImport(const PhotoImport::Progress& progress)
{
    // Leaves a recent problem on screen until the user can have read it.
    if (!m_log.isProblemUnread()) {
        m_log.tellStep(Activity::Kind::importing,
                       u"Importando %1 de %2"_s.arg(progress.looked).arg(progress.total));
    }
    setActivity({.kind = Activity::Kind::importing,
                 .done = progress.looked,
                 .total = progress.total,
                 .stop = [this] { stopImport(); },
                 .incoming = progress.accepted});
}

void StudioSession::stopImport()
{
    m_imports.stop();
    setStatus(u"Importación cancelada. El lote sigue como estaba."_s);
    endActivity(Activity::Kind::importing);
}

void StudioSession::finishImport(const std::optional<PhotoImport::Imported>& imported,
                                 const QString& failure)
{
    // Ends the activity before batchChanged(): receivers show the imported photos instead of the
    // batch while an import is under way.
    m_activities.end(Activity::Kind::importing);
    const auto tell = [&](const QString& sentence, StatusKind kind) {
        const qsizetype unread = imported->unreadable.size();
        if (unread == 0)
            return setStatus(sentence, kind);
        setStatus(sentence + u' ' + unreadableSentence(unread), StatusKind::warning,
                  {.details = imported->unreadable});
    };
    if (imported && !imported->items.isEmpty()) {
        // Tells the user before bringBack() stores the batch, because a sentence about a failed
        // save must come last.
        tell(u"%1 imagen(es) importada(s). Pulsa Generar con Gemma."_s.arg(imported->items.size()),
             StatusKind::done);
        m_editing.bringBack(
            [&](Batch& batch) { BatchSelection::replaceItems(batch, imported->items); });
    } else if (imported) {
        tell(u"No he encontrado imágenes compatibles."_s, StatusKind::warning);
    }
    if (!failure.isEmpty()) {
        setStatus(u"No se pudieron importar las imágenes: %1."_s.arg(failure), StatusKind::warning);
    }
    endActivity(Activity::Kind::importing);
}

void StudioSession::followExport()
{
    const std::optional<ExportProgress>& progress = m_exports.progress();
    if (!progress)
        return endActivity(Activity::Kind::exporting);
    // The time to reserve credits cannot be foreseen, so the total is unknown.
    const bool isCharging = progress->stage == ExportProgress::Stage::charging;
    setActivity({.kind = Activity::Kind::exporting,
                 .done = progress->done,
                 .total = isCharging ? Activity::unknown : progress->total,
                 .stop = [this] { m_exports.stop(); },
                 .delaysClosing = true});
}

void StudioSession::followPublish()
{
    if (!m_publish.isPublishing()) {
        if (m_activities.find(Activity::Kind::publishing))
            endActivity(Activity::Kind::publishing);
        return;
    }
    const PublishProgress progress = m_publish.progress().value_or(PublishProgress());
    Activity activity{.kind = Activity::Kind::publishing, .delaysClosing = true};
    activity.done = progress.done;
    if (progress.total > 0)
        activity.total = progress.total;
    if (progress.canStop)
        activity.stop = [this] { m_publish.stop(); };
    setActivity(activity);
}

void StudioSession::setAccountPanel(std::optional<AccountPanelDestination> panel)
{
    if (std::exchange(m_accountPanel, panel) != panel)
        Q_EMIT presentationChanged();
}

void StudioSession::setAppSettingsPresented(bool presented)
{
    if (std::exchange(m_isAppSettingsPresented, presented) != presented)
        Q_EMIT presentationChanged();
}

void StudioSession::setGenerationMode(CopyGenerationMode mode)
{
    if (m_generationMode == mode)
        return;
    m_generationMode = mode;
    m_copy.setMode(mode);
    Q_EMIT generationModeChanged();
}

void StudioSession::exportCurrent(const QString& path)
{
    if (const PublicationItem* const item = batch().currentItem())
        exportItem(item->id, path);
}

void StudioSession::exportAll(const QString& folder)
{
    QList<QUuid> items;
    for (const int index : m_exports.exportIndices())
        items.append(batch().items[index].id);
    m_exports.exportItems(items, folder);
}

void StudioSession::setAccountSession(AccountSession& account)
{
    m_accountSession = &account;
    connect(&account, &AccountSession::changed, this, &StudioSession::askAboutLink);
    m_exports.setAccount(account);
    m_copy.setAccount(account);
    m_publish.setAccount(account);
}

// Asks the user about a link that would replace the signed-in account, until it is answered.
void StudioSession::askAboutLink()
{
    const bool asks = m_accountSession->asksToChangeAccount();
    if (asks == std::exchange(m_isAskingAboutLink, asks))
        return;
    if (asks)
        m_log.ask(u"¿Cambiar de cuenta con este enlace?"_s,
                  {.actions = {StatusAction::keepAccount, StatusAction::changeAccount}});
    else
        m_log.endQuestion();
}

void StudioSession::setCreditJournal(CreditJournal& journal, const QString& stagingPlace)
{
    m_exports.setJournal(journal, stagingPlace);
    m_copy.setJournal(journal);
    m_publish.setJournal(journal, stagingPlace);
}

ChargeServices StudioSession::chargeServices()
{
    const QPointer<StudioSession> self = this;
    ChargeServices services;
    services.payments = [self] { return self ? self->m_payments : Payments(); };
    services.record = [self](const QList<RenderedOutput>& outputs, const Strike& strike) {
        return self && self->markRenderedOutputsAsPaid(outputs, strike);
    };
    return services;
}

bool StudioSession::markRenderedOutputsAsPaid(const QList<RenderedOutput>& outputs,
                                              const Strike& strike)
{
    m_payments.add(outputs);
    PublicationItems::Change change;
    m_editing.amend([&](Batch& state) { m_payments.exchange(state, change); });
    if (strike)
        m_workspace.strikeWithNextSave(strike);
    saveWorkspace();
    Q_EMIT batchChanged();
    return !m_workspace.hasFailed();
}

CopyServices StudioSession::copyServices()
{
    CopyServices services;
    services.batch = [this]() -> const Batch& { return batch(); };
    services.apply = [this](const Editing::Change& change, const Step& step) {
        m_editing.bringBackQuietly(change, step);
    };
    services.withNextSave = [this](const Strike& work) { m_workspace.strikeWithNextSave(work); };
    services.hindrance = [this] {
        if (m_isTyping || m_editing.isGestureActive() || m_editing.isStepOpen())
            return CopyHindrance::editing;
        return canRedo() ? CopyHindrance::redoable : CopyHindrance::none;
    };
    return services;
}

void StudioSession::setTyping(bool isTyping)
{
    m_isTyping = isTyping;
    m_copy.follow();
}

void StudioSession::followCopy()
{
    if (m_copy.isAnalyzing()) {
        // Local images wait for nobody: closing ends their engine. A cloud image in course is given
        // back first.
        setActivity({.kind = Activity::Kind::generating,
                     .done = m_copy.finished(),
                     .total = m_copy.total(),
                     .stop = [this] { m_copy.cancel(); },
                     .delaysClosing = m_copy.runMode() == CopyGenerationMode::cloud});
    } else if (m_activities.find(Activity::Kind::generating)) {
        endActivity(Activity::Kind::generating);
    }
    Q_EMIT copyChanged();
}

// The actions that the last run offers.
StatusLink StudioSession::copyLink() const
{
    StatusLink link;
    if (m_copy.canRetry())
        link.actions.append(StatusAction::retryCopy);
    if (m_copy.canRecover())
        link.actions.append(StatusAction::recoverTexts);
    if (m_copy.canReplace())
        link.actions.append(StatusAction::replaceEdited);
    return link;
}

void StudioSession::finishCopy(const CopyOutcome& outcome)
{
    StatusLink link = copyLink();
    link.isPurchase = outcome.remedy == CopyOutcome::Remedy::purchase;
    link.details = outcome.unansweredNames;
    setStatus(outcome.sentence(), kindOf(outcome), link);
    saveWorkspace();
}

void StudioSession::act(StatusAction action)
{
    Q_EMIT aboutToMove();
    switch (action) {
    case StatusAction::retryCopy:
        return m_copy.retryUnanswered();
    case StatusAction::recoverTexts:
        return m_copy.recoverOwnTexts();
    case StatusAction::replaceEdited:
        return m_copy.replaceEdited();
    case StatusAction::changeAccount:
        return m_accountSession->answerLink(LinkAnswer::changeAccount);
    case StatusAction::keepAccount:
        return m_accountSession->answerLink(LinkAnswer::keepAccount);
    }
}
