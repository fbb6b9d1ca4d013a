#pragma once

#include <QCoroTask>
#include <QObject>

// The credits of whoever is signed in, as a CreditJournal moves them.
class CreditAccount : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    // The user at this service, the same on every run; empty when nobody is signed in.
    virtual QString accountKey() const = 0;
    virtual qint64 balance() const = 0;    // credits, as far as known here

    // Both throw what the service refused, or what kept it from answering: it may have acted then.
    virtual QCoro::Task<> reserveCloudCopyCredits(qint64 cost, const QString& requestId) = 0;
    virtual QCoro::Task<> refundCloudCopyCredits(qint64 cost, const QString& requestId) = 0;

Q_SIGNALS:
    void changed();    // who is signed in, the balance, or anything else of the account
};
