#include "service/Service.h"

#include "service/Http.h"
#include "service/store/Accounts.h"
#include "service/store/Ledger.h"
#include "service/store/Schema.h"
#include "service/store/Secrets.h"
#include "service/store/SocialPosts.h"
#include "service/store/TemplateCatalogue.h"

#include <QDateTime>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

constexpr auto ownerOnly = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;

ServiceSettings completed(ServiceSettings settings)
{
    if (!settings.now)
        settings.now = [] { return QDateTime::currentMSecsSinceEpoch(); };
    settings.administrator = normalizedEmail(settings.administrator).value_or(QString());
    return settings;
}

// The key that seals forms. It is stored, so that the forms of pages open in a browser stay valid
// after a restart.
QByteArray keptFormKey(Transaction& transaction)
{
    Rows found = transaction.rows("SELECT value FROM setting WHERE name = 'form_key'");
    if (found.next())
        return found.bytes(0);
    QByteArray key = newKey();
    transaction.run("INSERT INTO setting (name, value) VALUES ('form_key', ?)", {key});
    return key;
}

}    // namespace

QString Service::databaseFile(const QString& dataFolder)
{
    return QDir(dataFolder).filePath(u"servicio.sqlite"_s);
}

Service::Service(const ServiceSettings& settings)
    : m_settings(completed(settings)),
      m_database(databaseFile(m_settings.dataFolder), &bringUpToDate, m_settings.history)
{
    // Removes temporary pictures that a crash may have left.
    const QDir data(m_settings.dataFolder);
    QDir(data.filePath(u"temporal"_s)).removeRecursively();
    {
        Transaction transaction(m_database);
        if (!ledgerAddsUp(transaction))
            throw DatabaseError(DatabaseError::Kind::wrongSums, "the ledger does not add up");
        m_formKey = keptFormKey(transaction);
        dropUnrecordedPosts(transaction, QDir(data.filePath(u"publicaciones"_s)));
        transaction.commit();
    }
    takeInTemplateFiles(m_database, QDir(data.filePath(u"plantillas"_s)), now());
}

bool Service::isAdministrator(Transaction& transaction, const Account& account) const
{
    const bool isOwnUsers = m_settings.audience == ServiceAudience::ownUser &&
                            !m_settings.administrator.isEmpty() &&
                            account.email == m_settings.administrator;
    return isOwnUsers || isNamedAdministrator(transaction, account);
}

QDir Service::folder(const QString& name) const
{
    const QDir data(m_settings.dataFolder);
    data.mkdir(name, ownerOnly);
    return QDir(data.filePath(name));
}

void Service::countSource(const ServiceRequest& request)
{
    Attempts& attempts = request.isLocal ? m_ownAttempts : m_sourceAttempts;
    if (!attempts.allow(request.source, now()))
        throw Refusal(429, "too_many_attempts");
}
