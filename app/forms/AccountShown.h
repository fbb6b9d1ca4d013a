#pragma once

#include <QString>

// The state of the account as its screens show it; each screen shows a part.
struct AccountShown {
    QString name;    // the full name, or the e-mail address if there is none
    QString fullName, email;
    qint64 balance = 0;    // credits
    QString message;       // the outcome of the last action
    bool isProblem = false;
    bool isWorking = false;
    bool hasPendingCheckout = false;
    QString checkoutAddress;       // the web page for paying the pending checkout; may be empty
    bool mayBeSignedIn = false;    // the service could not be reached to find out
    bool hasTestMail = false;      // the service shows mails on a web page instead of sending them
    bool operator==(const AccountShown&) const = default;
};
