#include "studio/copy/CopyOutcome.h"

#include "model/PlainText.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

QString writtenSentence(const CopyOutcome& outcome)
{
    const bool isDoneInCloud = outcome.cost > 0 && outcome.state == CopyOutcome::State::done;
    const QString price = u"Coste: %1 créditos."_s.arg(outcome.cost);
    if (isDoneInCloud && outcome.images == 1 && outcome.slot.isEmpty())
        return u"Textos generados en nube. "_s + price;
    QString sentence = u"Textos generados para %1 imagen(es)."_s.arg(outcome.written);
    if (!outcome.slot.isEmpty() && outcome.written > 0)
        sentence = u"Nueva propuesta para %1."_s.arg(outcome.slot);
    return outcome.cost > 0 ? sentence + u' ' + price : sentence;
}

}    // namespace

QString CopyOutcome::sentence() const
{
    if (state == State::refused)
        return reason;
    QStringList parts;
    if (state == State::cancelled)
        parts.append(u"Generación cancelada."_s);
    // The reason says it all when nothing else was asked for.
    const bool hasReason = !reason.isEmpty() || !notes.isEmpty();
    const bool isReasonAlone = written == 0 && images == 1 && hasReason;
    if (!isReasonAlone)
        parts.append(writtenSentence(*this));
    if (replaced > 0)
        parts.append(counted(replaced, u"texto tuyo sustituido.", u"textos tuyos sustituidos."));
    if (kept > 0) {
        parts.append(counted(kept, u"texto que editaste se conserva.",
                             u"textos que editaste se conservan."));
    }
    // A single failure is told by its reason, one that ends the run too.
    const bool isCounted = unanswered > 0 && (unanswered > 1 || reason.isEmpty()) &&
                           !(state == State::failing && isThreeInRow && unanswered == 3);
    if (isCounted)
        parts.append(u"%1 sin respuesta."_s.arg(unanswered));
    if (!reason.isEmpty())
        parts.append(reason);
    parts += notes;
    if (isThreeInRow) {
        parts.append(mode == CopyGenerationMode::local ? u"El motor falló tres veces seguidas."_s
                                                       : u"La nube falló tres veces seguidas."_s);
    }
    return parts.join(u' ');
}
