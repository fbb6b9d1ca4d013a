#include "studio/publish/PublishSentences.h"

using namespace Qt::StringLiterals;

QString PublishSentences::limit(SocialPublishNetwork network, qsizetype mostImages)
{
    return u"%1 permite %2 imagen(es). Se publicarán las primeras %2 seleccionadas."_s.arg(
        row(network).title, QString::number(mostImages));
}

QString PublishSentences::inactiveProvider(SocialPublishNetwork network)
{
    return u"El publicador de %1 todavía no está activado en el servidor de Moltiva."_s.arg(
        row(network).title);
}

QString PublishSentences::signInBeforeConnecting(SocialPublishNetwork network)
{
    return u"Necesitas iniciar sesión en Moltiva antes de conectar %1"_s.arg(row(network).title);
}
