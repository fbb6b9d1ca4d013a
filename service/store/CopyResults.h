#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

class Transaction;

// Replies to orders of texts, kept for a week. An order that comes again with its request
// identifier gets its texts again.

std::optional<QByteArray> copyResult(Transaction& transaction, qint64 account,
                                     const QString& requestId);
// Keeps `reply`, unless one is kept for the request already. Returns the one that is kept.
QByteArray keepCopyResult(Transaction& transaction, qint64 account, const QString& requestId,
                          const QByteArray& reply, qint64 now);
