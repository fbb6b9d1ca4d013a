#include "service/Handlers.h"
#include "service/Service.h"
#include "service/Visit.h"
#include "service/store/Secrets.h"
#include "service/store/Sessions.h"
#include "service/store/SocialPosts.h"

#include <QFile>
#include <QLocale>

using namespace Qt::StringLiterals;
using namespace html;

namespace {

constexpr const char* connectedLink = "moltiva://social-connected?status=ok";
constexpr const char* notConnectedLink = "moltiva://social-connected?status=cancelled";

QString titleOf(SocialPublishNetwork network)
{
    return row(network).title.toString();
}

Html testNetworkMark()
{
    return paragraph(u"Conexión de prueba: no se entra en ninguna red social"_s, u"aviso"_s);
}

Html nameField(const QString& value)
{
    return field(u"nombre"_s, u"Nombre de la cuenta que se mostrará"_s,
                 {{"maxlength", u"80"_s}, {"autocomplete", u"off"_s}, {"value", value}});
}

Html buttons()
{
    return tag("div",
               button(u"Conectar"_s, u"conectar"_s, u"principal"_s) +
                   button(u"Cancelar"_s, u"cancelar"_s),
               {{"class", u"acciones"_s}});
}

ServiceReply connected(const Visit& visit, SocialPublishNetwork network)
{
    return deepLinkPage(visit, u"%1 conectada"_s.arg(titleOf(network)),
                        u"Ya puedes volver a la ventana de publicar."_s, u"Volver a Moltiva"_s,
                        QString::fromLatin1(connectedLink));
}

ServiceReply cancelled(const Visit& visit)
{
    return deepLinkPage(visit, u"Conexión cancelada"_s, u"No se ha conectado ninguna cuenta."_s,
                        u"Volver a Moltiva"_s, QString::fromLatin1(notConnectedLink));
}

bool isCancelled(const Visit& visit)
{
    return visit.request.form.value(u"accion"_s) == u"cancelar";
}

constexpr auto wrongName = "Escribe un nombre de hasta 80 caracteres.";

// Returns false when the name is refused.
bool connect(Transaction& transaction, qint64 account, SocialPublishNetwork network,
             const QString& name, qint64 now)
{
    try {
        connectNetwork(transaction, account, network, name, now);
        return true;
    } catch (const Refusal&) {
        return false;
    }
}

struct Invitation {
    qint64 account = 0;
    SocialPublishNetwork network = SocialPublishNetwork::instagram;
};

std::optional<Invitation> invitation(Visit& visit, Transaction& transaction)
{
    const auto pass = lookAtPass(transaction, PassPurpose::socialConnection,
                                 lastSegment(visit).toUtf8(), visit.service.now());
    if (!pass)
        return std::nullopt;
    return Invitation{pass->account, knownNetwork(pass->detail)};
}

ServiceReply expired(const Visit& visit)
{
    return sentencePage(visit, 404, u"El enlace ya no sirve"_s,
                        u"Los enlaces de conexión valen una vez y durante diez minutos. Vuelve a "
                        "pulsar «Conectar» en Moltiva."_s);
}

ServiceReply connectForm(Visit& visit, SocialPublishNetwork network, const QString& sentence = {})
{
    const Html fields = nameField(visit.request.form.value(u"nombre"_s)) + buttons();
    const Html content =
        testNetworkMark() + problem(sentence) + form(visit, visit.request.path, fields);
    return pageReply(visit, u"Conectar %1"_s.arg(titleOf(network)), content,
                     sentence.isEmpty() ? 200 : 400);
}

// The form for a connection without an invitation. It asks for the account's password, because the
// browser has no session of the account.
ServiceReply basicForm(Visit& visit, SocialPublishNetwork network, const QString& sentence = {})
{
    const auto& sent = visit.request.form;
    const Html fields =
        tag("input", {},
            {{"type", u"hidden"_s}, {"name", u"red"_s}, {"value", rawValue(network)}}) +
        field(u"email"_s, u"Email de tu cuenta"_s,
              {{"type", u"email"_s},
               {"autocomplete", u"username"_s},
               {"value", sent.value(u"email"_s)}}) +
        field(u"clave"_s, u"Contraseña"_s,
              {{"type", u"password"_s}, {"autocomplete", u"current-password"_s}}) +
        nameField(sent.value(u"nombre"_s)) + buttons();
    const Html content =
        testNetworkMark() + problem(sentence) + form(visit, u"/conexion"_s, fields);
    return pageReply(visit, u"Conectar %1"_s.arg(titleOf(network)), content,
                     sentence.isEmpty() ? 200 : 400);
}

std::optional<Account> credentialsAccount(Visit& visit)
{
    const auto& sent = visit.request.form;
    const auto email = normalizedEmail(sent.value(u"email"_s));
    visit.service.countSource(visit.request);
    const QString key = visit.request.source + u' ' + email.value_or(QString());
    if (!email || !visit.service.signInAttempts().allow(key, visit.service.now()))
        return std::nullopt;
    auto account = [&] {
        Transaction transaction(visit.service.database());
        return accountWithEmail(transaction, *email);
    }();
    if (!passwordFits(account ? account->passwordHash : QByteArray(), sent.value(u"clave"_s)))
        return std::nullopt;
    visit.service.signInAttempts().forget(key);
    return account;
}

SocialPost wantedPost(Visit& visit, const QString& id)
{
    Transaction transaction(visit.service.database());
    const auto post = postWithId(transaction, id);
    if (!post)
        throw Refusal(404, "not_found");
    return *post;
}

}    // namespace

ServiceReply connectPage(Visit& visit)
{
    const auto invited = [&] {
        Transaction transaction(visit.service.database());
        return invitation(visit, transaction);
    }();
    return invited ? connectForm(visit, invited->network) : expired(visit);
}

ServiceReply connectSent(Visit& visit)
{
    Transaction transaction(visit.service.database());
    const auto invited = invitation(visit, transaction);
    if (!invited)
        return expired(visit);
    if (!isCancelled(visit) && !connect(transaction, invited->account, invited->network,
                                        visit.request.form.value(u"nombre"_s), visit.service.now()))
        return connectForm(visit, invited->network, QString::fromUtf8(wrongName));
    takePass(transaction, PassPurpose::socialConnection, lastSegment(visit).toUtf8(),
             visit.service.now());
    transaction.commit();
    return isCancelled(visit) ? cancelled(visit) : connected(visit, invited->network);
}

ServiceReply basicConnectPage(Visit& visit)
{
    return basicForm(visit, knownNetwork(visit.request.query.value(u"network"_s)));
}

ServiceReply basicConnectSent(Visit& visit)
{
    const SocialPublishNetwork network = knownNetwork(visit.request.form.value(u"red"_s));
    if (isCancelled(visit))
        return cancelled(visit);
    const auto account = credentialsAccount(visit);
    if (!account)
        return basicForm(visit, network,
                         u"El email o la contraseña no son correctos, o has probado demasiadas "
                         "veces."_s);
    Transaction transaction(visit.service.database());
    needUnchanged(transaction, *account);
    if (!connect(transaction, account->id, network, visit.request.form.value(u"nombre"_s),
                 visit.service.now()))
        return basicForm(visit, network, QString::fromUtf8(wrongName));
    transaction.commit();
    return connected(visit, network);
}

namespace {

// The images in the order in which they were sent. Several have their number below.
Html imagesOf(const Visit& visit, const SocialPost& post, bool isStory)
{
    const qsizetype count = post.imageTypes.size();
    Html figures;
    for (qsizetype i = 1; i <= count; ++i) {
        const QString place = u"%1 de %2"_s.arg(i).arg(count);
        const Html image = tag(
            "img", {},
            {{"src", u"%1/%2"_s.arg(visit.request.path).arg(i)}, {"alt", u"Imagen "_s + place}});
        const Html number =
            count > 1 ? tag("figcaption", text(isStory ? u"Story "_s + place : place)) : Html();
        figures = figures + tag("figure", image + number);
    }
    return count > 1 ? tag("div", figures, {{"class", u"imagenes"_s}}) : figures;
}

}    // namespace

ServiceReply postPage(Visit& visit)
{
    const SocialPost post = wantedPost(visit, lastSegment(visit));
    const bool isStory = post.placement == u"story";
    Html content =
        paragraph(u"Publicación local: no se ha enviado a ninguna red social"_s, u"aviso"_s) +
        paragraph(u"%1 · %2 · %3"_s.arg(titleOf(post.network) + (isStory ? u" Story"_s : QString()),
                                        post.displayName,
                                        QLocale(u"es_ES"_s)
                                            .toString(QDateTime::fromMSecsSinceEpoch(post.created),
                                                      QLocale::ShortFormat)),
                  u"nota"_s);
    content = content + imagesOf(visit, post, isStory);
    // Stories have no caption.
    if (!isStory && !post.caption.isEmpty())
        content =
            content + tag("pre", text(post.caption), {{"class", u"texto"_s}, {"dir", u"auto"_s}});
    return pageReply(visit, u"Publicación en %1"_s.arg(titleOf(post.network)), content);
}

ServiceReply postImage(Visit& visit)
{
    const QString id = visit.request.path.section(u'/', 2, 2);
    const SocialPost post = wantedPost(visit, id);
    bool isNumber = false;
    const int number = lastSegment(visit).toInt(&isNumber);
    QFile file(imagePath(visit.service.folder(u"publicaciones"_s), id, number - 1));
    if (!isNumber || number < 1 || number > post.imageTypes.size() ||
        !file.open(QIODevice::ReadOnly))
        throw Refusal(404, "not_found");
    return {.type = post.imageTypes[number - 1].toLatin1(), .body = file.readAll()};
}
