#pragma once

#include "platform/Http.h"

// HTTP level of the account service: how requests carry the session cookie, and which replies are
// errors.

inline constexpr QByteArrayView sessionCookiePrefix = "tallerio_session=";

// The "Cookie" value to send back after a reply with these headers; empty when they hold no
// session.
QByteArray sessionCookieIn(const HttpHeaders& headers);

// The body of an accepted reply; throws AccountError for any other status.
QByteArray acceptedBody(const HttpReply& reply, const QString& siteName);

// Whether a value may stand in a header: printable ASCII.
bool isHeaderText(QByteArrayView text);
// Where a redirection leads; nothing for any other reply.
std::optional<QUrl> locationIn(const HttpReply& reply, const QUrl& asked);
// Same scheme, host and port.
bool sameOrigin(const QUrl& one, const QUrl& other);
// Makes the request one for `location`, as a reply with `status` asks.
void redirect(HttpRequest& request, const QUrl& location, int status);
// Replaces the request's cookie; an empty one removes it.
void setCookie(HttpRequest& request, const QByteArray& cookie);
