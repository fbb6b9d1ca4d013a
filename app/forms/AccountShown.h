#pragma once

#include <QString>

// What the screens of the account show of it; each takes what it needs.
struct AccountShown {
    QString name;    // the e-mail where there is none
    QString fullName, email;
    qint64 balance = 0;    // credits
    QString message;       // of the last action
    bool isProblem = false;
    bool isWorking = false;
    bool hasPendingCheckout = false;
    QString checkoutAddress;       // where the pending one is paid; may be empty
    bool mayBeSignedIn = false;    // the service that knows could not be asked
    bool hasTestMail = false;      // the service shows the mails that it does not send
    bool operator==(const AccountShown&) const = default;
};
