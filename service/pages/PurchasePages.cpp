#include "service/Handlers.h"
#include "service/Service.h"
#include "service/Visit.h"
#include "service/store/Checkout.h"
#include "service/store/Texts.h"

#include <QLocale>

using namespace Qt::StringLiterals;
using namespace html;

namespace {

QLocale spanish()
{
    return QLocale(u"es_ES"_s);
}

QString euros(int cents)
{
    return spanish().toString(cents / 100.0, 'f', 2) + u" €"_s;
}

QString credits(int count)
{
    return u"%1 créditos"_s.arg(count);
}

Checkout wantedCheckout(Visit& visit)
{
    Transaction transaction(visit.service.database());
    const auto checkout = checkoutWithId(transaction, lastSegment(visit));
    if (!checkout)
        throw Refusal(404, "not_found");
    return *checkout;
}

Html testPaymentMark()
{
    return paragraph(u"Pago de prueba: no se cobra nada"_s, u"aviso"_s);
}

}    // namespace

ServiceReply payPage(Visit& visit)
{
    const Checkout checkout = wantedCheckout(visit);
    const Html price = paragraph(euros(priceInCents(checkout.credits)), u"cifra"_s) +
                       paragraph(credits(checkout.credits) + u" para tu cuenta de Moltiva"_s);
    switch (checkout.state) {
    case CheckoutState::open:
        break;
    case CheckoutState::paid:
        return pageReply(visit, u"Compra pagada"_s,
                         testPaymentMark() + price +
                             paragraph(u"Los créditos ya están en tu cuenta. Vuelve a Moltiva y "
                                       "pulsa «Confirmar compra»."_s,
                                       u"bien"_s));
    case CheckoutState::cancelled:
        return pageReply(visit, u"Compra cancelada"_s,
                         testPaymentMark() + price +
                             paragraph(u"No se ha añadido ningún crédito. Puedes empezar otra "
                                       "compra desde Moltiva."_s));
    }
    const Html buttons =
        tag("div",
            button(u"Pagar"_s, u"pagar"_s, u"principal"_s) + button(u"Cancelar"_s, u"cancelar"_s),
            {{"class", u"acciones"_s}});
    const Html content = testPaymentMark() + price + form(visit, visit.request.path, buttons);
    return pageReply(visit, u"Comprar créditos"_s, content);
}

ServiceReply paySent(Visit& visit)
{
    const Checkout checkout = wantedCheckout(visit);
    Transaction transaction(visit.service.database());
    const QString action = visit.request.form.value(u"accion"_s);
    if (action == u"pagar")
        payCheckout(transaction, checkout.id, visit.service.now());
    else if (action == u"cancelar")
        cancelCheckout(transaction, checkout.id);
    transaction.commit();
    return seeOther(visit.request.path);    // so that a reload does not send the form again
}

ServiceReply invoicePage(Visit& visit)
{
    const auto invoice = [&] {
        Transaction transaction(visit.service.database());
        return invoiceWithId(transaction, lastSegment(visit));
    }();
    if (!invoice)
        throw Refusal(404, "not_found");
    const auto row = [](const QString& name, const QString& value) {
        return value.isEmpty() ? Html{} : tag("dt", text(name)) + tag("dd", text(value));
    };
    const QString date = spanish().toString(QDateTime::fromMSecsSinceEpoch(invoice->created),
                                            u"d 'de' MMMM 'de' yyyy"_s);
    const Html facts =
        tag("dl", row(u"Pedido"_s, invoice->orderNumber) + row(u"Fecha"_s, date) +
                      row(u"Nombre"_s, invoice->fullName) + row(u"Email"_s, invoice->email));
    const auto cell = [](const QString& value) { return tag("td", text(value)); };
    const Html table =
        tag("table",
            tag("thead", tag("tr", tag("th", text(u"Concepto"_s), {{"scope", u"col"_s}}) +
                                       tag("th", text(u"Importe"_s), {{"scope", u"col"_s}}))) +
                tag("tbody",
                    tag("tr", cell(credits(invoice->credits)) + cell(euros(invoice->amountCents))) +
                        tag("tr", cell(u"Total"_s) + cell(euros(invoice->amountCents)))));
    return pageReply(
        visit, u"Factura %1"_s.arg(invoice->orderNumber),
        paragraph(u"Documento de prueba: no se ha cobrado nada"_s, u"aviso"_s) + facts + table +
            paragraph(u"Puedes imprimirla o guardarla como PDF con la orden Imprimir de "
                      "tu navegador."_s,
                      u"nota solopantalla"_s));
}
