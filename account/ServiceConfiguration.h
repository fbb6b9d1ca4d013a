#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

#include <optional>

// Addresses and names of the account service and the public web site.
struct ServiceConfiguration {
    // An empty address is that of the local service, which is a web site as well.
    std::optional<QUrl> service, site;
    QString siteName;    // for messages; made from the site's host if not configured
    QString administratorEmail;
    qint64 largestPost =
        100'000'000;    // bytes of a request to publish, above which it is warned of
    QString problem;    // why the addresses cannot be used, for the user; empty when they can
};

// Reads the configuration from the options --service URL and --site URL, which it removes from
// `arguments`, else from the environment variables MOLTIVA_SERVICE_URL and MOLTIVA_SITE_URL, else
// from `file`. The file need not exist; its lines are:
//
//     service=https://…
//     site=https://…
//     siteName=…
//     administrator=…
//     largestPost=… megabytes
ServiceConfiguration takenConfiguration(QStringList& arguments, const QString& file);

// Path of the user's configuration file.
QString configurationFile();
