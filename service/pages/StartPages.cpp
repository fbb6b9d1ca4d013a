#include "service/Handlers.h"
#include "service/Service.h"
#include "service/Visit.h"
#include "service/store/Mail.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace html;

namespace {

Html mailRow(const MailEntry& mail)
{
    return tag("li",
               link(u"/correo/"_s + mail.name, mail.subject) +
                   tag("div", text(u"%1 · %2"_s.arg(mail.to, mail.date)), {{"class", u"nota"_s}}));
}

// The text of a mail as HTML. The line that holds a link becomes a link to the current `base`,
// because the service's port may have changed since the mail was written.
Html mailText(const MailEntry& mail, const QString& base)
{
    static const QRegularExpression ours(u"^http://[^/]+(/restablecer\\?token=[A-Za-z0-9_-]+)$"_s);
    Html all;
    for (const QString& line : mail.text.split(u'\n')) {
        const QString path = ours.match(line).captured(1);
        all = all + (path.isEmpty() ? text(line) : link(base + path, base + path)) + Html{u"\n"_s};
    }
    return tag("pre", all, {{"class", u"texto"_s}});
}

Html localMark()
{
    return paragraph(u"Página local de prueba: estos mensajes no se envían a nadie."_s, u"aviso"_s);
}

}    // namespace

ServiceReply startPage(Visit& visit)
{
    Html content =
        paragraph(u"Este programa hace de servicio de cuentas y de sitio web de Moltiva en tu "
                  "propio equipo, para que todo funcione sin depender de nadie."_s) +
        paragraph(u"Las cuentas nuevas reciben un saldo local de prueba de 10000 créditos. Los "
                  "pagos son de prueba: no se cobra nada. Las publicaciones se guardan aquí y no "
                  "llegan a ninguna red social."_s);
    if (visit.request.isLocal) {
        content =
            content + tag("h2", text(u"Dónde están los datos"_s)) +
            tag("pre", text(visit.service.dataFolder())) + tag("h2", text(u"Correo"_s)) +
            paragraph(u"Los mensajes para recuperar la contraseña se quedan en este equipo."_s) +
            tag("p", link(u"/correo"_s, u"Ver el correo"_s, u"boton"_s));
    }
    return pageReply(visit, u"Servicio local de Moltiva"_s, content);
}

ServiceReply styleSheetFile(Visit&)
{
    return {.type = "text/css; charset=utf-8", .body = styleSheet()};
}

ServiceReply mailsPage(Visit& visit)
{
    needThisMachine(visit);
    Html rows;
    for (const MailEntry& mail : storedMails(visit.service.folder(u"correo"_s)))
        rows = rows + mailRow(mail);
    return pageReply(
        visit, u"Correo"_s,
        localMark() + (rows.code.isEmpty() ? paragraph(u"No hay mensajes."_s) : tag("ul", rows)));
}

ServiceReply mailPage(Visit& visit)
{
    needThisMachine(visit);
    const auto mails = storedMails(visit.service.folder(u"correo"_s));
    const auto mail = std::ranges::find(mails, lastSegment(visit), &MailEntry::name);
    if (mail == mails.end())
        throw Refusal(404, "not_found");
    const auto row = [](const QString& name, const QString& value) {
        return tag("dt", text(name)) + tag("dd", text(value));
    };
    return pageReply(visit, mail->subject,
                     localMark() +
                         tag("dl", row(u"Para"_s, mail->to) + row(u"Fecha"_s, mail->date)) +
                         mailText(*mail, visit.request.base) +
                         tag("p", link(u"/correo"_s, u"Volver al correo"_s)));
}
