#pragma once

#include <QByteArray>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

class QSqlQuery;

// Values by key in one SQLite file that only its user may read. Each value is replaced as a whole:
// after a crash there is the old one or the new one. Used from the thread that made it.
class PreferencesStore {
public:
    explicit PreferencesStore(const QString& file);
    ~PreferencesStore();
    PreferencesStore(const PreferencesStore&) = delete;
    PreferencesStore& operator=(const PreferencesStore&) = delete;

    bool isOpen() const { return m_open; }
    // Values can be read: also of a file that cannot be opened for writing, on a full disk.
    bool isReadable() const { return m_open || m_readOnly; }
    // Tries again where it failed before; every setValue() does. What cannot be used for good (a
    // damaged file, a folder, a file of another user) is put aside for a new one.
    bool open();
    // A sentence for the user about what was found in the place of the file, once; empty when all
    // is well.
    QString takeProblem() { return std::exchange(m_problem, {}); }
    // Why nothing can be stored, as a part of a sentence; empty when that is not known.
    const QString& reason() const { return m_reason; }
    std::optional<QByteArray> value(const QString& key) const;
    bool contains(const QString& key) const;    // without reading the value
    bool setValue(const QString& key, const QByteArray& value);
    bool remove(const QString& key);
    QStringList keysBeginningWith(const QString& prefix) const;    // in their order

    enum class Durability { usual, onDisk };    // on the disk it outlives a cut of the power
    enum class Traces { left, erased };         // whether old values stay readable in the file
    // What `work` changes is stored as a whole; nothing of it when `work` gives false or it cannot
    // be stored. Nobody else writes meanwhile, so what it reads holds.
    bool transaction(const std::function<bool()>& work, Durability durability = Durability::usual,
                     Traces traces = Traces::left);

private:
    QString tryToOpen();
    bool replace(const QString& cause);
    bool finished(QSqlQuery& query);
    void written(qint64 bytes);
    void checkpointWhenDue();
    void emptyLog();

    QString m_file, m_connection;
    QString m_problem, m_reason;
    bool m_open = false, m_readOnly = false, m_isInTransaction = false;
    qint64 m_sinceCheckpoint = 0, m_logBytes = 0;
    bool m_checkpointIsLatest = false;    // nothing was written since it was asked for
    struct Checkpoint;
    std::shared_ptr<Checkpoint> m_checkpoint;    // shared with the worker
};
