#pragma once

#include <QString>

#include <exception>

// What the account service refused, or could not be understood; the text is the user's. An exchange
// that came to no reply throws TransportError instead.
class AccountError : public std::exception {
public:
    enum class Kind { message, invalidResponse, unauthorized };

    // `code`: the machine code of the server that the text stands for, if there is one.
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

// For the user, of a machine code of the service; codes that are not known get a general sentence.
// `siteName`: of the public web site, which some sentences name.
QString userMessage(QStringView code, const QString& siteName = {});

// There was no answer at all: the service cannot be reached, or took too long.
bool isUnreachable(const std::exception& error);

// Of any failure of an account's operation.
QString readable(const std::exception& error);
