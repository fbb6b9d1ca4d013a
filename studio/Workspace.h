#pragma once

#include "account/CreditJournal.h"
#include "studio/WorkspaceEncoder.h"
#include "studio/WorkspaceStore.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QUuid>

enum class StatusKind;

// The batch across restarts: when it is stored and brought back, what is set aside because it could
// not be brought back, and which of two windows may store.
class Workspace : public QObject {
    Q_OBJECT
public:
    // The preferences outlive it. Nothing is stored before the restore has ended.
    Workspace(std::shared_ptr<PhotoCache> photos, PreferencesStore& preferences);

    // Once. What is stored is only looked for where the studio `isEmpty`, and then opened on the
    // workers.
    void restore(bool isEmpty);
    bool isRestoring() const { return m_restore == Restore::running; }
    bool didRestore() const { return m_restore == Restore::done; }

    // A saved batch of which not everything could be brought back at a start; it stays until it
    // can.
    bool hasAside() const;
    void restoreAside();
    // All of what was set aside last is in the batch again.
    void clearAside();

    void save(const Batch& batch);
    // When the value that is held has rested a moment.
    void saveSoon();
    bool isSaveDue() const { return m_saveLater.isActive(); }
    bool hasFailed() const { return m_saveFailed; }
    // `strike` is called in the transaction of the next save.
    void strikeWithNextSave(const Strike& strike) { m_strikes.append(strike); }

    // What the preferences store has to tell, once; empty for nothing.
    QString takeProblem();

Q_SIGNALS:
    void saveDue();
    void told(const QString& sentence, StatusKind kind);
    void restoreProgressed(qsizetype looked, qsizetype total);
    // Nothing where no batch could be brought back.
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
    bool m_isStoredUnseen = false;              // the store could not be read when it was asked
    std::optional<QByteArray> m_notYetAside;    // to be set aside before anything is stored
    bool m_saveFailed = false;                  // and the user was told
    const QByteArray m_writer = QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
    std::optional<QByteArray> m_writerSeen;    // the last one that may be replaced
    bool m_isStoreOfAnother = false;           // of a window that began to store after this one
    QList<Strike> m_strikes;                   // for the next save
};
