#pragma once

#include <QByteArray>
#include <QString>

#include <exception>
#include <initializer_list>
#include <memory>
#include <mutex>
#include <variant>

struct sqlite3;
struct sqlite3_stmt;

class DatabaseError : public std::exception {
public:
    enum class Kind {
        failed,
        inUse,
        forbidden,
        damaged,
        vanished,
        tooNew,
        wrongSums,
    };

    DatabaseError(Kind kind, QByteArray text) : m_kind(kind), m_text(std::move(text)) {}
    Kind kind() const { return m_kind; }
    const char* what() const noexcept override { return m_text.constData(); }

private:
    Kind m_kind;
    QByteArray m_text;    // SQLite's message or one of ours; contains no bound values
};

using SqlValue = std::variant<std::monostate, qint64, QString, QByteArray>;

// The rows that a statement returns. Call next() before reading each row, including the first.
class Rows {
public:
    explicit Rows(sqlite3_stmt* statement) : m_statement(statement) {}

    bool next();
    qint64 number(int column) const;
    QString text(int column) const;
    QByteArray bytes(int column) const;
    bool isNull(int column) const;

private:
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const;
    };
    std::unique_ptr<sqlite3_stmt, Finalizer> m_statement;
};

class Transaction;

// A SQLite file. It is used through SQLite's own interface, not Qt's, because a connection of Qt
// belongs to one thread and needs an application object. All threads share one connection behind a
// lock: SQLite lets only one transaction write at a time anyway, and connections that wait for each
// other sleep and retry, which starves some of them.
class Database {
public:
    enum class History { perhapsNew, usedBefore };

    // Creates the tables, or upgrades those of an older version.
    using Schema = void (*)(Transaction& transaction);

    // Throws DatabaseError for a file that cannot be opened, is damaged anywhere or was written by
    // a newer version; with History::usedBefore, also for an empty or missing file.
    Database(const QString& file, Schema bringUpToDate, History history = History::perhapsNew);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // Writes the write-ahead log back into the file.
    void checkpoint();

private:
    friend class Transaction;
    void run(const char* sql);

    std::mutex m_mutex;
    sqlite3* m_handle = nullptr;
};

// Renames the file and SQLite's files beside it (-wal, -shm) within their folder. Returns the
// file's new path; empty when there is no file or it could not be renamed. The file must not be
// open.
QString setDatabaseAside(const QString& file);

// Locks the database for its lifetime: other threads wait, so nothing slow may happen meanwhile.
// commit() applies all changes together and returns when they are on the disk; the destructor
// reverts changes that were not committed.
class Transaction {
public:
    explicit Transaction(Database& database);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    Rows rows(const char* sql, std::initializer_list<SqlValue> values = {});
    void run(const char* sql, std::initializer_list<SqlValue> values = {});
    qint64 lastId() const;
    void commit();

private:
    std::unique_lock<std::mutex> m_lock;
    Database& m_database;
    bool m_open = true;
};
