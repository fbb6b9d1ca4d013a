#include "cli/AccountConnection.h"

#include "cli/Terminal.h"

#include <QCoroTask>

using namespace Qt::StringLiterals;

AccountConnection::AccountConnection(const ServiceConfiguration& configuration,
                                     const std::function<void(const QString& sentence)>& tell)
    : m_account(configuration, m_preferences, userDataFolder(),
                {.openInBrowser = [](const QUrl&) { return false; }})
{
    if (const QString problem = m_preferences.takeProblem(); !problem.isEmpty())
        tell(problem);
    QObject::connect(&journal(), &CreditJournal::refunded, &journal(),
                     [tell](qint64 credits, const QString& what) {
                         tell(refundSentence(credits, printable(what)));
                     });
    QObject::connect(&journal(), &CreditJournal::lost, &journal(),
                     [tell](qint64 credits, const QString& what) {
                         tell(lossSentence(credits, printable(what)));
                     });
}

void AccountConnection::refundLeftOpen()
{
    QCoro::waitFor(journal().refundLeftOpen());
}
