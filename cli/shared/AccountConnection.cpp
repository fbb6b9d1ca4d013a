#include "cli/shared/AccountConnection.h"

#include "account/AccountAPI.h"
#include "account/AccountError.h"
#include "cli/shared/Terminal.h"

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

std::optional<AccountConnection::SignInRefusal> AccountConnection::signIn()
{
    using Refusal = ChargeResult::Refusal;
    QCoro::waitFor(session().bootstrap());
    if (session().isAuthenticated())
        return {};
    if (session().needsSignIn()) {
        return SignInRefusal{Refusal::signedOut,
                             u"Necesitas iniciar sesión: «moltiva login --email EMAIL», o «moltiva "
                             "register --email EMAIL» si aún no tienes cuenta."_s};
    }
    return SignInRefusal{session().isUnreachable() ? Refusal::unreachable : Refusal::other,
                         session().message()};
}

namespace {

// Must not throw: QCoro::waitFor() would wait for ever.
QCoro::Task<AccountConnection::Networks> askedNetworks(AccountAPI* api)
{
    AccountConnection::Networks networks;
    QCoro::Task<SocialStatusResponse> asking = api->socialStatus();
    try {
        const SocialStatusResponse status = co_await std::move(asking);
        networks.all = status.networks;
    } catch (const std::exception& error) {
        const auto refusal = isUnreachable(error) ? ChargeResult::Refusal::unreachable
                                                  : ChargeResult::Refusal::other;
        networks.refusal = {refusal, u"No se han podido consultar las conexiones."_s};
    }
    co_return networks;
}

}    // namespace

AccountConnection::Networks AccountConnection::networks()
{
    return QCoro::waitFor(askedNetworks(&api()));
}

ExitStatus statusOf(ChargeResult::Refusal refusal)
{
    switch (refusal) {
    case ChargeResult::Refusal::signedOut:
        return exitNotSignedIn;
    case ChargeResult::Refusal::tooFewCredits:
        return exitTooFewCredits;
    case ChargeResult::Refusal::unreachable:
        return exitNoNetwork;
    case ChargeResult::Refusal::other:
    case ChargeResult::Refusal::beingPaid:
    case ChargeResult::Refusal::paidMeanwhile:
        return exitSomeFailed;
    }
    Q_UNREACHABLE();
}
