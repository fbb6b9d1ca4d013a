#include "cli/AccountCommands.h"

#include "account/AccountChecks.h"
#include "account/PurchaseTexts.h"
#include "cli/AccountConnection.h"
#include "cli/ExitStatus.h"
#include "cli/Terminal.h"
#include "model/JsonMapping.h"

#include <QCommandLineParser>
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

// Parser, messages and exit statuses of one account command.
class AccountCommand {
public:
    AccountCommand(const QString& name, const QString& description,
                   const ServiceConfiguration& configuration)
        : m_name(name), m_configurationProblem(configuration.problem)
    {
        m_parser.setApplicationDescription(description);
        m_parser.addOption(m_help);
    }

    QCommandLineParser& parser() { return m_parser; }

    // Returns the exit status if the command ends here; nothing if it goes on.
    std::optional<int> parse(const QStringList& arguments)
    {
        if (!m_parser.parse(QStringList{u"moltiva "_s + m_name} + arguments))
            return wrongUse(m_parser.errorText());
        if (m_parser.isSet(m_help)) {
            QString text = m_parser.helpText();
            text.replace(0, text.indexOf(u'\n'), u"Uso: moltiva %1 [opciones]"_s.arg(m_name));
            print(stdout, text.trimmed());
            return exitDone;
        }
        if (!m_parser.positionalArguments().isEmpty()) {
            return wrongUse(
                u"no espero «%1»."_s.arg(printable(m_parser.positionalArguments().first())));
        }
        if (!m_configurationProblem.isEmpty())
            return wrongUse(m_configurationProblem);
        return std::nullopt;
    }

    int wrongUse(const QString& sentence) const { return failed(sentence, exitWrongUse); }
    int failed(const QString& sentence, int status = exitSomeFailed) const
    {
        print(stderr, u"moltiva %1: %2"_s.arg(m_name, sentence));
        return status;
    }
    // Prints why an action of the session failed; returns the exit status.
    int failed(const AccountSession& session) const
    {
        return failed(session.outcome(), session.isUnreachable() ? exitNoNetwork
                                         : session.needsSignIn() ? exitNotSignedIn
                                                                 : exitSomeFailed);
    }
    // Prints the outcome of an action of the session; returns the exit status.
    int ended(const AccountSession& session, bool done) const
    {
        if (!done)
            return failed(session);
        print(stdout, session.outcome());
        return exitDone;
    }

private:
    QString m_name, m_configurationProblem;
    QCommandLineParser m_parser;
    const QCommandLineOption m_help{{u"h"_s, u"help"_s}, u"muestra esta ayuda"_s};
};

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

void tellOfRefund(const QString& sentence)
{
    print(stderr, sentence);
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
                           configuration);
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
    AccountCommand command(u"history"_s, u"Muestra las compras de la cuenta."_s, configuration);
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
