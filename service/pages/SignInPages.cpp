#include "service/Handlers.h"
#include "service/Service.h"
#include "service/Visit.h"
#include "service/store/Secrets.h"
#include "service/store/Sessions.h"

using namespace Qt::StringLiterals;
using namespace html;

namespace {

constexpr qint64 desktopLife = 5 * 60 * 1000;    // ms

Attributes newPassword()
{
    return {{"type", u"password"_s},
            {"autocomplete", u"new-password"_s},
            {"minlength", u"8"_s},
            {"maxlength", u"1000"_s},
            {"required", {}}};
}

ServiceReply resetForm(Visit& visit, const QString& token, const QString& sentence = {})
{
    const Html fields =
        tag("input", {}, {{"type", u"hidden"_s}, {"name", u"token"_s}, {"value", token}}) +
        field(u"nueva"_s, u"Nueva contraseña (al menos 8 caracteres)"_s, newPassword()) +
        field(u"repetida"_s, u"Repetir nueva"_s, newPassword()) +
        tag("div", button(u"Guardar contraseña"_s, u"guardar"_s, u"principal"_s),
            {{"class", u"acciones"_s}});
    const Html content = problem(sentence) + form(visit, u"/restablecer"_s, fields);
    return pageReply(visit, u"Nueva contraseña"_s, content, sentence.isEmpty() ? 200 : 400);
}

ServiceReply resetGone(const Visit& visit)
{
    return sentencePage(visit, 404, u"El enlace ya no sirve"_s,
                        u"Los enlaces valen una sola vez y durante una hora. Pide otro desde "
                        "«Recuperar» en Moltiva."_s);
}

bool resetIsOpen(Visit& visit, const QString& token)
{
    Transaction transaction(visit.service.database());
    return lookAtPass(transaction, PassPurpose::passwordReset, token.toUtf8(), visit.service.now())
        .has_value();
}

ServiceReply googleForm(Visit& visit, const QString& email, const QString& sentence = {})
{
    const Html fields = field(u"email"_s, u"Email con el que quieres entrar"_s,
                              {{"type", u"email"_s},
                               {"autocomplete", u"email"_s},
                               {"maxlength", u"254"_s},
                               {"value", email}}) +
                        tag("div",
                            button(u"Continuar"_s, u"entrar"_s, u"principal"_s) +
                                button(u"Cancelar"_s, u"cancelar"_s),
                            {{"class", u"acciones"_s}});
    const Html content =
        paragraph(u"Acceso de prueba"_s, u"aviso"_s) +
        paragraph(u"Esta página hace de Google en tu equipo: no pide contraseña y no sale a "
                  "internet. Si no hay una cuenta con ese email, se crea."_s) +
        problem(sentence) + form(visit, u"/acceso"_s, fields);
    return pageReply(visit, u"Continuar con Google"_s, content, sentence.isEmpty() ? 200 : 400);
}

}    // namespace

ServiceReply resetPage(Visit& visit)
{
    const QString token = visit.request.query.value(u"token"_s);
    return resetIsOpen(visit, token) ? resetForm(visit, token) : resetGone(visit);
}

ServiceReply resetSent(Visit& visit)
{
    Service& service = visit.service;
    const auto& sent = visit.request.form;
    const QString token = sent.value(u"token"_s), password = sent.value(u"nueva"_s);
    if (!resetIsOpen(visit, token))
        return resetGone(visit);
    if (!isAcceptablePassword(password))
        return resetForm(visit, token, u"La contraseña necesita al menos 8 caracteres."_s);
    if (password != sent.value(u"repetida"_s))
        return resetForm(visit, token, u"Las dos contraseñas no son iguales."_s);
    service.countSource(visit.request);
    const QByteArray hash = hashedPassword(password);
    Transaction transaction(service.database());
    const auto pass =
        takePass(transaction, PassPurpose::passwordReset, token.toUtf8(), service.now());
    if (!pass)
        return resetGone(visit);
    setPassword(transaction, pass->account, hash);
    endSessions(transaction, pass->account);
    voidPasses(transaction, PassPurpose::passwordReset, pass->account);
    transaction.commit();
    return pageReply(
        visit, u"Contraseña guardada"_s,
        paragraph(u"Vuelve a Moltiva y entra con la nueva contraseña. Por seguridad se "
                  "han cerrado las sesiones abiertas."_s));
}

ServiceReply googlePage(Visit& visit)
{
    needThisMachine(visit);
    return googleForm(visit, {});
}

ServiceReply googleSent(Visit& visit)
{
    needThisMachine(visit);
    Service& service = visit.service;
    const QString typed = visit.request.form.value(u"email"_s);
    if (visit.request.form.value(u"accion"_s) == u"cancelar")
        return deepLinkPage(visit, u"Acceso cancelado"_s, u"No has entrado con ninguna cuenta."_s,
                            u"Volver a Moltiva"_s, u"moltiva://auth?error=access_denied"_s);
    const auto email = normalizedEmail(typed);
    if (!email)
        return googleForm(visit, typed, u"Escribe un email válido."_s);
    Transaction transaction(service.database());
    const auto known = accountWithEmail(transaction, *email);
    const Account account = known ? *known : addAccount(transaction, *email, {}, service.now());
    const QByteArray token = givePass(transaction, PassPurpose::desktopSignIn, account.id, {},
                                      {service.now(), desktopLife});
    transaction.commit();
    return deepLinkPage(
        visit, u"Acceso preparado"_s,
        u"Vas a entrar como %1. El enlace vale una vez y durante cinco minutos."_s.arg(
            account.email),
        u"Abrir Moltiva"_s, u"moltiva://auth?token="_s + QString::fromLatin1(token));
}
