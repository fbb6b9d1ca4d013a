#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

class Transaction;

// The replies to orders of texts, kept for a week: who asks again with the same request gets the
// same texts.

std::optional<QByteArray> copyResult(Transaction& transaction, qint64 account,
                                     const QString& requestId);
// Gives what is kept: the first of two that were made at once.
QByteArray keepCopyResult(Transaction& transaction, qint64 account, const QString& requestId,
                          const QByteArray& reply, qint64 now);
