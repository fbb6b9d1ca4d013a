#include "service/store/CopyResults.h"

#include "service/store/Database.h"

namespace {

constexpr qint64 keptTime = 7 * 24 * 60 * 60 * 1000LL;    // ms

}    // namespace

std::optional<QByteArray> copyResult(Transaction& transaction, qint64 account,
                                     const QString& requestId)
{
    Rows found = transaction.rows(
        "SELECT reply FROM copy_result WHERE account = ? AND request_id = ?", {account, requestId});
    return found.next() ? std::optional(found.bytes(0)) : std::nullopt;
}

QByteArray keepCopyResult(Transaction& transaction, qint64 account, const QString& requestId,
                          const QByteArray& reply, qint64 now)
{
    transaction.run("DELETE FROM copy_result WHERE created < ?", {now - keptTime});
    transaction.run("INSERT INTO copy_result (account, request_id, reply, created)"
                    " VALUES (?, ?, ?, ?) ON CONFLICT DO NOTHING",
                    {account, requestId, reply, now});
    return copyResult(transaction, account, requestId).value_or(reply);
}
