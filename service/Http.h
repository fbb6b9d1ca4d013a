#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <exception>
#include <functional>
#include <utility>

enum class ServiceMethod { get, post, patch };

// What a handler needs to know of a request; no part of it has been checked.
struct ServiceRequest {
    ServiceMethod method = ServiceMethod::get;
    QString path;                           // decoded
    QString base;                           // "http://127.0.0.1:4321", as the client wrote it
    QHash<QString, QString> query, form;    // the first of equal names
    QHash<QByteArray, QByteArray> cookies;
    QByteArray body = {};
    QString source = {};    // the client's user on this machine, or its address
    bool isLocal = true;    // the client is a program of our own user on this machine
    // Called before a long wait for others: what was taken for the body is given back, and the body
    // is gone.
    std::function<void()> letGo = [] {};
};

struct ServiceReply {
    int status = 200;
    QByteArray type = "application/json; charset=utf-8";
    QByteArray body = {};
    QList<std::pair<QByteArray, QByteArray>> headers = {};
};

// Leaves a handler from any depth and becomes its answer.
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
    const char* m_code;    // a literal
    QString m_reason;
};
