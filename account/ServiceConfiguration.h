#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

#include <optional>

// Addresses and names of the account service and the public web site.
struct ServiceConfiguration {
    // Without `service`, the local one is used, which is the site as well.
    std::optional<QUrl> service, site;
    QString siteName;    // for messages; from the site's host when not configured
    QString administratorEmail;
    QString problem;    // why the addresses cannot be used, for the user; empty when they can
};

// Removes --service URL and --site URL from the arguments, wherever they stand. Options win over
// the environment (MOLTIVA_SERVICE_URL, MOLTIVA_SITE_URL), which wins over the file; the file need
// not exist:
//
//     service=https://…
//     site=https://…
//     siteName=…
//     administrator=…
ServiceConfiguration takenConfiguration(QStringList& arguments, const QString& file);

// The user's own configuration file.
QString configurationFile();
