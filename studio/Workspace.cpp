#include "studio/Workspace.h"

#include "platform/PreferencesStore.h"
#include "studio/StatusLog.h"

#include <QElapsedTimer>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds restBeforeSaving = 50ms, pauseBeforeRetry = 5s;

QElapsedTimer startedWatch()
{
    QElapsedTimer watch;
    watch.start();
    return watch;
}

}    // namespace

Workspace::Workspace(std::shared_ptr<PhotoCache> photos, PreferencesStore& preferences)
    : m_photos(std::move(photos)), m_preferences(preferences)
{
    m_saveLater.setSingleShot(true);
    connect(&m_saveLater, &QTimer::timeout, this, &Workspace::saveDue);
}

void Workspace::saveSoon()
{
    if (didRestore())
        m_saveLater.start(restBeforeSaving);
}

// Makes this window the writer. Returns false if that fails or another window has become the
// writer. Two windows can run at once when the lock file cannot be created, as on a full disk.
bool Workspace::claimStore()
{
    const auto writer = WorkspaceStore::writer(m_preferences);
    // A store newly created in place of a damaged one has no writer.
    m_isStoreOfAnother = writer && writer != m_writerSeen && writer != m_writer;
    return !m_isStoreOfAnother &&
           (writer == m_writer || WorkspaceStore::setWriter(m_preferences, m_writer));
}

// Stores the batch and calls `m_strikes`, which remove the credit journal's entries for its
// payments. One transaction: all of it happens, or nothing.
bool Workspace::store(const Batch& batch)
{
    const auto save = [&] {
        return claimStore() && WorkspaceStore::save(m_preferences, m_encoder, batch) &&
               std::ranges::all_of(m_strikes, [](const Strike& strike) { return strike(); });
    };
    const bool isStored = m_preferences.transaction(save);
    if (isStored)
        m_strikes.clear();
    return isStored;
}

void Workspace::save(const Batch& batch)
{
    m_saveLater.stop();
    if (!didRestore() || m_isStoreOfAnother)
        return;
    setAsideUnreadStore();
    const bool isAside = !m_notYetAside || WorkspaceStore::setAside(m_preferences, *m_notYetAside);
    if (isAside)
        m_notYetAside.reset();
    if (!isAside || !store(batch)) {
        const bool isNews = !std::exchange(m_saveFailed, true) || m_isStoreOfAnother;
        if (!m_isStoreOfAnother)
            m_saveLater.start(pauseBeforeRetry);
        if (isNews)
            Q_EMIT told(failedSaving(), StatusKind::warning);
    } else if (std::exchange(m_saveFailed, false)) {
        Q_EMIT told(u"La sesión vuelve a guardarse."_s, StatusKind::done);
        if (const QString problem = takeProblem(); !problem.isEmpty())
            Q_EMIT told(problem, StatusKind::warning);
    }
}

QString Workspace::failedSaving() const
{
    if (m_isStoreOfAnother) {
        return u"Otra ventana de Moltiva guarda ahora el lote: lo que cambies en esta no se "
               "guardará."_s;
    }
    return u"No se pudo guardar la sesión: %1. Puedes seguir: se vuelve a intentar con cada cambio."_s
        .arg(m_preferences.reason());
}

QString Workspace::takeProblem()
{
    return m_preferences.takeProblem();
}

// If the store could not be read at restore() and can be opened only now, protects the batch in it
// from being overwritten.
void Workspace::setAsideUnreadStore()
{
    if (!m_wasStoreUnreadable || !m_preferences.open())
        return;
    m_wasStoreUnreadable = false;
    m_writerSeen = WorkspaceStore::writer(m_preferences);
    if (const auto document = WorkspaceStore::stored(m_preferences))
        m_notYetAside = *document;
}

void Workspace::restore(bool isEmpty)
{
    if (m_restore != Restore::notYet)
        return;
    m_restore = Restore::running;
    m_wasStoreUnreadable = !m_preferences.isReadable();
    m_writerSeen = WorkspaceStore::writer(m_preferences);
    const auto document = WorkspaceStore::stored(m_preferences);
    if (document && isEmpty)
        runRestore(this, *document, m_photos);
    else
        finishRestore({}, {});
}

QCoro::Task<> Workspace::runRestore(QPointer<Workspace> self, QByteArray document,
                                    std::shared_ptr<PhotoCache> photos)
{
    const auto looked = [self, watch = startedWatch()](qsizetype count, qsizetype total) {
        constexpr qint64 worthTelling = 300;    // ms
        if (self && watch.elapsed() > worthTelling)
            Q_EMIT self->restoreProgressed(count, total);
    };
    auto restoring = WorkspaceStore::restore(document, photos, looked);
    WorkspaceStore::Restored restored{std::nullopt, false, false};
    try {
        restored = co_await restoring;
    } catch (const std::exception&) {
        // Out of memory: treated like a document that cannot be read.
        restored.workspace.reset();
    }
    if (self)
        self->finishRestore(restored, document);
}

void Workspace::finishRestore(const WorkspaceStore::Restored& restoredNow,
                              const QByteArray& document)
{
    m_restore = Restore::done;
    if (!restoredNow.isComplete && !WorkspaceStore::setAside(m_preferences, document))
        m_notYetAside = document;
    const bool isOfNoUse = !restoredNow.workspace && restoredNow.isDecoded && !document.isEmpty();
    if (isOfNoUse && !m_notYetAside)
        WorkspaceStore::clear(m_preferences);
    Q_EMIT restored(restoredNow.workspace);
}

bool Workspace::hasAside() const
{
    return WorkspaceStore::hasAside(m_preferences);
}

void Workspace::restoreAside()
{
    if (m_isRestoringAside)
        return;
    const auto document = WorkspaceStore::storedAside(m_preferences);
    if (!document || !didRestore()) {
        Q_EMIT told(u"No hay ninguna sesión apartada."_s, StatusKind::note);
        return;
    }
    m_isRestoringAside = true;
    Q_EMIT asideRestoring();
    runRestoreAside(this, *document, m_photos);
}

QCoro::Task<> Workspace::runRestoreAside(QPointer<Workspace> self, QByteArray document,
                                         std::shared_ptr<PhotoCache> photos)
{
    auto restoring = WorkspaceStore::restore(document, photos, {});
    WorkspaceStore::Restored restored{std::nullopt, false, false};
    try {
        restored = co_await restoring;
    } catch (const std::exception&) {
        restored.workspace.reset();
    }
    if (!self)
        co_return;
    self->m_isRestoringAside = false;
    Q_EMIT self->asideRestored(restored);
}

void Workspace::clearAside()
{
    if (!m_saveFailed)
        WorkspaceStore::clearAside(m_preferences);
}
