#pragma once

#include "service/store/Refusal.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

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
