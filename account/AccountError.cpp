#include "account/AccountError.h"

#include "platform/HttpClient.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

struct Sentence {
    QStringView code, text;    // in `text`, %1 is the name of the public web site
};
constexpr std::array sentences{
    Sentence{u"database_unavailable", u"La base de datos no está disponible."},
    Sentence{u"email_exists", u"Ese email ya tiene cuenta."},
    Sentence{u"invalid_credentials", u"Email o contraseña incorrectos."},
    Sentence{u"invalid_credit_amount", u"La cantidad de créditos no es válida."},
    Sentence{u"stripe_not_configured", u"Stripe no está configurado en el servidor."},
    Sentence{u"stripe_request_failed", u"Stripe no ha podido crear la compra."},
    Sentence{u"checkout_not_paid", u"Stripe todavía no marca el pago como completado."},
    Sentence{u"checkout_not_recorded", u"No se ha podido confirmar la compra todavía."},
    Sentence{u"invalid_purchase", u"La compra no es válida."},
    Sentence{u"purchase_document_unavailable", u"La factura no está disponible ahora mismo."},
    Sentence{u"insufficient_credits", u"No tienes créditos suficientes."},
    Sentence{u"invalid_credit_request", u"La petición de créditos no es válida."},
    Sentence{u"credit_not_reserved", u"No se ha podido confirmar la reserva de créditos."},
    Sentence{u"provider_key_missing", u"Falta configurar la clave de Gemini en Tallerio."},
    Sentence{u"provider_request_failed", u"Gemini no ha respondido correctamente."},
    Sentence{u"provider_invalid_response", u"Gemini respondió, pero no con textos válidos."},
    Sentence{u"provider_not_supported", u"Ese proveedor todavía no está soportado."},
    Sentence{u"model_not_configured", u"No hay un modelo activo configurado en Tallerio."},
    Sentence{u"invalid_image", u"La imagen no se ha podido enviar a la IA."},
    Sentence{u"invalid_social_publish_request", u"La petición de publicación no es válida."},
    Sentence{u"invalid_social_publish_image", u"Una de las imágenes no es válida para publicar."},
    Sentence{u"social_upload_failed", u"No se han podido preparar las imágenes para publicar."},
    Sentence{u"social_account_not_connected", u"Necesitas conectar esa red en %1."},
    Sentence{u"social_provider_not_configured",
             u"Falta activar el publicador de esta red en el servidor de Moltiva."},
    Sentence{u"social_connection_incomplete",
             u"La conexión de esa red está incompleta. Vuelve a conectarla desde %1."},
    Sentence{u"social_publish_in_progress", u"Esa publicación ya se está procesando. Espera unos "
                                            "segundos antes de reintentar."},
    Sentence{u"social_provider_publish_failed", u"La red social ha rechazado la publicación. "
                                                "Revisa permisos y vuelve a conectar la cuenta."},
    Sentence{u"invalid_social_network", u"Esa red social no está soportada."},
    Sentence{u"admin_required", u"Solo una cuenta administradora puede actualizar plantillas."},
    Sentence{u"invalid_template", u"La plantilla no es válida."},
    Sentence{u"template_upload_failed", u"No se ha podido subir la plantilla al servidor."},
    Sentence{u"template_not_found", u"Esa plantilla ya no está en el catálogo del equipo."},
    Sentence{
        u"template_catalogue_full",
        u"El catálogo del equipo está lleno. Retira alguna plantilla antes de compartir otra."},
};

}    // namespace

AccountError::AccountError(Kind kind, const QString& text, const QString& code)
    : m_kind(kind), m_text(text), m_code(code)
{
}

AccountError AccountError::message(const QString& text, const QString& code)
{
    return {Kind::message, text, code};
}

AccountError AccountError::invalidResponse()
{
    return {Kind::invalidResponse, u"No se ha podido leer la respuesta del servidor."_s, {}};
}

AccountError AccountError::unauthorized(const QString& code)
{
    return {Kind::unauthorized, u"Necesitas iniciar sesión."_s, code};
}

QString userMessage(QStringView code, const QString& siteName)
{
    const auto found = std::ranges::find(sentences, code, &Sentence::code);
    if (found == sentences.end())
        return u"No se ha podido completar la operación."_s;
    return found->text.toString().replace(u"%1"_s, siteName);
}

bool isUnreachable(const std::exception& error)
{
    using Kind = TransportError::Kind;
    const auto* transport = dynamic_cast<const TransportError*>(&error);
    return transport &&
           (transport->kind() == Kind::unreachable || transport->kind() == Kind::brokenOff ||
            transport->kind() == Kind::timedOut);
}

QString readable(const std::exception& error)
{
    if (const auto* refused = dynamic_cast<const AccountError*>(&error))
        return refused->text();
    if (const auto* transport = dynamic_cast<const TransportError*>(&error))
        return transport->text();
    return userMessage({});
}
