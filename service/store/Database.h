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
    QByteArray m_text;    // never of bound values
};

using SqlValue = std::variant<std::monostate, qint64, QString, QByteArray>;

// The rows that one statement gives; next() goes to the first as well.
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

// SQLite's own interface and not the toolkit's: a connection of it may be used by any thread, one
// at a time, and needs no application object. There is one connection behind one lock: SQLite lets
// one transaction write at a time anyhow, and connections that wait for each other do so by
// sleeping, which starves some.
class Database {
public:
    enum class History { perhapsNew, usedBefore };

    // Makes the tables that are missing.
    using Schema = void (*)(Transaction& transaction);

    // Throws DatabaseError, also for a file that a newer version wrote, for one that is damaged
    // anywhere, and for an empty or missing one that was used before.
    Database(const QString& file, Schema bringUpToDate, History history = History::perhapsNew);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // Brings the log into the file.
    void checkpoint();

private:
    friend class Transaction;
    void run(const char* sql);

    std::mutex m_mutex;
    sqlite3* m_handle = nullptr;
};

// Gives the file and what belongs to it another name in its folder. Returns it, or nothing where
// there was no file, or it could not be renamed. Nobody has it open.
QString setDatabaseAside(const QString& file);

// What is done in it is done as a whole when it is committed, on the disk by then, and else not at
// all. Others wait meanwhile, so nothing slow happens inside.
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
