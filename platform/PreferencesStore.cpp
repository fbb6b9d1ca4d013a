#include "platform/PreferencesStore.h"

#include "platform/Workers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStorageInfo>
#include <QUrl>
#include <QUuid>

#include <atomic>
#include <mutex>
#include <utility>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;

namespace {

QString storing()
{
    return u"INSERT INTO preference (key, value) VALUES (?, ?) "
           "ON CONFLICT (key) DO UPDATE SET value = excluded.value"_qs;
}

QSqlDatabase opened(const QString& connection, const QString& file)
{
    QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_qs, connection);
    database.setDatabaseName(file);
    database.open();
    return database;
}

QString newConnectionName()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

bool run(const QSqlDatabase& database, const QString& statement)
{
    return QSqlQuery(database).exec(statement);
}

QString answerTo(const QSqlDatabase& database, const QString& question)
{
    QSqlQuery query(database);
    return query.exec(question) && query.next() ? query.value(0).toString() : QString();
}

QString logOf(const QString& file)
{
    return file + u"-wal"_qs;
}

bool openedReadOnly(const QString& connection, const QString& address)
{
    QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_qs, connection);
    database.setConnectOptions(u"QSQLITE_OPEN_URI;QSQLITE_OPEN_READONLY"_qs);
    database.setDatabaseName(address);
    return database.open() && QSqlQuery(database).exec(u"SELECT key FROM preference LIMIT 1"_qs);
}

// Opens the file only for reading. SQLite needs its side files even for that, unless `immutable`
// promises that nobody writes. SQLite then ignores the log, so the log must be empty.
bool openedForReading(const QString& connection, const QString& file)
{
    if (!QFileInfo(file).isFile())
        return false;
    const QString address = QUrl::fromLocalFile(file).toString(QUrl::FullyEncoded);
    if (openedReadOnly(connection, address))
        return true;
    QSqlDatabase::removeDatabase(connection);
    return QFileInfo(logOf(file)).size() == 0 &&
           openedReadOnly(connection, address + u"?immutable=1"_qs);
}

// A statement that copies the log into the database file, which takes up to 30 ms. It does not wait
// for readers: the pages that they still use stay in the log until the next checkpoint.
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

// Creates the file if it is missing, and makes it readable by its user only; SQLite gives its side
// files the same permissions.
bool createPrivately(const QString& name)
{
    constexpr auto owner = QFile::ReadOwner | QFile::WriteOwner;
    QDir().mkpath(QFileInfo(name).path());
    QFile file(name);
    if (!file.exists())
        return file.open(QIODevice::WriteOnly | QIODevice::NewOnly, owner);
    return file.setPermissions(owner);
}

QString usualDurability()
{
    return u"PRAGMA synchronous=NORMAL"_qs;
}

bool prepare(const QSqlDatabase& database)
{
    // Uses large pages, because values take megabytes: with small pages, each write would follow a
    // long chain of pages.
    return database.isOpen() && run(database, u"PRAGMA page_size=65536"_qs) &&
           run(database, u"PRAGMA journal_mode=WAL"_qs) && run(database, usualDurability()) &&
           run(database, u"PRAGMA wal_autocheckpoint=0"_qs);
}

// SQLite's primary error codes, which are the lowest eight bits of its extended ones.
enum class Fault {
    busy = 5,
    readOnly = 8,
    corrupt = 11,
    full = 13,
    cannotOpen = 14,
    noDatabase = 26
};

Fault faultOf(const QSqlError& error)
{
    return Fault(error.nativeErrorCode().toInt() & 0xff);
}

bool isDamage(Fault fault)
{
    return fault == Fault::corrupt || fault == Fault::noDatabase;
}

const QString damage = u"el archivo está dañado"_qs;

bool hasNoRoom(const QString& file)
{
    constexpr qint64 leastRoom = 256 * 1024;    // bytes; enough for the side files and one page
    const QStorageInfo storage(QFileInfo(file).path());
    return storage.isValid() && !storage.isReadOnly() && storage.bytesAvailable() < leastRoom;
}

QString reasonOf(const QString& file, const QSqlError& error)
{
    const Fault fault = faultOf(error);
    const QFileInfo folder(QFileInfo(file).path());
    if (isDamage(fault))
        return damage;
    if (fault == Fault::full || hasNoRoom(file))
        return u"no queda espacio en el disco"_qs;
    if (fault == Fault::readOnly || fault == Fault::cannotOpen || !folder.isWritable())
        return u"no se puede escribir en «%1»"_qs.arg(folder.filePath());
    if (fault == Fault::busy)
        return u"otro programa está usando «%1»"_qs.arg(file);
    return error.databaseText().isEmpty() ? u"no se puede abrir «%1»"_qs.arg(file)
                                          : u"el sistema dice «%1»"_qs.arg(error.databaseText());
}

// Returns why the file can never be used, in Spanish; empty if there is no such reason.
QString foreignness(const QString& name)
{
    const QFileInfo file(name);
    if (file.isDir())
        return u"en su lugar hay una carpeta"_qs;
#ifdef Q_OS_UNIX
    const bool mayAll = geteuid() == 0;
    // On a network disk, the user's files may have other owners: a writable file counts as the
    // user's own.
    if (!mayAll && file.exists() && file.ownerId() != geteuid() && !file.isWritable())
        return u"el archivo es de otro usuario"_qs;
#endif
    return {};
}

// Device and inode. They change when another file takes over the name.
using FileIdentity = std::pair<quint64, quint64>;

FileIdentity identityOf(const QString& name)
{
#ifdef Q_OS_UNIX
    struct stat status = {};
    if (lstat(QFile::encodeName(name).constData(), &status) == 0)
        return {status.st_dev, status.st_ino};
#endif
    return {};
}

QString damageIn(const QSqlDatabase& database)
{
    QSqlQuery query(database);
    const bool isChecked = query.exec(u"PRAGMA quick_check(1)"_qs) && query.next();
    if (isChecked ? query.value(0).toString() != u"ok"_qs : isDamage(faultOf(query.lastError())))
        return damage;
    // A newly created file has no tables yet.
    const bool hasTables =
        query.exec(u"SELECT count(*), sum(name = 'preference') FROM sqlite_master"_qs) &&
        query.next() && query.value(0).toInt() > 0;
    if (!hasTables)
        return {};
    const bool isOurs = query.value(1).toInt() > 0 && query.prepare(storing());
    return isOurs ? QString() : u"el archivo no es de esta versión de Moltiva"_qs;
}

// Renames a file that cannot be used and returns its new name, or an empty string if that failed.
// Also renames its log, because SQLite would apply it to a new file with the old name.
QString putAside(const QString& name)
{
    constexpr int most = 99;
    for (int number = 1; number <= most; ++number) {
        const QString aside =
            name + u".damaged"_qs + (number == 1 ? QString() : u"-%1"_qs.arg(number));
        if (QFileInfo::exists(aside))
            continue;
        if (!QDir().rename(name, aside))
            return {};
        QFile::rename(logOf(name), logOf(aside));
        QFile::remove(name + u"-shm"_qs);
        return aside;
    }
    return {};
}

}    // namespace

// The state of a checkpoint on a worker, shared by the worker and the store. The store's destructor
// waits for a checkpoint that is running, but not for one in the queue, which finishWorkers() may
// drop.
struct PreferencesStore::Checkpoint {
    std::atomic<bool> isAsked = false;    // true from the request until the worker is done
    std::mutex running;
    bool isUnwanted = false;
};

PreferencesStore::PreferencesStore(const QString& file)
    : m_file(file), m_connection(newConnectionName()), m_checkpoint(std::make_shared<Checkpoint>())
{
    if (open() && hasNoRoom(file))
        m_reason = reasonOf(file, {});
    if (m_problem.isEmpty() && !m_reason.isEmpty()) {
        m_problem = u"Ahora no se puede guardar nada: %1. Se volverá a intentar con cada "
                    "cambio."_qs.arg(m_reason);
    }
}

bool PreferencesStore::open()
{
    if (m_open || m_isInTransaction)
        return m_open;
    QSqlDatabase::removeDatabase(m_connection);
    const FileIdentity found = identityOf(m_file);
    QString cause = foreignness(m_file);
    if (cause.isEmpty())
        cause = tryToOpen();
    if (!cause.isEmpty()) {
        QSqlDatabase::removeDatabase(m_connection);
        // Replaces the file only if another process has not done so in the meantime.
        if (found == identityOf(m_file) && !setAside(cause))
            return false;
        tryToOpen();
    }
    if (m_open) {
        m_reason.clear();
    } else {
        QSqlDatabase::removeDatabase(m_connection);
        m_readOnly = openedForReading(m_connection, m_file);
    }
    return m_open;
}

// Renames the file, so that a new one can be created. Returns false if it cannot be renamed.
bool PreferencesStore::setAside(const QString& cause)
{
    const QString aside = putAside(m_file);
    m_reason = cause;
    m_problem = aside.isEmpty()
                    ? u"Los datos guardados de Moltiva no se pueden usar: %1. Lo que hagas ahora "
                      "no se guardará."_qs.arg(cause)
                    : u"Los datos guardados de Moltiva no se podían usar: %1. Se han apartado en "
                      "«%2» y se empieza de nuevo."_qs.arg(cause, aside);
    return !aside.isEmpty();
}

// Returns why the file can never be used; empty if it is open now or may be opened later.
QString PreferencesStore::tryToOpen()
{
    const bool isCreated = createPrivately(m_file);
    const QSqlDatabase database = opened(m_connection, m_file);
    const QString cause = damageIn(database);
    if (!cause.isEmpty())
        return cause;
    QSqlQuery query(database);
    m_open = isCreated && prepare(database) &&
             query.exec(u"CREATE TABLE IF NOT EXISTS preference "
                        "(key TEXT PRIMARY KEY NOT NULL, value BLOB NOT NULL)"_qs);
    if (!m_open)
        m_reason = reasonOf(m_file, query.lastError());
    return {};
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
    query.prepare(storing());
    query.addBindValue(key);
    // SQLite would store a null QByteArray as NULL, which the column does not allow.
    query.addBindValue(value.isNull() ? QByteArray("") : value);
    if (!finished(query))
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
    return finished(query);
}

// Executes a prepared query and stores the reason if it fails. If the file is damaged, sets m_open
// to false, so that the next open() replaces the file.
bool PreferencesStore::finished(QSqlQuery& query)
{
    const bool isDone = query.exec();
    m_reason = isDone ? QString() : reasonOf(m_file, query.lastError());
    if (!isDone && isDamage(faultOf(query.lastError())))
        m_open = false;
    return isDone;
}

QStringList PreferencesStore::keysBeginningWith(const QString& prefix) const
{
    if (!isReadable())
        return {};
    QSqlQuery query(QSqlDatabase::database(m_connection, false));
    // U+FFFF comes after the other characters of the Basic Multilingual Plane, so the range
    // contains every key in which such a character follows the prefix.
    query.prepare(u"SELECT key FROM preference WHERE key >= ? AND key < ? ORDER BY key"_qs);
    query.addBindValue(prefix);
    query.addBindValue(prefix + QChar(0xFFFF));
    QStringList keys;
    query.exec();
    while (query.next())
        keys.append(query.value(0).toString());
    return keys;
}

bool PreferencesStore::transaction(const std::function<bool()>& work, Durability durability,
                                   Traces traces)
{
    if (!open())
        return false;
    const QSqlDatabase database = QSqlDatabase::database(m_connection, false);
    if (durability == Durability::onDisk)
        run(database, u"PRAGMA synchronous=FULL"_qs);
    const bool erases = traces == Traces::erased;
    const QString usualErasure =
        erases ? answerTo(database, u"PRAGMA secure_delete"_qs) : QString();
    if (erases)
        run(database, u"PRAGMA secure_delete=ON"_qs);
    bool isStored = false;
    const auto end = qScopeGuard([&] {
        // Rolls back also if `work` has thrown.
        if (std::exchange(m_isInTransaction, false) && !isStored)
            run(database, u"ROLLBACK"_qs);
        run(database, usualDurability());
        if (erases)
            run(database, u"PRAGMA secure_delete=%1"_qs.arg(usualErasure));
    });
    const auto execute = [&](const QString& statement) {
        QSqlQuery query(database);
        query.prepare(statement);
        return finished(query);
    };
    m_isInTransaction = execute(u"BEGIN IMMEDIATE"_qs);
    isStored = m_isInTransaction && work() && execute(u"COMMIT"_qs);
    if (isStored) {
        m_isInTransaction = false;
        checkpointWhenDue();
    }
    if (isStored && erases)
        emptyLog();
    return isStored;
}

// Empties the log, which still contains the old values. Pages that another process is reading stay
// in the log until the next checkpoint.
void PreferencesStore::emptyLog()
{
    const std::scoped_lock lock(m_checkpoint->running);
    run(QSqlDatabase::database(m_connection, false), u"PRAGMA wal_checkpoint(TRUNCATE)"_qs);
}

// Adds a write of `bytes` to m_logBytes, the approximate size of the log. If a worker has copied
// the whole log since the last write, SQLite now overwrites it from the start, and the count begins
// again.
void PreferencesStore::written(qint64 bytes)
{
    constexpr qint64 page = 65536;
    if (std::exchange(m_checkpointIsLatest, false) && !m_checkpoint->isAsked)
        m_logBytes = 0;
    m_logBytes += bytes + page;
    m_sinceCheckpoint += bytes + page;
    if (!m_isInTransaction)
        checkpointWhenDue();
}

// Requests a checkpoint on a worker for every checkpointStep bytes. If writes are faster than the
// worker, the log grows to longestLog, and this thread copies it.
void PreferencesStore::checkpointWhenDue()
{
    constexpr qint64 checkpointStep = 8 << 20;
    constexpr qint64 longestLog = 32 << 20;
    const bool working = m_checkpoint->isAsked;
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
