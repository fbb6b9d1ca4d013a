#pragma once

#include "account/AccountSession.h"
#include "account/ServiceConfiguration.h"
#include "cli/shared/CommandHelp.h"
#include "cli/shared/Terminal.h"

// Parser, messages and exit statuses of one account command.
class AccountCommand {
public:
    enum class Needs { nothing, signIn };

    AccountCommand(const QString& name, const QString& description,
                   const ServiceConfiguration& configuration, Needs needs = Needs::nothing)
        : m_name(name), m_configurationProblem(configuration.problem), m_needs(needs)
    {
        m_parser.setApplicationDescription(description);
        m_parser.addOption(m_help);
    }

    QCommandLineParser& parser() { return m_parser; }

    // Returns the exit status if the command ends here; nothing if it goes on.
    std::optional<int> parse(const QStringList& arguments, qsizetype mostPositional = 0)
    {
        using namespace Qt::StringLiterals;
        if (!m_parser.parse(QStringList{u"moltiva "_s + m_name} + arguments))
            return wrongUse(m_parser.errorText());
        if (m_parser.isSet(m_help)) {
            QList<ExitMeaning> statuses{
                {exitDone}, {exitSomeFailed}, {exitWrongUse}, {exitNoNetwork}, {exitInterrupted}};
            if (m_needs == Needs::signIn)
                statuses.insert(3, {exitNotSignedIn});
            printCommandHelp(m_parser, m_name + u" [opciones]"_s, statuses);
            return exitDone;
        }
        if (m_parser.positionalArguments().size() > mostPositional) {
            return wrongUse(u"no espero «%1»."_s.arg(
                printable(m_parser.positionalArguments()[mostPositional])));
        }
        if (!m_configurationProblem.isEmpty())
            return wrongUse(m_configurationProblem);
        return std::nullopt;
    }

    int wrongUse(const QString& sentence) const { return failed(sentence, exitWrongUse); }
    int failed(const QString& sentence, int status = exitSomeFailed) const
    {
        print(stderr, QStringLiteral("moltiva %1: %2").arg(m_name, sentence));
        return status;
    }
    // Prints why an action of the session failed; returns the exit status.
    int failed(const AccountSession& session) const
    {
        return failed(session.outcome(), session.isUnreachable() ? exitNoNetwork
                                         : session.needsSignIn() ? exitNotSignedIn
                                                                 : exitSomeFailed);
    }
    // Prints the outcome of an action of the session; returns the exit status.
    int ended(const AccountSession& session, bool done) const
    {
        if (!done)
            return failed(session);
        print(stdout, session.outcome());
        return exitDone;
    }

private:
    QString m_name, m_configurationProblem;
    Needs m_needs;
    QCommandLineParser m_parser;
    const QCommandLineOption m_help{{QStringLiteral("h"), QStringLiteral("help")},
                                    QStringLiteral("muestra esta ayuda")};
};

// Prints a sentence about refunded or lost credits.
inline void tellOfRefund(const QString& sentence)
{
    print(stderr, sentence);
}
