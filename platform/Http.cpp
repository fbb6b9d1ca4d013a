#include "platform/Http.h"

#include <QHostAddress>

using namespace Qt::StringLiterals;

TransportError TransportError::timedOut()
{
    return {Kind::timedOut,
            u"El servidor ha tardado demasiado en responder. Inténtalo otra vez."_s};
}

TransportError TransportError::stopped()
{
    return {Kind::stopped, u"Operación cancelada."_s};
}

bool isLoopback(const QString& host)
{
    return host.compare(u"localhost"_s, Qt::CaseInsensitive) == 0 ||
           QHostAddress(host).isLoopback();
}
