#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStringList>

// Makes all open databases refuse writes, as on a full disk; refuseWrites(false) ends that.
inline void refuseWrites(bool refuse)
{
    for (const QString& name : QSqlDatabase::connectionNames()) {
        QSqlQuery query(QSqlDatabase::database(name, false));
        query.exec(refuse ? QStringLiteral("PRAGMA query_only=ON")
                          : QStringLiteral("PRAGMA query_only=OFF"));
    }
}
