#pragma once

#include "platform/Http.h"

// HTTP level of the account service: how requests carry the session cookie, and which replies are
// errors.

inline constexpr QByteArrayView sessionCookiePrefix = "tallerio_session=";

// The "Cookie" value to send back after a reply with these headers; empty when they set no session
// cookie.
QByteArray sessionCookieIn(const HttpHeaders& headers);

// The body of a reply with a 2xx status; throws AccountError for any other status.
QByteArray acceptedBody(const HttpReply& reply, const QString& siteName);

// Whether the reply to a POST does not tell whether the service has obeyed it: it leads to another
// page, as after a form, or it is an error without a code of the service, such as that of a proxy
// that has waited too long.
bool leavesOpen(const HttpReply& reply);

// Whether a value may stand in a header: printable ASCII.
bool isHeaderText(QByteArrayView text);
// The address that a redirection leads to; nothing for any other reply. `asked`: address of the
// request.
std::optional<QUrl> locationIn(const HttpReply& reply, const QUrl& asked);
// Whether both have the same scheme, host and port.
bool sameOrigin(const QUrl& one, const QUrl& other);
// Whether a redirection with this status asks for the same request at the new address.
bool repeatsRequest(int status);
// Turns the request into the one that follows a redirection with `status` to `location`.
void redirect(HttpRequest& request, const QUrl& location, int status);
// Replaces the request's cookie; an empty one removes it.
void setCookie(HttpRequest& request, const QByteArray& cookie);
