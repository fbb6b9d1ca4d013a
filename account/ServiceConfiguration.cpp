#include "account/ServiceConfiguration.h"

#include "platform/Http.h"

#include <QSettings>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

// Removes all occurrences of the option before "--"; returns the value of the last one.
std::optional<QString> takenOption(QStringList& arguments, const QString& name)
{
    std::optional<QString> value;
    for (qsizetype i = 0; i < arguments.size();) {
        const QString argument = arguments[i];
        if (argument == u"--"_s)
            break;
        if (argument == name) {
            arguments.removeAt(i);
            value = i < arguments.size() ? arguments.takeAt(i) : QString();
        } else if (argument.startsWith(name + u'=')) {
            value = argument.mid(name.size() + 1);
            arguments.removeAt(i);
        } else {
            ++i;
        }
    }
    return value;
}

struct Source {
    QString name, text;
};

// The text of the option if given, else of the environment variable, else of the file; an empty
// variable or file entry counts as missing.
std::optional<Source> firstGiven(const std::optional<QString>& flag, const QString& flagName,
                                 const char* variable, const QSettings& file, const QString& key)
{
    if (flag)
        return Source{flagName, *flag};
    if (const QString text = qEnvironmentVariable(variable); !text.isEmpty())
        return Source{QString::fromLatin1(variable), text};
    if (const QString text = file.value(key).toString(); !text.isEmpty())
        return Source{u"«%1» en %2"_s.arg(key, file.fileName()), text};
    return std::nullopt;
}

// Allows plain HTTP only within this machine, because passwords and the session cookie are sent to
// the address.
bool isUsable(const QUrl& address)
{
    return address.isValid() && !address.host().isEmpty() && address.userInfo().isEmpty() &&
           (address.scheme() == u"https"_s ||
            (address.scheme() == u"http"_s && isLoopback(address.host())));
}

std::optional<QUrl> addressOf(const std::optional<Source>& source, QString& problem)
{
    if (!source)
        return std::nullopt;
    const QUrl address(source->text.trimmed(), QUrl::StrictMode);
    if (!isUsable(address)) {
        problem = u"La dirección de %1 no sirve: hace falta una que empiece por https:// (o por "
                  "http:// si está en este equipo)."_s.arg(source->name);
        return std::nullopt;
    }
    return address;
}

QString capitalized(const QString& name)
{
    return name.left(1).toUpper() + name.mid(1);
}

}    // namespace

ServiceConfiguration takenConfiguration(QStringList& arguments, const QString& file)
{
    const std::optional<QString> serviceFlag = takenOption(arguments, u"--service"_s);
    const std::optional<QString> siteFlag = takenOption(arguments, u"--site"_s);
    const QSettings settings(file, QSettings::IniFormat);

    ServiceConfiguration made;
    made.service = addressOf(
        firstGiven(serviceFlag, u"--service"_s, "MOLTIVA_SERVICE_URL", settings, u"service"_s),
        made.problem);
    made.site = addressOf(
        firstGiven(siteFlag, u"--site"_s, "MOLTIVA_SITE_URL", settings, u"site"_s), made.problem);
    // A service that is configured without a site is the site as well.
    if (made.service && !made.site)
        made.site = made.service;
    made.siteName = settings.value(u"siteName"_s).toString();
    if (made.siteName.isEmpty())
        made.siteName = made.site ? capitalized(made.site->host()) : u"Moltiva local"_s;
    made.administratorEmail =
        settings.value(u"administrator"_s, u"administracion@moltiva.local"_s).toString();
    const double megabytes = settings.value(u"largestPost"_s).toDouble();
    if (megabytes > 0 && megabytes < 1'000'000)
        made.largestPost = qint64(megabytes * 1'000'000);
    return made;
}

QString configurationFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) + u"/moltiva.conf"_s;
}
