#pragma once

#include "service/Http.h"

#include <httplib.h>

#include <optional>

// What a request of the HTTP library says, in our own types.

QString headerOf(const httplib::Request& request, const char* name);
bool isType(const httplib::Request& request, const char* type);
std::optional<ServiceMethod> methodOf(const httplib::Request& request);

// Bytes of the body; nothing when the request contradicts itself, -1 when it comes in chunks.
std::optional<qint64> announcedBody(const httplib::Request& request);

QHash<QByteArray, QByteArray> cookiesOf(const httplib::Request& request);
QHash<QString, QString> fieldsOf(const QByteArray& encoded);

// As the client names us; nothing unless it is one of our names. A page of another site can make
// its own name lead to this machine, and would then be asked by the browser as if it were us.
std::optional<QString> ownHost(const httplib::Request& request, const QString& toldHost, int port);

// By a program that brings requests from anywhere.
bool wasPassedOn(const httplib::Request& request);

// Where programs of this machine find who listens at `host`.
QString loopbackFor(const QString& host);
