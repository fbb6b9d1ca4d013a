#include "service/Handlers.h"
#include "service/Service.h"
#include "service/Visit.h"
#include "service/store/Ledger.h"
#include "service/store/Mail.h"
#include "service/store/Secrets.h"
#include "service/store/Sessions.h"

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 resetLife = 60 * 60 * 1000;    // ms

AccountSummary summaryOf(const Visit& visit, Transaction& transaction, const Account& account)
{
    AccountProfile profile;
    profile.id = account.publicId;
    profile.email = account.email;
    if (!account.fullName.isEmpty())
        profile.fullName = account.fullName;
    profile.isAdmin = visit.service.isAdministrator(transaction, account);
    profile.locale = u"es"_s;
    AccountSummary summary;
    summary.balance = balance(transaction, account.id);
    summary.profile = profile;
    summary.storage = StorageSummary{};
    return summary;
}

QByteArray cookieHeader(const QByteArray& token, qint64 seconds)
{
    return QByteArray(sessionCookie) + "=" + token +
           "; Path=/; HttpOnly; SameSite=Lax; Max-Age=" + QByteArray::number(seconds);
}

// Opens a session and commits. The client's earlier session ends, because its cookie is replaced.
ServiceReply signedInReply(Visit& visit, Transaction& transaction, const Account& account)
{
    endSession(transaction, visit.request.cookies.value(sessionCookie));
    const QByteArray token = openSession(transaction, account.id, visit.service.now());
    ServiceReply reply = wireReply(summaryOf(visit, transaction, account));
    transaction.commit();
    reply.headers.append({"Set-Cookie", cookieHeader(token, sessionDays * 24 * 60 * 60)});
    return reply;
}

QString neededEmail(const QString& email)
{
    const auto normalized = normalizedEmail(email);
    if (!normalized)
        throw Refusal(400, "invalid_credentials", u"the e-mail address"_s);
    return *normalized;
}

void needAcceptable(const QString& password)
{
    if (!isAcceptablePassword(password))
        throw Refusal(400, "invalid_password", u"8 to 1000 characters"_s);
}

std::optional<Account> foundAccount(Service& service, const QString& email)
{
    Transaction transaction(service.database());
    return accountWithEmail(transaction, email);
}

}    // namespace

ServiceReply signIn(Visit& visit)
{
    Service& service = visit.service;
    const auto given = wireBody<CredentialsRequest>(visit);
    const QString email = neededEmail(given.email);
    service.countSource(visit.request);
    const QString key = visit.request.source + u' ' + email;
    if (!service.signInAttempts().allow(key, service.now()))
        throw Refusal(429, "too_many_attempts");
    const auto account = foundAccount(service, email);
    if (!passwordFits(account ? account->passwordHash : QByteArray(), given.password))
        throw Refusal(400, "invalid_credentials");
    service.signInAttempts().forget(key);
    Transaction transaction(service.database());
    needUnchanged(transaction, *account);
    return signedInReply(visit, transaction, *account);
}

ServiceReply registerAccount(Visit& visit)
{
    const auto given = wireBody<CredentialsRequest>(visit);
    const QString email = neededEmail(given.email);
    needAcceptable(given.password);
    visit.service.countSource(visit.request);
    if (foundAccount(visit.service, email))
        throw Refusal(409, "email_exists");
    const QByteArray hash = hashedPassword(given.password);
    Transaction transaction(visit.service.database());
    const Account account = addAccount(transaction, email, hash, visit.service.now());
    return signedInReply(visit, transaction, account);
}

// Needs no session: signing out must succeed also when the session has ended.
ServiceReply signOut(Visit& visit)
{
    Transaction transaction(visit.service.database());
    endSession(transaction, visit.request.cookies.value(sessionCookie));
    transaction.commit();
    ServiceReply reply = okReply();
    reply.headers.append({"Set-Cookie", cookieHeader({}, 0)});
    return reply;
}

ServiceReply showAccount(Visit& visit)
{
    Transaction transaction(visit.service.database());
    return wireReply(summaryOf(visit, transaction, visit.account));
}

ServiceReply changeProfile(Visit& visit)
{
    const auto given = wireBody<ProfileRequest>(visit, "invalid_profile");
    Transaction transaction(visit.service.database());
    setFullName(transaction, visit.account.id, given.fullName);
    const auto account = accountWithId(transaction, visit.account.id);
    ServiceReply reply = wireReply(summaryOf(visit, transaction, account.value_or(visit.account)));
    transaction.commit();
    return reply;
}

ServiceReply changePassword(Visit& visit)
{
    Service& service = visit.service;
    const auto given = wireBody<PasswordChangeRequest>(visit);
    const QString key = u"password "_s + visit.account.email;
    if (!service.signInAttempts().allow(key, service.now()))
        throw Refusal(429, "too_many_attempts");
    if (!passwordFits(visit.account.passwordHash, given.currentPassword))
        throw Refusal(400, "invalid_credentials");
    service.signInAttempts().forget(key);
    needAcceptable(given.newPassword);
    if (given.newPassword != given.confirmNewPassword)
        throw Refusal(400, "invalid_password", u"the two are not the same"_s);
    const QByteArray hash = hashedPassword(given.newPassword);
    Transaction transaction(service.database());
    const QByteArray session = visit.request.cookies.value(sessionCookie);
    if (sessionAccount(transaction, session, service.now()) != visit.account.id)
        throw Refusal(401, "unauthorized");
    needUnchanged(transaction, visit.account);
    setPassword(transaction, visit.account.id, hash);
    endSessions(transaction, visit.account.id, session);
    transaction.commit();
    return okReply();
}

// The reply never tells whether the address has an account.
ServiceReply requestPasswordReset(Visit& visit)
{
    Service& service = visit.service;
    const auto given = wireBody<PasswordResetRequest>(visit);
    const auto email = normalizedEmail(given.email);
    service.countSource(visit.request);
    const auto account = email ? foundAccount(service, *email) : std::nullopt;
    if (!account ||
        !service.resetAttempts().allow(visit.request.source + u' ' + *email, service.now()))
        return okReply();
    Transaction transaction(service.database());
    const QByteArray token = givePass(transaction, PassPurpose::passwordReset, account->id, {},
                                      {service.now(), resetLife});
    // Commits the pass only after its mail is stored: a pass without a mail would stay valid for an
    // hour, of use to nobody.
    if (!storeMail(service.folder(u"correo"_s), account->email, u"Crea una nueva contraseña"_s,
                   u"Hola:\n\nAlguien ha pedido una nueva contraseña para la cuenta %1.\n"
                   "Abre este enlace durante la próxima hora para crear una nueva contraseña:\n\n"
                   "%2/restablecer?token=%3\n\n"
                   "Si no has sido tú, no hagas nada: tu contraseña sigue siendo la misma.\n"_s.arg(
                       account->email, service.address(), QString::fromLatin1(token)),
                   service.now()))
        throw Refusal(500, "mail_not_stored");
    transaction.commit();
    return okReply();
}

ServiceReply exchangeDesktopToken(Visit& visit)
{
    const auto given = wireBody<DesktopAuthExchangeRequest>(visit);
    Transaction transaction(visit.service.database());
    const auto pass = takePass(transaction, PassPurpose::desktopSignIn, given.token.toUtf8(),
                               visit.service.now());
    const auto account = pass ? accountWithId(transaction, pass->account) : std::nullopt;
    if (!account)
        throw Refusal(400, "invalid_credentials", u"the token was used or has expired"_s);
    return signedInReply(visit, transaction, *account);
}
