#include "service/store/Database.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sqlite3.h>

namespace {

constexpr int busyWait = 5000;    // ms; another program may be reading the file

DatabaseError::Kind kindOf(int result)
{
    using enum DatabaseError::Kind;
    switch (result) {
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return damaged;
    case SQLITE_BUSY:
        return inUse;
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_READONLY:
        return forbidden;
    default:
        return failed;
    }
}

[[noreturn]] void fail(sqlite3* handle)
{
    if (!handle)
        throw DatabaseError(DatabaseError::Kind::failed, "out of memory");
    throw DatabaseError(kindOf(sqlite3_errcode(handle)), QByteArray(sqlite3_errmsg(handle)));
}

void bind(sqlite3_stmt* statement, int place, const SqlValue& value)
{
    int result = SQLITE_OK;
    if (const auto* number = std::get_if<qint64>(&value)) {
        result = sqlite3_bind_int64(statement, place, *number);
    } else if (const auto* text = std::get_if<QString>(&value)) {
        const QByteArray utf8 = text->toUtf8();
        result = sqlite3_bind_text(statement, place, utf8.constData(), int(utf8.size()),
                                   SQLITE_TRANSIENT);
    } else if (const auto* bytes = std::get_if<QByteArray>(&value)) {
        result = sqlite3_bind_blob(statement, place, bytes->constData(), int(bytes->size()),
                                   SQLITE_TRANSIENT);
    } else {
        result = sqlite3_bind_null(statement, place);
    }
    if (result != SQLITE_OK)
        fail(sqlite3_db_handle(statement));
}

void createPrivately(const QString& name)
{
    // Creates the file before SQLite does, with access for its owner only: SQLite gives the files
    // beside it (-wal, -shm) the permissions of the database.
    constexpr auto owner = QFile::ReadOwner | QFile::WriteOwner;
    QFile file(name);
    if (!file.exists() && !file.open(QIODevice::WriteOnly | QIODevice::NewOnly, owner))
        throw DatabaseError(DatabaseError::Kind::forbidden, file.errorString().toUtf8());
}

void needWhole(Transaction& transaction)
{
    Rows check = transaction.rows("PRAGMA quick_check(1)");
    if (!check.next() || check.bytes(0) != "ok")
        throw DatabaseError(DatabaseError::Kind::damaged, "the check found damage");
}

QStringList withSideFiles(const QString& file)
{
    return {file, file + QStringLiteral("-wal"), file + QStringLiteral("-shm")};
}

}    // namespace

void Rows::Finalizer::operator()(sqlite3_stmt* statement) const
{
    sqlite3_finalize(statement);
}

bool Rows::next()
{
    switch (sqlite3_step(m_statement.get())) {
    case SQLITE_ROW:
        return true;
    case SQLITE_DONE:
        return false;
    default:
        fail(sqlite3_db_handle(m_statement.get()));
    }
}

qint64 Rows::number(int column) const
{
    return sqlite3_column_int64(m_statement.get(), column);
}

QString Rows::text(int column) const
{
    return QString::fromUtf8(bytes(column));
}

QByteArray Rows::bytes(int column) const
{
    const auto* data = static_cast<const char*>(sqlite3_column_blob(m_statement.get(), column));
    return QByteArray(data, sqlite3_column_bytes(m_statement.get(), column));
}

bool Rows::isNull(int column) const
{
    return sqlite3_column_type(m_statement.get(), column) == SQLITE_NULL;
}

Database::Database(const QString& file, Schema bringUpToDate, History history)
{
    const QFileInfo found(file);
    if (found.isDir())
        throw DatabaseError(DatabaseError::Kind::damaged, "a folder is in its place");
    // Refuses an empty file: SQLite would take it for a new database and drop its write-ahead log.
    if (history == History::usedBefore && (!found.exists() || found.size() == 0))
        throw DatabaseError(DatabaseError::Kind::vanished, "nothing is left of it");
    createPrivately(file);
    const int result = sqlite3_open_v2(QFile::encodeName(file).constData(), &m_handle,
                                       SQLITE_OPEN_READWRITE | SQLITE_OPEN_FULLMUTEX, nullptr);
    try {
        if (result != SQLITE_OK)
            fail(m_handle);
        sqlite3_busy_timeout(m_handle, busyWait);
        run("PRAGMA journal_mode=WAL");
        // Committed changes must survive a power cut, not only a crash of the program.
        run("PRAGMA synchronous=FULL");
        run("PRAGMA foreign_keys=ON");
        Transaction transaction(*this);
        needWhole(transaction);
        bringUpToDate(transaction);
        transaction.commit();
    } catch (...) {
        sqlite3_close(m_handle);
        throw;
    }
}

Database::~Database()
{
    sqlite3_close(m_handle);
}

QString setDatabaseAside(const QString& file)
{
    const QString name =
        file + QDateTime::currentDateTime().toString(QStringLiteral("'.apartada-'yyyyMMdd-HHmmss"));
    const QStringList from = withSideFiles(file), to = withSideFiles(name);
    // Renames the -wal and -shm files first: SQLite would apply a log left behind to a new database
    // of that name.
    for (qsizetype i = from.size() - 1; i > 0; --i)
        QDir().rename(from[i], to[i]);
    return QDir().rename(from.first(), name) ? name : QString();
}

void Database::checkpoint()
{
    const std::scoped_lock lock(m_mutex);
    sqlite3_wal_checkpoint_v2(m_handle, nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
}

void Database::run(const char* sql)
{
    if (sqlite3_exec(m_handle, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        fail(m_handle);
}

Transaction::Transaction(Database& database) : m_lock(database.m_mutex), m_database(database)
{
    m_database.run("BEGIN IMMEDIATE");
}

Transaction::~Transaction()
{
    // SQLite rolls back by itself after some failures.
    if (m_open && !sqlite3_get_autocommit(m_database.m_handle))
        sqlite3_exec(m_database.m_handle, "ROLLBACK", nullptr, nullptr, nullptr);
}

Rows Transaction::rows(const char* sql, std::initializer_list<SqlValue> values)
{
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(m_database.m_handle, sql, -1, &statement, nullptr) != SQLITE_OK)
        fail(m_database.m_handle);
    Rows rows(statement);
    int place = 0;
    for (const SqlValue& value : values)
        bind(statement, ++place, value);
    return rows;
}

void Transaction::run(const char* sql, std::initializer_list<SqlValue> values)
{
    Rows all = rows(sql, values);
    while (all.next()) {
    }
}

qint64 Transaction::lastId() const
{
    return sqlite3_last_insert_rowid(m_database.m_handle);
}

void Transaction::commit()
{
    m_database.run("COMMIT");
    m_open = false;
}
