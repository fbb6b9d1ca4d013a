#pragma once

#include <QString>

#include <exception>

// A refusal of the account service, or a reply that cannot be understood. text() is a Spanish
// sentence for the user. If no reply came, TransportError is thrown instead.
class AccountError : public std::exception {
public:
    enum class Kind { message, invalidResponse, unauthorized };

    // `code`: the service's machine code for this error; empty if there is none.
    static AccountError message(const QString& text, const QString& code = {});
    static AccountError invalidResponse();
    static AccountError unauthorized(const QString& code = {});

    Kind kind() const { return m_kind; }
    const QString& text() const { return m_text; }
    const QString& code() const { return m_code; }
    const char* what() const noexcept override { return "the account service refused"; }

private:
    AccountError(Kind kind, const QString& text, const QString& code);

    Kind m_kind;
    QString m_text, m_code;
};

// The Spanish sentence for a machine code of the service; a general one for an unknown code.
// `siteName`: name of the public web site, which some sentences mention.
QString userMessage(QStringView code, const QString& siteName = {});

// Whether the service gave no reply: it could not be reached, took too long or broke off the
// connection.
bool isUnreachable(const std::exception& error);

// The Spanish sentence for a failure of any account operation.
QString readable(const std::exception& error);
