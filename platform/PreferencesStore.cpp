#include "platform/PreferencesStore.h"

#include "platform/Workers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QUrl>
#include <QUuid>

#include <atomic>
#include <mutex>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

QSqlDatabase opened(const QString& connection, const QString& file)
{
    QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_qs, connection);
    database.setDatabaseName(file);
    database.open();
    return database;
}

// SQLite needs room for its side files even to read, unless it is told that nobody writes. What it
// would have to bring in from a log would then be missing.
bool openedReadOnly(const QString& connection, const QString& file)
{
    if (!QFile::exists(file) || QFileInfo(file + u"-wal"_qs).size() > 0)
        return false;
    QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_qs, connection);
    database.setConnectOptions(u"QSQLITE_OPEN_URI;QSQLITE_OPEN_READONLY"_qs);
    database.setDatabaseName(QUrl::fromLocalFile(file).toString(QUrl::FullyEncoded) +
                             u"?immutable=1"_qs);
    return database.open() && QSqlQuery(database).exec(u"SELECT key FROM preference LIMIT 1"_qs);
}

QString newConnectionName()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

bool run(const QSqlDatabase& database, const QString& statement)
{
    return QSqlQuery(database).exec(statement);
}

// Copies the log into the file, which takes up to 30 ms: the worker's business, with a connection
// of its own. Passive: what a reader hinders is left for the next time.
QString passiveCheckpoint()
{
    return u"PRAGMA wal_checkpoint(PASSIVE)"_qs;
}

void checkpoint(const QString& file)
{
    const QString connection = newConnectionName();
    {
        const QSqlDatabase database = opened(connection, file);
        run(database, passiveCheckpoint());
    }
    QSqlDatabase::removeDatabase(connection);
}

// SQLite gives its side files the permissions of the database.
bool createPrivately(const QString& name)
{
    constexpr auto owner = QFile::ReadOwner | QFile::WriteOwner;
    QDir().mkpath(QFileInfo(name).path());
    QFile file(name);
    if (!file.exists())
        return file.open(QIODevice::WriteOnly | QIODevice::NewOnly, owner);
    return file.setPermissions(owner);
}

// A file that is no database any more would refuse every value for ever.
void putAsideIfDamaged(const QString& name)
{
    constexpr QByteArrayView header = "SQLite format 3";
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly) || file.size() == 0 || file.peek(header.size()) == header)
        return;
    file.close();
    const QString damaged = name + u".damaged"_qs;
    QFile::remove(damaged);
    QFile::rename(name, damaged);
}

QString usualDurability()
{
    return u"PRAGMA synchronous=NORMAL"_qs;
}

bool prepare(const QSqlDatabase& database)
{
    // Values of megabytes: with small pages each write walks long chains of them.
    return database.isOpen() && run(database, u"PRAGMA page_size=65536"_qs) &&
           run(database, u"PRAGMA journal_mode=WAL"_qs) && run(database, usualDurability()) &&
           run(database, u"PRAGMA wal_autocheckpoint=0"_qs) &&
           run(database, u"CREATE TABLE IF NOT EXISTS preference "
                         "(key TEXT PRIMARY KEY NOT NULL, value BLOB NOT NULL)"_qs);
}

}    // namespace

// The store never waits for a checkpoint that has not begun: when the program ends, the workers
// drop it.
struct PreferencesStore::Checkpoint {
    std::atomic<bool> isAsked = false;    // until it is done
    std::mutex running;
    bool isUnwanted = false;
};

PreferencesStore::PreferencesStore(const QString& file)
    : m_file(file), m_connection(newConnectionName()), m_checkpoint(std::make_shared<Checkpoint>())
{
    open();
}

bool PreferencesStore::open()
{
    if (m_open)
        return true;
    QSqlDatabase::removeDatabase(m_connection);
    putAsideIfDamaged(m_file);
    m_open = createPrivately(m_file) && prepare(opened(m_connection, m_file));
    if (!m_open) {
        QSqlDatabase::removeDatabase(m_connection);
        m_readOnly = openedReadOnly(m_connection, m_file);
    }
    return m_open;
}

PreferencesStore::~PreferencesStore()
{
    {
        const std::scoped_lock lock(m_checkpoint->running);
        m_checkpoint->isUnwanted = true;
    }
    QSqlDatabase::removeDatabase(m_connection);
}

std::optional<QByteArray> PreferencesStore::value(const QString& key) const
{
    if (!isReadable())
        return {};
    QSqlQuery query(QSqlDatabase::database(m_connection, false));
    query.prepare(u"SELECT value FROM preference WHERE key = ?"_qs);
    query.addBindValue(key);
    if (!query.exec() || !query.next())
        return {};
    return query.value(0).toByteArray();
}

bool PreferencesStore::contains(const QString& key) const
{
    if (!isReadable())
        return false;
    QSqlQuery query(QSqlDatabase::database(m_connection, false));
    query.prepare(u"SELECT 1 FROM preference WHERE key = ?"_qs);
    query.addBindValue(key);
    return query.exec() && query.next();
}

bool PreferencesStore::setValue(const QString& key, const QByteArray& value)
{
    if (!open())
        return false;
    QSqlQuery query(QSqlDatabase::database(m_connection, false));
    query.prepare(u"INSERT INTO preference (key, value) VALUES (?, ?) "
                  "ON CONFLICT (key) DO UPDATE SET value = excluded.value"_qs);
    query.addBindValue(key);
    // A null value would be stored as NULL.
    query.addBindValue(value.isNull() ? QByteArray("") : value);
    if (!query.exec())
        return false;
    written(value.size());
    return true;
}

bool PreferencesStore::remove(const QString& key)
{
    if (!open())
        return false;
    QSqlQuery query(QSqlDatabase::database(m_connection, false));
    query.prepare(u"DELETE FROM preference WHERE key = ?"_qs);
    query.addBindValue(key);
    return query.exec();
}

QStringList PreferencesStore::keysBeginningWith(const QString& prefix) const
{
    if (!isReadable())
        return {};
    QSqlQuery query(QSqlDatabase::database(m_connection, false));
    // Nothing that begins so comes after this, as long as it goes on with characters of the basic
    // plane.
    query.prepare(u"SELECT key FROM preference WHERE key >= ? AND key < ? ORDER BY key"_qs);
    query.addBindValue(prefix);
    query.addBindValue(prefix + QChar(0xFFFF));
    QStringList keys;
    query.exec();
    while (query.next())
        keys.append(query.value(0).toString());
    return keys;
}

bool PreferencesStore::transaction(const std::function<bool()>& work, Durability durability)
{
    if (!open())
        return false;
    const QSqlDatabase database = QSqlDatabase::database(m_connection, false);
    if (durability == Durability::onDisk)
        run(database, u"PRAGMA synchronous=FULL"_qs);
    bool isStored = false;
    const auto end = qScopeGuard([&] {
        // Also when `work` threw.
        if (std::exchange(m_isInTransaction, false) && !isStored)
            run(database, u"ROLLBACK"_qs);
        run(database, usualDurability());
    });
    m_isInTransaction = run(database, u"BEGIN IMMEDIATE"_qs);
    isStored = m_isInTransaction && work() && run(database, u"COMMIT"_qs);
    return isStored;
}

// SQLite starts its log anew when a write finds all of it copied. Between edits the worker is done
// long before the next one; writes without a pause keep ahead of it, and then we copy ourselves.
void PreferencesStore::written(qint64 bytes)
{
    constexpr qint64 checkpointStep = 8 << 20;
    constexpr qint64 longestLog = 32 << 20;
    constexpr qint64 page = 65536;
    const bool working = m_checkpoint->isAsked;
    if (std::exchange(m_checkpointIsLatest, false) && !working)
        m_logBytes = 0;
    m_logBytes += bytes + page;
    m_sinceCheckpoint += bytes + page;
    if (m_isInTransaction)
        return;
    if (m_logBytes >= longestLog) {
        const std::scoped_lock lock(m_checkpoint->running);
        run(QSqlDatabase::database(m_connection, false), passiveCheckpoint());
        m_logBytes = m_sinceCheckpoint = 0;
    } else if (m_sinceCheckpoint >= checkpointStep && !working) {
        m_checkpoint->isAsked = true;
        runOnWorker([file = m_file, shared = m_checkpoint] {
            const std::scoped_lock lock(shared->running);
            if (!shared->isUnwanted)
                checkpoint(file);
            shared->isAsked = false;
        });
        m_checkpointIsLatest = true;
        m_sinceCheckpoint = 0;
    }
}
