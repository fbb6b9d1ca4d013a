#include "account/AccountHttp.h"

#include "account/AccountError.h"
#include "account/AccountRecords.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

bool isRedirection(int status)
{
    constexpr std::array statuses{301, 302, 303, 307, 308};
    return std::ranges::find(statuses, status) != statuses.end();
}

// The machine code of the service in a reply; empty if there is none.
std::optional<QString> codeIn(const HttpReply& reply)
{
    static const QRegularExpression code(u"^[a-z0-9_]+$"_s);
    const auto payload = fromWire<APIErrorPayload>(reply.body).value_or(APIErrorPayload());
    const bool isCode = payload.error && code.match(*payload.error).hasMatch();
    return isCode ? payload.error : std::nullopt;
}

}    // namespace

QByteArray sessionCookieIn(const HttpHeaders& headers)
{
    QByteArray found;
    for (const auto& [name, value] : headers) {
        if (name.compare("set-cookie", Qt::CaseInsensitive) != 0)
            continue;
        const qsizetype start = value.indexOf(sessionCookiePrefix);
        if (start < 0)
            continue;
        const qsizetype end = value.indexOf(';', start);
        const QByteArray cookie = value.mid(start, end < 0 ? -1 : end - start).trimmed();
        if (cookie.size() > sessionCookiePrefix.size() && isHeaderText(cookie))
            found = cookie;
    }
    return found;
}

QByteArray acceptedBody(const HttpReply& reply, const QString& siteName)
{
    if (reply.status >= 200 && reply.status <= 299)
        return reply.body;
    const auto given = codeIn(reply);
    if (reply.status == 401)
        throw AccountError::unauthorized(given.value_or(QString()));
    const QString code = given.value_or(QString());
    throw AccountError::message(userMessage(code, siteName), code);
}

bool leavesOpen(const HttpReply& reply)
{
    const bool leadsElsewhere = reply.status >= 300 && reply.status <= 399;
    return leadsElsewhere ? !repeatsRequest(reply.status) : reply.status >= 500 && !codeIn(reply);
}

bool isHeaderText(QByteArrayView text)
{
    return std::ranges::all_of(text, [](char c) { return c >= 0x20 && c < 0x7f; });
}

std::optional<QUrl> locationIn(const HttpReply& reply, const QUrl& asked)
{
    const auto found = std::ranges::find_if(reply.headers, [](const auto& header) {
        return header.first.compare("location", Qt::CaseInsensitive) == 0;
    });
    if (!isRedirection(reply.status) || found == reply.headers.end())
        return std::nullopt;
    const QUrl location = QUrl::fromEncoded(found->second, QUrl::StrictMode);
    if (location.isEmpty() || !location.isValid())
        return std::nullopt;
    return asked.resolved(location);
}

bool sameOrigin(const QUrl& one, const QUrl& other)
{
    const auto port = [](const QUrl& url) {
        return url.port(url.scheme() == u"https"_s ? 443 : 80);
    };
    return one.scheme() == other.scheme() && one.host() == other.host() && port(one) == port(other);
}

bool repeatsRequest(int status)
{
    return status == 307 || status == 308;
}

// After a 303, and a 301 or 302 for a POST, the new address is fetched with GET, as browsers do.
// Any other redirection repeats the method and the body.
void redirect(HttpRequest& request, const QUrl& location, int status)
{
    request.url = location;
    const bool isElsewhere =
        status == 303 || ((status == 301 || status == 302) && request.method == "POST");
    if (!isElsewhere || request.method == "GET")
        return;
    request.method = "GET";
    request.body.reset();
    request.headers.removeIf([](const auto& header) { return header.first == "Content-Type"; });
}

void setCookie(HttpRequest& request, const QByteArray& cookie)
{
    request.headers.removeIf([](const auto& header) { return header.first == "Cookie"; });
    if (!cookie.isEmpty())
        request.headers.emplaceBack("Cookie", cookie);
}
