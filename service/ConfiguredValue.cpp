#include "service/ConfiguredValue.h"

#include <QSettings>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

QString configuredValue(const char* variable, const QString& key)
{
    const QString own = qEnvironmentVariable(variable);
    if (!own.isEmpty())
        return own;
    const QSettings file(QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) +
                             u"/moltiva.conf"_s,
                         QSettings::IniFormat);
    return file.value(key).toString();
}
