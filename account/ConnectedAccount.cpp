#include "account/ConnectedAccount.h"

#include <QDir>

using namespace Qt::StringLiterals;

ConnectedAccount::ConnectedAccount(const ServiceConfiguration& configuration,
                                   PreferencesStore& preferences, const QString& dataFolder,
                                   AccountSession::Surroundings surroundings)
    : m_local({.program = localServiceProgram(),
               .data = QDir(dataFolder).filePath(u"service"_s),
               .administrator = configuration.administratorEmail}),
      m_api(configuration, preferences, &m_local), m_session(m_api, std::move(surroundings)),
      m_journal(m_session, preferences, QDir(dataFolder).filePath(u"runs"_s))
{
}
