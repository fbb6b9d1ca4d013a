#pragma once

#include <QByteArray>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

class QSqlQuery;

// Stores values by key in one SQLite file that only its user may read. A value is replaced as a
// whole: after a crash, the file contains the old one or the new one. To be used only on the thread
// that created the store.
class PreferencesStore {
public:
    explicit PreferencesStore(const QString& file);
    ~PreferencesStore();
    PreferencesStore(const PreferencesStore&) = delete;
    PreferencesStore& operator=(const PreferencesStore&) = delete;

    bool isOpen() const { return m_open; }
    // Whether values can be read. Also true if the file can only be opened for reading, as on a
    // full disk.
    bool isReadable() const { return m_open || m_readOnly; }
    // Opens the file if it is not open; setValue() and the other changes call this too. A file that
    // can never be used (damaged, a folder, another user's) is renamed, and a new one is created.
    bool open();
    // Returns a sentence for the user about a file that could not be used, but only once; empty if
    // there is no problem.
    QString takeProblem() { return std::exchange(m_problem, {}); }
    // Why nothing can be stored, as a part of a Spanish sentence. Empty if storing works or the
    // reason is not known.
    const QString& reason() const { return m_reason; }
    std::optional<QByteArray> value(const QString& key) const;
    bool contains(const QString& key) const;    // does not read the value
    bool setValue(const QString& key, const QByteArray& value);
    bool remove(const QString& key);
    QStringList keysBeginningWith(const QString& prefix) const;    // sorted

    enum class Durability { usual, onDisk };    // onDisk: survives a power cut as well
    enum class Traces { left, erased };         // erased: old values are overwritten in the file
    // Calls `work` and stores all changes that it makes, or none if it returns false or storing
    // fails. No other process can write meanwhile, so the values that `work` reads stay valid.
    // Returns whether the changes are stored.
    bool transaction(const std::function<bool()>& work, Durability durability = Durability::usual,
                     Traces traces = Traces::left);

private:
    QString tryToOpen();
    bool setAside(const QString& cause);
    bool finished(QSqlQuery& query);
    void written(qint64 bytes);
    void checkpointWhenDue();
    void emptyLog();

    QString m_file, m_connection;
    QString m_problem, m_reason;
    bool m_open = false, m_readOnly = false, m_isInTransaction = false;
    qint64 m_sinceCheckpoint = 0, m_logBytes = 0;
    bool m_checkpointIsLatest = false;    // nothing was written since the last checkpoint began
    struct Checkpoint;
    std::shared_ptr<Checkpoint> m_checkpoint;    // shared with the worker
};
