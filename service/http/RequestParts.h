#pragma once

#include "service/Http.h"

#include <httplib.h>

#include <optional>

// Functions that read the HTTP library's request into our own types.

QString headerOf(const httplib::Request& request, const char* name);
bool isType(const httplib::Request& request, const char* type);
std::optional<ServiceMethod> methodOf(const httplib::Request& request);

// The length of the body in bytes; -1 when it comes in chunks, nothing when the headers contradict
// each other.
std::optional<qint64> announcedBody(const httplib::Request& request);

QHash<QByteArray, QByteArray> cookiesOf(const httplib::Request& request);
QHash<QString, QString> fieldsOf(const QByteArray& encoded);

// The Host header if it names this service, which listens on `toldHost` and `port`; else nothing.
// Protects against DNS rebinding: a foreign site can make its own name lead to this machine, and
// browsers would then take our answers for answers of that site.
std::optional<QString> ownHost(const httplib::Request& request, const QString& toldHost, int port);

// Whether a proxy has forwarded the request, which may then come from any machine.
bool wasPassedOn(const httplib::Request& request);

// The address at which programs of this machine reach a service that listens on `host`.
QString loopbackFor(const QString& host);
