#include "cli/AccountConnection.h"

#include "cli/Terminal.h"

#include <QCoroTask>

using namespace Qt::StringLiterals;

AccountConnection::AccountConnection(const ServiceConfiguration& configuration,
                                     const std::function<void(const QString& sentence)>& tell)
    : m_account(configuration, m_preferences, userDataFolder(),
                {.openInBrowser = [](const QUrl&) { return false; }})
{
    const auto tellOfRefund = [tell](qint64 credits, const QString& what) {
        tell(u"Se han devuelto %1 créditos: %2 no llegó a terminar."_s.arg(QString::number(credits),
                                                                           printable(what)));
    };
    QObject::connect(&journal(), &CreditJournal::refunded, &journal(), tellOfRefund);
}

void AccountConnection::settle()
{
    QCoro::waitFor(journal().settle());
}
