#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStringList>

// Whether all open databases refuse to be written to, as they do on a full disk.
inline void refuseWrites(bool refuse)
{
    for (const QString& name : QSqlDatabase::connectionNames()) {
        QSqlQuery query(QSqlDatabase::database(name, false));
        query.exec(refuse ? QStringLiteral("PRAGMA query_only=ON")
                          : QStringLiteral("PRAGMA query_only=OFF"));
    }
}
