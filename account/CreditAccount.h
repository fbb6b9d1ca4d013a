#pragma once

#include <QCoroTask>
#include <QObject>

// The signed-in user's credits. CreditJournal reserves and refunds them.
class CreditAccount : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    // Names the user and the service; the same on every run. Empty when nobody is signed in.
    virtual QString accountKey() const = 0;
    virtual qint64 balance() const = 0;    // credits, as far as known here

    // Both throw the service's refusal, or the reason why no reply came: the service may have acted
    // nevertheless.
    virtual QCoro::Task<> reserveCloudCopyCredits(qint64 cost, const QString& requestId) = 0;
    virtual QCoro::Task<> refundCloudCopyCredits(qint64 cost, const QString& requestId) = 0;

Q_SIGNALS:
    void changed();    // who is signed in, the balance, or anything else of the account
};
