#include "cli/AccountCommands.h"

#include "account/AccountChecks.h"
#include "account/PurchaseTexts.h"
#include "cli/shared/AccountCommand.h"
#include "cli/shared/AccountConnection.h"
#include "model/JsonMapping.h"

#include <QCoroTask>
#include <QStringDecoder>

using namespace Qt::StringLiterals;

namespace {

struct AccountLine {
    QString name;
    std::optional<QString> email;
    qint64 balance = 0;
};

struct PurchaseLine {
    QString id, kind, detail;
    std::optional<QString> createdAt;
    int amountCents = 0;
};

}    // namespace

template <>
struct json::JsonFields<AccountLine> {
    static constexpr auto fields =
        std::tuple{required("name", &AccountLine::name), optional("email", &AccountLine::email),
                   required("balance", &AccountLine::balance)};
};

template <>
struct json::JsonFields<PurchaseLine> {
    static constexpr auto fields = std::tuple{
        required("id", &PurchaseLine::id), required("kind", &PurchaseLine::kind),
        required("detail", &PurchaseLine::detail), optional("createdAt", &PurchaseLine::createdAt),
        required("amountCents", &PurchaseLine::amountCents)};
};

namespace {

enum class SecretUse { known, chosen };

// Reads a password. On a terminal, where it is not shown, a newly chosen one must be typed twice.
std::optional<QString> askedPassword(const AccountCommand& command, SecretUse use)
{
    const std::optional<QByteArray> password = readSecret(u"Contraseña: "_s);
    if (!password || password->isEmpty()) {
        command.failed(u"falta la contraseña, o es demasiado larga."_s);
        return std::nullopt;
    }
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(*password);
    // Invalid bytes would all decode to U+FFFD and so make different passwords equal.
    if (decoder.hasError()) {
        command.failed(u"la contraseña no está escrita en UTF-8."_s);
        return std::nullopt;
    }
    if (use == SecretUse::chosen && isTerminal(stdin) &&
        readSecret(u"Repetir contraseña: "_s) != password) {
        command.failed(u"las contraseñas no coinciden."_s);
        return std::nullopt;
    }
    return text;
}

using SignIn = QCoro::Task<bool> (AccountSession::*)(const QString&, const QString&);

int runSignIn(AccountCommand command, SignIn signIn, SecretUse use, const QStringList& arguments,
              const ServiceConfiguration& configuration)
{
    const QCommandLineOption email(u"email"_s, u"el email de la cuenta"_s, u"email"_s);
    command.parser().addOption(email);
    if (const auto status = command.parse(arguments))
        return *status;
    if (!command.parser().isSet(email))
        return command.wrongUse(u"falta --email."_s);
    const QString address = command.parser().value(email);
    const std::optional<QString> password = askedPassword(command, use);
    if (!password)
        return exitSomeFailed;
    if (const CheckResult failure = use == SecretUse::chosen
                                        ? checkRegistration(address, *password, *password)
                                        : checkLogin(address, *password))
        return command.wrongUse(failure->sentence);
    AccountConnection connection(configuration, &tellOfRefund);
    AccountSession& session = connection.session();
    const bool done = QCoro::waitFor((session.*signIn)(address, *password));
    const QString reason = connection.preferences().reason();
    if (done && !connection.isSessionKept()) {
        connection.refundLeftOpen();
        return command.failed(u"la sesión no se ha podido guardar: %1. La próxima orden tendrá que "
                              "iniciarla de nuevo."_s.arg(reason));
    }
    const int status = command.ended(session, done);
    connection.refundLeftOpen();
    return status;
}

}    // namespace

int runLogin(const QStringList& arguments, const ServiceConfiguration& configuration)
{
    return runSignIn({u"login"_s,
                      u"Inicia sesión. La contraseña se pide o se lee de la entrada "
                      "estándar."_s,
                      configuration},
                     &AccountSession::login, SecretUse::known, arguments, configuration);
}

int runRegister(const QStringList& arguments, const ServiceConfiguration& configuration)
{
    return runSignIn({u"register"_s,
                      u"Crea una cuenta y entra en ella. La contraseña se pide o "
                      "se lee de la entrada estándar."_s,
                      configuration},
                     &AccountSession::registerAccount, SecretUse::chosen, arguments, configuration);
}

int runLogout(const QStringList& arguments, const ServiceConfiguration& configuration)
{
    AccountCommand command(u"logout"_s, u"Cierra la sesión."_s, configuration);
    if (const auto status = command.parse(arguments))
        return *status;
    AccountConnection connection(configuration, &tellOfRefund);
    AccountSession& session = connection.session();
    const bool done = QCoro::waitFor(session.logout());
    return command.ended(session, done && !session.isProblem());
}

int runAccount(const QStringList& arguments, const ServiceConfiguration& configuration)
{
    AccountCommand command(u"account"_s, u"Muestra el nombre y los créditos de la cuenta."_s,
                           configuration, AccountCommand::Needs::signIn);
    const QCommandLineOption json(u"json"_s, u"como objeto JSON"_s);
    command.parser().addOption(json);
    if (const auto status = command.parse(arguments))
        return *status;
    AccountConnection connection(configuration, &tellOfRefund);
    AccountSession& session = connection.session();
    if (!QCoro::waitFor(session.bootstrap()))
        return command.failed(session);
    connection.refundLeftOpen();
    if (!session.isAuthenticated())
        return command.failed(u"Necesitas iniciar sesión."_s, exitNotSignedIn);
    const AccountLine line{session.displayName(), session.account().profile->email,
                           session.account().balance};
    if (command.parser().isSet(json)) {
        print(stdout, QString::fromUtf8(json::written(line)));
    } else {
        print(stdout, printable(line.name));
        print(stdout, u"%1 créditos"_s.arg(line.balance));
    }
    return exitDone;
}

int runHistory(const QStringList& arguments, const ServiceConfiguration& configuration)
{
    AccountCommand command(u"history"_s, u"Muestra las compras de la cuenta."_s, configuration,
                           AccountCommand::Needs::signIn);
    const QCommandLineOption json(u"json"_s, u"un objeto JSON por compra"_s);
    command.parser().addOption(json);
    if (const auto status = command.parse(arguments))
        return *status;
    AccountConnection connection(configuration, &tellOfRefund);
    AccountSession& session = connection.session();
    if (!QCoro::waitFor(session.refreshPurchaseHistory()))
        return command.failed(session);
    const QList<PurchaseHistoryItem>& purchases = session.purchaseHistory();
    for (const PurchaseHistoryItem& each : purchases) {
        const PurchaseLine line{each.id, each.kind, each.detail, each.createdAt, each.amountCents};
        if (command.parser().isSet(json)) {
            print(stdout, QString::fromUtf8(json::written(line)));
        } else {
            print(stdout, QStringList{printable(purchaseDate(each)), purchaseKind(each),
                                      printable(each.detail), purchaseAmount(each)}
                              .join(u"  "_s));
        }
    }
    if (purchases.isEmpty() && !command.parser().isSet(json))
        print(stdout, u"Sin compras recientes"_s);
    return exitDone;
}
