#pragma once

#include <QCoroTask>
#include <QObject>

// The signed-in user's credits. CreditJournal reserves and refunds them.
class CreditAccount : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    // Identifies the user and the service; the same in every run of the program. Empty when nobody
    // is signed in.
    virtual QString accountKey() const = 0;
    virtual qint64 balance() const = 0;    // credits, as last told by the service

    // Both throw AccountError or TransportError. Unless the service refused, it may have moved the
    // credits in spite of the error.
    virtual QCoro::Task<> reserveCloudCopyCredits(qint64 cost, const QString& requestId) = 0;
    virtual QCoro::Task<> refundCloudCopyCredits(qint64 cost, const QString& requestId) = 0;

Q_SIGNALS:
    void changed();    // who is signed in, the balance, or anything else of the account
};
