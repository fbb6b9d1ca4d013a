#include "studio/publish/PublishOutcome.h"

using namespace Qt::StringLiterals;

QString PublishOutcome::sentence() const
{
    switch (state) {
    case State::done:
        return u"Publicación enviada a %1. "_s.arg(row(network).title.toString()) +
               (isCharged ? u"Coste: %1 créditos."_s.arg(cost) : u"Sin coste adicional."_s) +
               (isRecorded ? QString() : u" El pago no se ha podido anotar."_s);
    case State::notPrepared:
        return u"No se han podido preparar las imágenes finales para publicar."_s +
               (reason.isEmpty() ? QString() : u' ' + reason);
    case State::unconfirmed: {
        QStringList sentences;
        for (const PublishCheck& check : found)
            sentences.append(check.sentence);
        return sentences.join(u' ') + refundNotice();
    }
    case State::tooFewCredits:
        return u"Necesitas %1 créditos para publicar estas imágenes."_s.arg(cost);
    case State::notReserved:
        return reservationNotice();
    case State::failed:
        return reason + refundNotice();
    case State::unknown:
        return reason + u" Puede que se haya publicado."_s + refundNotice();
    case State::stopped:
        return u"Publicación detenida."_s + refundNotice();
    }
    Q_UNREACHABLE();
}
