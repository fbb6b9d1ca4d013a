#pragma once

#include "account/CreditJournal.h"
#include "studio/WorkspaceEncoder.h"
#include "studio/WorkspaceStore.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QUuid>

enum class StatusKind;

// Storage of the batch across restarts: when it is stored and restored, a document set aside
// because it could not be restored, and which of two windows may store.
class Workspace : public QObject {
    Q_OBJECT
public:
    // `preferences` outlive it. Nothing is stored before the restore has ended.
    Workspace(std::shared_ptr<PhotoCache> photos, PreferencesStore& preferences);

    // Call once. Restores the stored batch on the workers if the studio `isEmpty`; else only ends
    // the restore.
    void restore(bool isEmpty);
    bool isRestoring() const { return m_restore == Restore::running; }
    bool didRestore() const { return m_restore == Restore::done; }

    // Whether a document is set aside: a saved batch that a start could restore only in part. It
    // stays aside until it can be restored whole.
    bool hasAside() const;
    void restoreAside();
    // Drops the last document set aside: all of it is in the batch again.
    void clearAside();

    void save(const Batch& batch);
    // Emits saveDue() when no further call comes for a moment.
    void saveSoon();
    bool isSaveDue() const { return m_saveLater.isActive(); }
    bool hasFailed() const { return m_saveFailed; }
    // Calls `strike` in the transaction of the next save.
    void strikeWithNextSave(const Strike& strike) { m_strikes.append(strike); }

    // The preferences store's problem, once; empty for none.
    QString takeProblem();

Q_SIGNALS:
    void saveDue();
    void told(const QString& sentence, StatusKind kind);
    void restoreProgressed(qsizetype looked, qsizetype total);
    // Empty when no batch was restored.
    void restored(const std::optional<Batch>& batch);
    void asideRestoring();
    void asideRestored(const WorkspaceStore::Restored& restored);

private:
    enum class Restore { notYet, running, done };

    static QCoro::Task<> runRestore(QPointer<Workspace> self, QByteArray document,
                                    std::shared_ptr<PhotoCache> photos);
    void finishRestore(const WorkspaceStore::Restored& restored, const QByteArray& document);
    static QCoro::Task<> runRestoreAside(QPointer<Workspace> self, QByteArray document,
                                         std::shared_ptr<PhotoCache> photos);
    bool claimStore();
    bool store(const Batch& batch);
    void keepWhatIsStored();
    QString failedSaving() const;

    std::shared_ptr<PhotoCache> m_photos;
    PreferencesStore& m_preferences;
    WorkspaceEncoder m_encoder;
    Restore m_restore = Restore::notYet;
    bool m_isRestoringAside = false;
    QTimer m_saveLater;                         // runs while a change waits to be stored
    bool m_isStoredUnseen = false;              // the store was unreadable at restore()
    std::optional<QByteArray> m_notYetAside;    // the document to set aside before the next save
    bool m_saveFailed = false;                  // the last save failed, and told() said so
    const QByteArray m_writer = QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
    // Writer at the restore, which this window may replace.
    std::optional<QByteArray> m_writerSeen;
    bool m_isStoreOfAnother = false;    // another window began to store after this one
    QList<Strike> m_strikes;            // for the next save
};
