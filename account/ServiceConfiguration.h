#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

#include <optional>

// Where the account service and the public web site are, and who they belong to.
struct ServiceConfiguration {
    // Without one: the service on this machine, which is the site as well.
    std::optional<QUrl> service, site;
    QString siteName;    // as messages show it; that of the site's host when not configured
    QString administratorEmail;
    QString problem;    // why it cannot be used, for the user; empty when it can
};

// Takes --service URL and --site URL out of the arguments, wherever they stand; then looks at the
// environment (MOLTIVA_SERVICE_URL, MOLTIVA_SITE_URL), then at the file, which need not exist:
//
//     service=https://…
//     site=https://…
//     siteName=…
//     administrator=…
ServiceConfiguration takenConfiguration(QStringList& arguments, const QString& file);

// The user's own configuration file.
QString configurationFile();
