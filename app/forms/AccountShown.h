#pragma once

#include <QString>

// The state of the account as its screens show it; each screen shows a part.
struct AccountShown {
    QString name;    // the full name, or the e-mail address without one
    QString fullName, email;
    qint64 balance = 0;    // credits
    QString message;       // the outcome of the last action
    bool isProblem = false;
    bool isWorking = false;
    bool hasPendingCheckout = false;
    QString checkoutAddress;       // where the pending checkout is paid; may be empty
    bool mayBeSignedIn = false;    // unknown: the service could not be reached
    bool hasTestMail = false;      // the service shows the mails that it does not send
    bool operator==(const AccountShown&) const = default;
};
