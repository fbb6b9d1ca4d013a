#pragma once

#include "service/store/Refusal.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <functional>
#include <utility>

enum class ServiceMethod { get, post, patch };

// A request as its handler gets it. The values of `query`, `form`, `cookies` and `body` come from
// the client unchecked.
struct ServiceRequest {
    ServiceMethod method = ServiceMethod::get;
    QString path;                           // percent-decoded
    QString base;                           // "http://127.0.0.1:4321", from the Host header
    QHash<QString, QString> query, form;    // the first value of each name
    QHash<QByteArray, QByteArray> cookies;
    QByteArray body = {};
    QString source = {};    // identifies the client; see ConnectionPeer::source
    bool isLocal = true;    // the client is a program of our own user on this machine
    // Empties `body` and frees its share of the memory budget, for which other requests may be
    // waiting. A handler calls it before a long wait.
    std::function<void()> releaseBody = [] {};
};

struct ServiceReply {
    int status = 200;
    QByteArray type = "application/json; charset=utf-8";
    QByteArray body = {};
    QList<std::pair<QByteArray, QByteArray>> headers = {};
};
