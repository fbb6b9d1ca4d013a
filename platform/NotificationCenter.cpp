#include "platform/NotificationCenter.h"

void NotificationCenter::post(const QString& name, const QVariant& object)
{
    Q_EMIT posted(name, object);
}

void NotificationCenter::subscribe(const QString& name, QObject* subscriber, const Take& take)
{
    connect(this, &NotificationCenter::posted, subscriber,
            [name, take](const QString& postedName, const QVariant& object) {
                if (postedName == name)
                    take(object);
            });
}

NotificationCenter& notificationCenter()
{
    static NotificationCenter center;
    return center;
}
