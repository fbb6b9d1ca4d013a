#include "service/Routes.h"

#include "service/Handlers.h"
#include "service/Service.h"
#include "service/Visit.h"
#include "service/store/Sessions.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

using enum ServiceMethod;
using enum RouteNeeds;
using enum RouteKind;

constexpr qint64 noBody = 0, smallBody = 64 << 10, largeBody = 64 << 20, postBody = 160 << 20;

constexpr std::array routes{
    Route{post, u"/api/auth/login", nothing, smallBody, signIn},
    Route{post, u"/api/auth/register", nothing, smallBody, registerAccount},
    Route{post, u"/api/auth/logout", nothing, smallBody, signOut},
    Route{get, u"/api/auth/me", session, noBody, showAccount},
    Route{patch, u"/api/auth/profile", session, smallBody, changeProfile},
    Route{post, u"/api/auth/password", session, smallBody, changePassword},
    Route{post, u"/api/auth/password-reset/request", nothing, smallBody, requestPasswordReset},
    Route{post, u"/api/auth/desktop/exchange", nothing, smallBody, exchangeDesktopToken},
    Route{get, u"/api/auth/oauth/google", nothing, noBody, googlePage, page},

    Route{post, u"/api/credits/social-copy/reserve", session, smallBody, reserve},
    Route{post, u"/api/credits/social-copy/refund", session, smallBody, refund},
    Route{post, u"/api/stripe/checkout", session, smallBody, startPurchase},
    Route{post, u"/api/stripe/confirm", session, smallBody, confirmPurchase},
    Route{get, u"/api/account/purchases", session, noBody, showPurchases},
    Route{get, u"/api/account/purchases/link", session, noBody, showPurchaseLink},

    Route{get, u"/api/publicaciones/config", nothing, noBody, showCopyConfig},
    Route{post, u"/api/publicaciones/generate", session, largeBody, generateCopy},
    Route{get, u"/api/publicaciones/templates", session, noBody, showTemplates},
    Route{get, u"/api/publicaciones/templates/file", session, noBody, showTemplateFile},
    Route{post, u"/api/publicaciones/templates/update", administrator, largeBody, uploadTemplate},
    Route{post, u"/api/publicaciones/templates/delete", administrator, smallBody, deleteTemplate},
    Route{get, u"/api/social/status", session, noBody, showConnections},
    Route{post, u"/api/social/connect-token", session, smallBody, giveConnectToken},
    Route{get, u"/api/social/connect", nothing, noBody, basicConnectPage, page},
    Route{post, u"/api/social/publish", session, postBody, publishPost},

    Route{get, u"/", nothing, noBody, startPage},
    Route{get, u"/estilo.css", nothing, noBody, styleSheetFile},
    Route{get, u"/correo", nothing, noBody, mailsPage},
    Route{get, u"/correo/*", nothing, noBody, mailPage},
    Route{get, u"/restablecer", nothing, noBody, resetPage},
    Route{post, u"/restablecer", ourForm, smallBody, resetSent},
    Route{post, u"/acceso", ourForm, smallBody, googleSent},
    Route{get, u"/pago/*", nothing, noBody, payPage},
    Route{post, u"/pago/*", ourForm, smallBody, paySent},
    Route{get, u"/factura/*", nothing, noBody, invoicePage},
    Route{get, u"/conectar/*", nothing, noBody, connectPage},
    Route{post, u"/conectar/*", ourForm, smallBody, connectSent},
    Route{post, u"/conexion", ourForm, smallBody, basicConnectSent},
    Route{get, u"/publicacion/*", nothing, noBody, postPage},
    Route{get, u"/publicacion/*/*", nothing, noBody, postImage},
};

bool fits(QStringView pattern, QStringView path)
{
    const auto wanted = pattern.split(u'/'), given = path.split(u'/');
    return std::ranges::equal(wanted, given, [](QStringView want, QStringView have) {
        return want == have || (want == u"*" && !have.isEmpty());
    });
}

const Route& routeFor(const ServiceRequest& request)
{
    bool isKnownPath = false;
    for (const Route& route : routes) {
        if (!fits(route.path, request.path))
            continue;
        if (route.method == request.method)
            return route;
        isKnownPath = true;
    }
    throw isKnownPath ? Refusal(405, "method_not_allowed") : Refusal(404, "not_found");
}

Account signedIn(Service& service, const ServiceRequest& request)
{
    Transaction transaction(service.database());
    const auto id =
        sessionAccount(transaction, request.cookies.value(sessionCookie), service.now());
    const auto account = id ? accountWithId(transaction, *id) : std::nullopt;
    if (!account)
        throw Refusal(401, "unauthorized");
    transaction.commit();
    return *account;
}

// Checks all needs of the route but `ourForm`, and fills in the account. Throws Refusal.
void checkNeeds(const Route& route, Visit& visit)
{
    if (route.needs == session || route.needs == administrator)
        visit.account = signedIn(visit.service, visit.request);
    if (route.needs == administrator) {
        Transaction transaction(visit.service.database());
        if (!visit.service.isAdministrator(transaction, visit.account))
            throw Refusal(403, "admin_required");
    }
}

bool isPage(const ServiceRequest& request)
{
    return !isApi(request.path) || std::ranges::any_of(routes, [&](const Route& route) {
        return route.kind == page && fits(route.path, request.path);
    });
}

QString sentenceFor(const Refusal& refusal)
{
    const QLatin1StringView code(refusal.code());
    if (code == "not_local"_L1)
        return u"Esta página solo la puedes abrir tú, en el equipo donde funciona el servicio."_s;
    if (code == "invalid_host"_L1)
        return u"Abre la página con la dirección que muestra Moltiva."_s;
    if (code == "invalid_origin"_L1)
        return u"La página ha caducado. Vuelve a abrirla e inténtalo otra vez."_s;
    if (code == "invalid_social_network"_L1)
        return u"No se puede conectar con esa red social."_s;
    if (code == "too_many_attempts"_L1)
        return u"Se ha intentado demasiadas veces. Espera un rato e inténtalo otra vez."_s;
    switch (refusal.status()) {
    case 404:
        return u"Esta página no existe o ya no está disponible."_s;
    case 405:
        return u"Esta página no se puede abrir así. Vuelve atrás e inténtalo otra vez."_s;
    case 413:
        return u"Lo que se ha enviado es demasiado grande."_s;
    case 503:
        return u"El servicio está ocupado. Inténtalo otra vez dentro de un momento."_s;
    default:
        return u"No se ha podido completar la operación."_s;
    }
}

}    // namespace

qint64 admit(Service& service, const ServiceRequest& head)
{
    const Route& route = routeFor(head);
    Visit visit{service, head, {}};
    checkNeeds(route, visit);
    return route.largestBody;
}

ServiceReply refused(Service& service, const ServiceRequest& request, const Refusal& refusal)
{
    if (!isPage(request))
        return refusalReply(refusal);
    return sentencePage({service, request, {}}, refusal.status(), u"No se puede mostrar"_s,
                        sentenceFor(refusal));
}

ServiceReply answer(Service& service, const ServiceRequest& request)
{
    Visit visit{service, request, {}};
    try {
        const Route& route = routeFor(request);
        checkNeeds(route, visit);
        if (route.needs == ourForm && !formIsOurs(visit))
            return sentencePage(visit, 403, u"La página ha caducado"_s,
                                u"Vuelve a abrirla e inténtalo otra vez."_s);
        return route.handle(visit);
    } catch (const Refusal& refusal) {
        return refused(service, request, refusal);
    } catch (const DatabaseError&) {
        return refused(service, request, Refusal(500, "database_unavailable"));
    } catch (const std::exception&) {
        return refused(service, request, Refusal(500, "server_error"));
    }
}
