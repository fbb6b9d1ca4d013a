#include "service/Visit.h"

#include "service/Service.h"
#include "service/store/Secrets.h"

using namespace Qt::StringLiterals;
using namespace html;

namespace {

constexpr const char* formCookie = "moltiva_form";

QByteArray sealedText(const QByteArray& secret, const QString& action)
{
    return secret + ' ' + action.toUtf8();
}

}    // namespace

ServiceReply okReply()
{
    return wireReply(BasicOK{.ok = true});
}

ServiceReply refusalReply(const Refusal& refusal)
{
    APIErrorPayload payload{.error = QString::fromLatin1(refusal.code()), .reason = {}};
    if (!refusal.reason().isEmpty())
        payload.reason = refusal.reason();
    ServiceReply reply = wireReply(payload);
    reply.status = refusal.status();
    return reply;
}

ServiceReply pageReply(const Visit& visit, const QString& title, const Html& content, int status)
{
    const Html head =
        Html{u"<meta charset=\"utf-8\"><meta name=\"viewport\" "
             "content=\"width=device-width, initial-scale=1\"><meta name=\"color-scheme\" "
             "content=\"dark light\"><link rel=\"stylesheet\" href=\"/estilo.css\">"_s} +
        tag("title", text(title + u" · Moltiva"_s));
    const Html banner = tag("header", link(u"/"_s, u"Moltiva"_s, u"marca"_s) +
                                          tag("span", text(u"Servicio local"_s)));
    const Html body = tag("body", banner + tag("main", tag("h1", text(title)) + content));
    ServiceReply reply;
    reply.status = status;
    reply.type = "text/html; charset=utf-8";
    reply.body = "<!doctype html>\n" +
                 tag("html", tag("head", head) + body, {{"lang", u"es"_s}}).code.toUtf8();
    if (!visit.formSecret.isEmpty())
        reply.headers.append({"Set-Cookie", QByteArray(formCookie) + "=" + visit.formSecret +
                                                "; Path=/; HttpOnly; SameSite=Strict"});
    return reply;
}

ServiceReply seeOther(const QString& path)
{
    ServiceReply reply;
    reply.status = 303;
    reply.headers.append({"Location", path.toUtf8()});
    return reply;
}

Html form(Visit& visit, const QString& action, const Html& content)
{
    // All pages in a browser share one secret: a new one would invalidate the forms of pages that
    // are already open.
    if (visit.formSecret.isEmpty()) {
        const QByteArray held = visit.request.cookies.value(formCookie);
        visit.formSecret = looksLikeToken(held) ? held : newToken();
    }
    const QByteArray token = seal(visit.service.formKey(), sealedText(visit.formSecret, action));
    return tag(
        "form",
        tag("input", {},
            {{"type", u"hidden"_s}, {"name", u"ficha"_s}, {"value", QString::fromLatin1(token)}}) +
            content,
        {{"method", u"post"_s}, {"action", action}});
}

bool formIsOurs(const Visit& visit)
{
    const QByteArray secret = visit.request.cookies.value(formCookie);
    return looksLikeToken(secret) &&
           sealFits(visit.service.formKey(), sealedText(secret, visit.request.path),
                    visit.request.form.value(u"ficha"_s).toUtf8());
}

ServiceReply deepLinkPage(const Visit& visit, const QString& title, const QString& sentence,
                          const QString& label, const QString& address)
{
    const Html copyable = [&] {
        Html lines = paragraph(u"Si tu navegador no sabe abrirlo, copia esta orden en un terminal "
                               "o el enlace de debajo:"_s,
                               u"nota"_s);
        return lines + tag("pre", text(u"moltiva '%1'"_s.arg(address)), {{"class", u"copia"_s}}) +
               tag("pre", text(address), {{"class", u"copia"_s}});
    }();
    return pageReply(visit, title,
                     paragraph(sentence) + tag("p", link(address, label, u"boton principal"_s)) +
                         copyable);
}

ServiceReply sentencePage(const Visit& visit, int status, const QString& title,
                          const QString& sentence)
{
    return pageReply(visit, title, paragraph(sentence), status);
}

void needThisMachine(const Visit& visit)
{
    if (!visit.request.isLocal)
        throw Refusal(403, "not_local", u"only from the machine that the service runs on"_s);
}
