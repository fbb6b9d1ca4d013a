#pragma once

#include "service/store/Refusal.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <functional>
#include <utility>

enum class ServiceMethod { get, post, patch };

// A request as its handler sees it; no part of it has been checked.
struct ServiceRequest {
    ServiceMethod method = ServiceMethod::get;
    QString path;                           // decoded
    QString base;                           // "http://127.0.0.1:4321", as the client wrote it
    QHash<QString, QString> query, form;    // of equal names the first
    QHash<QByteArray, QByteArray> cookies;
    QByteArray body = {};
    QString source = {};    // the client's user on this machine, or its address
    bool isLocal = true;    // the client is a program of our own user on this machine
    // A handler calls it before a long wait: empties `body` and gives back the memory that was
    // taken for it, for which other requests may be waiting.
    std::function<void()> releaseBody = [] {};
};

struct ServiceReply {
    int status = 200;
    QByteArray type = "application/json; charset=utf-8";
    QByteArray body = {};
    QList<std::pair<QByteArray, QByteArray>> headers = {};
};
