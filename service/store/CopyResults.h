#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

class Transaction;

// Replies to requests for generated texts, stored for a week. A client that repeats its request
// with the same identifier gets the stored reply.

std::optional<QByteArray> copyResult(Transaction& transaction, qint64 account,
                                     const QString& requestId);
// Stores `reply`, unless a reply to the request is stored already. Returns the stored reply.
QByteArray keepCopyResult(Transaction& transaction, qint64 account, const QString& requestId,
                          const QByteArray& reply, qint64 now);
