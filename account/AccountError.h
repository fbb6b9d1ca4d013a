#pragma once

#include <QString>

#include <exception>
#include <stdexcept>

// The one exception that leaves the service client, but for TransportError.
class AccountError : public std::exception {
public:
    enum class Kind { message, invalidResponse, unauthorized };

    // `code`: the machine code of the server that the text stands for, if there is one.
    static AccountError message(const QString& text, const QString& code = {});
    static AccountError invalidResponse();
    static AccountError unauthorized();

    Kind kind() const { return m_kind; }
    const QString& text() const { return m_text; }    // for the user, in Spanish
    const QString& code() const { return m_code; }
    const char* what() const noexcept override { return "the account service refused"; }

private:
    AccountError(Kind kind, const QString& text, const QString& code);

    Kind m_kind;
    QString m_text, m_code;
};

// Of a server's machine code; codes that are not known get a general sentence.
QString userMessage(QStringView code);
