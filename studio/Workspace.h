#pragma once

#include "account/CreditJournal.h"
#include "studio/WorkspaceEncoder.h"
#include "studio/WorkspaceStore.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QUuid>

enum class StatusKind;

// Stores the batch and restores it at the next start. Sets aside stored documents that could not be
// restored completely. Of several windows, lets only the last one to begin storing go on.
class Workspace : public QObject {
    Q_OBJECT
public:
    // `preferences` must outlive this object. Nothing is stored before the restore has ended.
    Workspace(std::shared_ptr<PhotoCache> photos, PreferencesStore& preferences);

    // Call once. Restores the stored batch on worker threads if `isEmpty`, that is, if the session
    // has no items yet. Emits restored() in any case.
    void restore(bool isEmpty);
    bool isRestoring() const { return m_restore == Restore::running; }
    bool didRestore() const { return m_restore == Restore::done; }

    // Whether a document is set aside: a stored batch that could be restored only in part. It
    // remains set aside until it can be restored completely.
    bool hasAside() const;
    // Whether a document is still to be set aside, because that has failed so far.
    bool isAsideDue() const { return m_notYetAside.has_value(); }
    void restoreAside();
    // Removes the last document set aside, after it was restored completely. Does nothing if the
    // last save failed.
    void clearAside();

    void save(const Batch& batch);
    // Emits saveDue() after a short pause in which this is not called again.
    void saveSoon();
    bool isSaveDue() const { return m_saveLater.isActive(); }
    bool hasFailed() const { return m_saveFailed; }
    // Makes the next save call `strike` in its transaction; see CreditJournal.
    void strikeWithNextSave(const Strike& strike) { m_strikes.append(strike); }

    // A sentence for the user about a problem of the preferences store, given once; empty for none.
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
    void setAsideUnreadStore();
    QString failedSaving() const;

    std::shared_ptr<PhotoCache> m_photos;
    PreferencesStore& m_preferences;
    WorkspaceEncoder m_encoder;
    Restore m_restore = Restore::notYet;
    bool m_isRestoringAside = false;
    QTimer m_saveLater;                         // runs while a change waits to be stored
    bool m_wasStoreUnreadable = false;          // the preferences could not be read at restore()
    std::optional<QByteArray> m_notYetAside;    // the document to set aside before the next save
    bool m_saveFailed = false;                  // the last save failed, and told() said so
    const QByteArray m_writer = QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
    // WorkspaceStore::writer() at restore(). This window may replace that writer, but no other.
    std::optional<QByteArray> m_writerSeen;
    bool m_isStoreOfAnother = false;    // another window began to store after restore()
    QList<Strike> m_strikes;            // called in the transaction of the next save
};
