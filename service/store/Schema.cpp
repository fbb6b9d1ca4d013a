#include "service/store/Schema.h"

#include "service/store/Database.h"

#include <array>

namespace {

constexpr int schemaVersion = 4;

// Times are milliseconds since 1970. Tokens of sessions and passes are stored as hashes. The
// identifiers of pages (checkout, invoice, post) are secrets too, but are stored as they are,
// because the service shows links to those pages again.

// Each entry contains the balance after it, as in a bank statement: reading a balance takes one
// row, and the sums can be checked.
constexpr std::array ledgerTable{
    "CREATE TABLE ledger_entry (id INTEGER PRIMARY KEY AUTOINCREMENT,"
    " account INTEGER NOT NULL REFERENCES account,"
    " kind TEXT NOT NULL CHECK (kind IN ('welcome', 'purchase', 'reserve', 'refund')),"
    " amount INTEGER NOT NULL CHECK (amount <> 0 AND (amount < 0) = (kind = 'reserve')),"
    " balance INTEGER NOT NULL CHECK (balance >= 0),"
    " request_id TEXT, attempt INTEGER, note TEXT NOT NULL, created INTEGER NOT NULL,"
    " CHECK ((kind IN ('reserve', 'refund')) = (request_id IS NOT NULL AND attempt IS NOT NULL)))"
    " STRICT",
};
constexpr std::array ledgerRules{
    "CREATE INDEX ledger_account ON ledger_entry (account, id)",
    "CREATE UNIQUE INDEX ledger_request ON ledger_entry (account, request_id, attempt, kind)"
    " WHERE request_id IS NOT NULL",
    "CREATE TRIGGER ledger_adds_up BEFORE INSERT ON ledger_entry"
    " WHEN NEW.balance <> NEW.amount + coalesce((SELECT balance FROM ledger_entry"
    "  WHERE account = NEW.account ORDER BY id DESC LIMIT 1), 0)"
    " BEGIN SELECT raise(ABORT, 'the ledger does not add up'); END",
    "CREATE TRIGGER ledger_keeps BEFORE UPDATE ON ledger_entry"
    " BEGIN SELECT raise(ABORT, 'entries of the ledger stay as they are'); END",
    "CREATE TRIGGER ledger_keeps_all BEFORE DELETE ON ledger_entry"
    " BEGIN SELECT raise(ABORT, 'entries of the ledger stay'); END",
};

constexpr std::array accountTables{
    "CREATE TABLE account (id INTEGER PRIMARY KEY, public_id TEXT NOT NULL UNIQUE,"
    " email TEXT NOT NULL UNIQUE, full_name TEXT, password TEXT, created INTEGER NOT NULL) STRICT",

    "CREATE TABLE session (hash BLOB PRIMARY KEY, account INTEGER NOT NULL REFERENCES account,"
    " created INTEGER NOT NULL, last_used INTEGER NOT NULL) STRICT, WITHOUT ROWID",
    "CREATE INDEX session_account ON session (account)",

    "CREATE TABLE pass (hash BLOB PRIMARY KEY, purpose TEXT NOT NULL,"
    " account INTEGER NOT NULL REFERENCES account, detail TEXT NOT NULL,"
    " expires INTEGER NOT NULL) STRICT, WITHOUT ROWID",

    "CREATE TABLE checkout (id TEXT PRIMARY KEY, account INTEGER NOT NULL REFERENCES account,"
    " credits INTEGER NOT NULL, state TEXT NOT NULL CHECK (state IN ('open', 'paid', 'cancelled')),"
    " created INTEGER NOT NULL) STRICT, WITHOUT ROWID",
    "CREATE TABLE purchase (number INTEGER PRIMARY KEY AUTOINCREMENT,"
    " id TEXT NOT NULL UNIQUE, account INTEGER NOT NULL REFERENCES account,"
    " checkout TEXT NOT NULL UNIQUE REFERENCES checkout, credits INTEGER NOT NULL,"
    " amount_cents INTEGER NOT NULL, created INTEGER NOT NULL, invoice TEXT NOT NULL UNIQUE)"
    " STRICT",
    "CREATE INDEX purchase_account ON purchase (account, number)",

    "CREATE TABLE social_connection (account INTEGER NOT NULL REFERENCES account,"
    " network TEXT NOT NULL, display_name TEXT NOT NULL, connected INTEGER NOT NULL,"
    " PRIMARY KEY (account, network)) STRICT, WITHOUT ROWID",
    "CREATE TABLE social_post (id TEXT PRIMARY KEY, account INTEGER NOT NULL REFERENCES account,"
    " request_id TEXT NOT NULL, network TEXT NOT NULL, display_name TEXT NOT NULL,"
    " placement TEXT NOT NULL, caption TEXT NOT NULL, image_types TEXT NOT NULL,"
    " created INTEGER NOT NULL, UNIQUE (account, request_id)) STRICT, WITHOUT ROWID",

    "CREATE TABLE setting (name TEXT PRIMARY KEY, value BLOB NOT NULL) STRICT, WITHOUT ROWID",
};

constexpr std::array copyTables{
    // Replies with paid texts, stored for a client that loses the reply and asks again.
    "CREATE TABLE copy_result (account INTEGER NOT NULL REFERENCES account,"
    " request_id TEXT NOT NULL, reply BLOB NOT NULL, created INTEGER NOT NULL,"
    " PRIMARY KEY (account, request_id)) STRICT, WITHOUT ROWID",
    "CREATE INDEX copy_result_age ON copy_result (created)",
};

constexpr std::array templateTables{
    // `current`: number of a version; null for a name that was withdrawn, but never uploaded.
    "CREATE TABLE template (name TEXT PRIMARY KEY, current INTEGER, is_withdrawn INTEGER NOT NULL,"
    " updated INTEGER NOT NULL) STRICT, WITHOUT ROWID",
    "CREATE TABLE template_version (number INTEGER PRIMARY KEY AUTOINCREMENT,"
    " name TEXT NOT NULL REFERENCES template, sha256 TEXT NOT NULL, content BLOB NOT NULL,"
    " UNIQUE (name, sha256)) STRICT",
};

// Versions before 3 limited a balance to 2,000,000,000. These statements move their entries to a
// table without that limit.
constexpr std::array ledgerAside{"ALTER TABLE ledger_entry RENAME TO narrow_entry"};
constexpr std::array ledgerBack{
    "INSERT INTO ledger_entry SELECT * FROM narrow_entry ORDER BY id",
    "DROP TABLE narrow_entry",
};

qint64 versionOf(Transaction& transaction)
{
    Rows version = transaction.rows("PRAGMA user_version");
    return version.next() ? version.number(0) : 0;
}

}    // namespace

void bringUpToDate(Transaction& transaction)
{
    const qint64 found = versionOf(transaction);
    if (found > schemaVersion)
        throw DatabaseError(DatabaseError::Kind::tooNew, "written by a newer version");
    if (found == schemaVersion)
        return;
    const auto take = [&](const auto& statements) {
        for (const char* statement : statements)
            transaction.run(statement);
    };
    if (found < 1)
        take(accountTables);
    if (found < 2)
        take(copyTables);
    if (found < 3) {
        if (found > 0)
            take(ledgerAside);
        take(ledgerTable);
        if (found > 0)
            take(ledgerBack);
        take(ledgerRules);
    }
    take(templateTables);
    transaction.run("PRAGMA user_version = 4");
}
