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
    QByteArray m_text;    // SQLite's message; holds no bound values
};

using SqlValue = std::variant<std::monostate, qint64, QString, QByteArray>;

// The rows that a statement gives. next() must be called before reading the first one, too.
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

// A SQLite file, used through SQLite's own interface and not Qt's: its connection may be used by
// any thread, one at a time, and needs no application object. All threads share one connection
// behind a lock. SQLite lets one transaction write at a time anyhow, and connections that wait for
// each other do so by sleeping, which starves some.
class Database {
public:
    enum class History { perhapsNew, usedBefore };

    // Creates the tables that are missing.
    using Schema = void (*)(Transaction& transaction);

    // Throws DatabaseError, also for a file that a newer version wrote, for one that is damaged
    // anywhere, and, with History::usedBefore, for an empty or missing one.
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

// Renames the file and its side files within their folder. Returns the new name; an empty one when
// there is no file or it could not be renamed. The file must not be open.
QString setDatabaseAside(const QString& file);

// A transaction that holds the database's lock. commit() makes its changes as a whole and returns
// when they are on the disk; the destructor undoes what was not committed. Other threads wait
// meanwhile, so nothing slow may happen inside.
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
