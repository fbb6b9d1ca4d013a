#include "cli/NetworkCommands.h"

#include "account/AccountAPI.h"
#include "account/AccountError.h"
#include "cli/PublishOptions.h"
#include "cli/shared/AccountCommand.h"
#include "cli/shared/AccountConnection.h"
#include "model/JsonMapping.h"
#include "studio/publish/PublishSentences.h"

#include <QProcess>

using namespace Qt::StringLiterals;

namespace {

struct NetworkLine {
    QString network, name;
    bool isConnected = false, isConfigured = true;
    std::optional<QString> account;
};

}    // namespace

template <>
struct json::JsonFields<NetworkLine> {
    static constexpr auto fields =
        std::tuple{required("network", &NetworkLine::network), required("name", &NetworkLine::name),
                   required("connected", &NetworkLine::isConnected),
                   required("configured", &NetworkLine::isConfigured),
                   optional("account", &NetworkLine::account)};
};

namespace {

QString stateOf(const NetworkLine& line)
{
    using namespace PublishSentences;
    const QStringView state = !line.isConfigured ? pending : line.isConnected ? connected : absent;
    return state.toString();
}

struct TokenAnswer {
    QUrl page;
    QString problem;          // sentence for the user; empty: none
    int status = exitDone;    // for commands that end with the problem
};

// Must not throw: QCoro::waitFor() would wait for ever.
QCoro::Task<TokenAnswer> askedToken(AccountAPI* api, QString network)
{
    TokenAnswer answer;
    QCoro::Task<SocialConnectTokenResponse> asking = api->socialConnectToken(network);
    try {
        const SocialConnectTokenResponse token = co_await std::move(asking);
        answer.page = token.url;
    } catch (const std::exception& error) {
        const auto* refusal = dynamic_cast<const AccountError*>(&error);
        const bool isSignedOut = refusal && refusal->kind() == AccountError::Kind::unauthorized;
        answer.problem = readable(error);
        answer.status = isSignedOut            ? exitNotSignedIn
                        : isUnreachable(error) ? exitNoNetwork
                                               : exitSomeFailed;
    }
    co_return answer;
}

// Whether there is a display on which a browser can open the page.
bool openInBrowser(const QUrl& page)
{
    const bool hasDisplay =
        qEnvironmentVariableIsSet("WAYLAND_DISPLAY") || qEnvironmentVariableIsSet("DISPLAY");
    return hasDisplay &&
           QProcess::startDetached(u"xdg-open"_s, {page.toString(QUrl::FullyEncoded)});
}

bool isWebPage(const QUrl& page)
{
    return page.scheme() == u"https"_s || page.scheme() == u"http"_s;
}

}    // namespace

int runNetworks(const QStringList& arguments, const ServiceConfiguration& configuration)
{
    AccountCommand command(u"networks"_s, u"Muestra las redes en las que se puede publicar."_s,
                           configuration, AccountCommand::Needs::signIn);
    const QCommandLineOption isJson(u"json"_s, u"un objeto JSON por red"_s);
    command.parser().addOption(isJson);
    if (const auto status = command.parse(arguments))
        return *status;
    AccountConnection connection(configuration, &tellOfRefund);
    if (const auto refusal = connection.signIn())
        return command.failed(refusal->reason, statusOf(refusal->refusal));
    const AccountConnection::Networks networks = connection.networks();
    if (networks.refusal)
        return command.failed(networks.refusal->reason, statusOf(networks.refusal->refusal));
    for (const SocialNetworkConnection& each : networks.all) {
        const NetworkLine line{each.network, each.name, each.isConnected,
                               each.isProviderConfigured(), each.displayName};
        if (command.parser().isSet(isJson)) {
            print(stdout, QString::fromUtf8(json::written(line)));
        } else {
            QStringList parts{printable(line.network), stateOf(line)};
            if (line.isConnected && line.account)
                parts.append(printable(*line.account));
            print(stdout, parts.join(u"  "_s));
        }
    }
    return exitDone;
}

int runConnect(const QStringList& arguments, const ServiceConfiguration& configuration)
{
    AccountCommand command(u"connect"_s, u"Abre la página en la que se conecta una red."_s,
                           configuration, AccountCommand::Needs::signIn);
    command.parser().addPositionalArgument(u"red"_s, u"la red"_s);
    if (const auto status = command.parse(arguments, 1))
        return *status;
    const QString name = command.parser().positionalArguments().value(0);
    const auto network = networkNamed(name);
    if (!network)
        return command.wrongUse(name.isEmpty() ? u"falta decir qué red."_s : unknownNetwork(name));
    AccountConnection connection(configuration, &tellOfRefund);
    const QString signInFirst = PublishSentences::signInBeforeConnecting(*network);
    if (const auto refusal = connection.signIn()) {
        const bool isSignedOut = refusal->refusal == ChargeResult::Refusal::signedOut;
        return command.failed(isSignedOut ? signInFirst : refusal->reason,
                              statusOf(refusal->refusal));
    }
    AccountAPI& api = connection.api();
    const TokenAnswer token = QCoro::waitFor(askedToken(&api, rawValue(*network)));
    const bool isFinal = token.status == exitNotSignedIn || token.status == exitNoNetwork ||
                         token.problem.contains(u"publicador") || token.problem.contains(u"OAuth");
    if (isFinal)
        return command.failed(token.status == exitNotSignedIn ? signInFirst : token.problem,
                              token.status);
    const bool isPlain = !isWebPage(token.page);
    const QUrl page = isPlain ? api.socialConnectionURL(rawValue(*network)) : token.page;
    const QString title = row(*network).title.toString(), site = api.siteName();
    if (!openInBrowser(page))
        print(stderr, u"Abre este enlace en un navegador."_s);
    else if (isPlain)
        print(stderr, u"Abriendo conexión básica en %1."_s.arg(site));
    else
        print(stderr, u"Abriendo %1 para conectar %2. El enlace caduca en unos minutos."_s.arg(
                          site, title));
    print(stdout, page.toString(QUrl::FullyEncoded));
    return exitDone;
}
