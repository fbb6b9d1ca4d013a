#pragma once

#include <QString>

#include <exception>
#include <utility>

// An error reply to a request, thrown by its handler or by any function that the handler calls.
class Refusal : public std::exception {
public:
    // `reason` is for a developer, never shown to users.
    Refusal(int status, const char* code, QString reason = {})
        : m_status(status), m_code(code), m_reason(std::move(reason))
    {
    }
    int status() const { return m_status; }
    const char* code() const { return m_code; }
    const QString& reason() const { return m_reason; }
    const char* what() const noexcept override { return m_code; }

private:
    int m_status;
    const char* m_code;    // a string literal, not owned
    QString m_reason;
};
