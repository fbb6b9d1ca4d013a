#pragma once

#include "platform/Http.h"

// How requests to the account service carry a session, and what its answers mean, on the level of
// HTTP.

inline constexpr QByteArrayView sessionCookiePrefix = "tallerio_session=";

// What to send back as "Cookie", of a reply's headers; empty when they hold no session.
QByteArray sessionCookieIn(const HttpHeaders& headers);

// The body of a reply, or the error that the reply stands for.
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
