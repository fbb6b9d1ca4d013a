#pragma once

#include <QByteArray>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

// Values by key in one SQLite file that only its user may read. Each value is replaced as a whole:
// after a crash there is the old one or the new one. Used from the thread that made it.
class PreferencesStore {
public:
    explicit PreferencesStore(const QString& file);
    ~PreferencesStore();
    PreferencesStore(const PreferencesStore&) = delete;
    PreferencesStore& operator=(const PreferencesStore&) = delete;

    bool isOpen() const { return m_open; }
    // Values can be read: also of a file that cannot be opened for writing, on a full disk, as long
    // as all of it is in the file itself.
    bool isReadable() const { return m_open || m_readOnly; }
    // Tries again where it failed before; every setValue() does.
    bool open();
    std::optional<QByteArray> value(const QString& key) const;
    bool contains(const QString& key) const;    // without reading the value
    bool setValue(const QString& key, const QByteArray& value);
    bool remove(const QString& key);
    QStringList keysBeginningWith(const QString& prefix) const;    // in their order

    enum class Durability { usual, onDisk };    // on the disk it outlives a cut of the power
    // What `work` changes is stored as a whole; nothing of it when `work` gives false or it cannot
    // be stored. Nobody else writes meanwhile, so what it reads holds.
    bool transaction(const std::function<bool()>& work, Durability durability = Durability::usual);

private:
    void written(qint64 bytes);

    QString m_file, m_connection;
    bool m_open = false, m_readOnly = false, m_isInTransaction = false;
    qint64 m_sinceCheckpoint = 0, m_logBytes = 0;
    bool m_checkpointIsLatest = false;    // nothing was written since it was asked for
    struct Checkpoint;
    std::shared_ptr<Checkpoint> m_checkpoint;    // shared with the worker
};
