#include "service/http/RequestParts.h"

#include <QHostAddress>
#include <QUrl>
#include <QUrlQuery>

#include <array>

using namespace Qt::StringLiterals;

namespace {

// Parses an address; IPv4 written as IPv6 (::ffff:127.0.0.1) becomes plain IPv4.
QHostAddress plain(const QString& text)
{
    const QHostAddress address(text);
    bool isVersion4 = false;
    const quint32 number = address.toIPv4Address(&isVersion4);
    return isVersion4 ? QHostAddress(number) : address;
}

bool isWildcard(const QHostAddress& address)
{
    return address == QHostAddress(QHostAddress::AnyIPv4) ||
           address == QHostAddress(QHostAddress::AnyIPv6);
}

}    // namespace

QString headerOf(const httplib::Request& request, const char* name)
{
    return QString::fromStdString(request.get_header_value(name));
}

bool isType(const httplib::Request& request, const char* type)
{
    const QString given = headerOf(request, "Content-Type").section(u';', 0, 0).trimmed().toLower();
    return given == QLatin1String(type);
}

std::optional<qint64> announcedBody(const httplib::Request& request)
{
    const bool isChunked = request.has_header("Transfer-Encoding");
    const auto lengths = request.get_header_value_count("Content-Length");
    if (lengths > 1 || (isChunked && lengths > 0))
        return std::nullopt;
    if (isChunked)
        return headerOf(request, "Transfer-Encoding").toLower() == u"chunked" ? std::optional(-1)
                                                                              : std::nullopt;
    if (lengths == 0)
        return 0;
    bool isNumber = false;
    const qint64 length = headerOf(request, "Content-Length").toLongLong(&isNumber);
    return isNumber && length >= 0 ? std::optional(length) : std::nullopt;
}

QHash<QByteArray, QByteArray> cookiesOf(const httplib::Request& request)
{
    QHash<QByteArray, QByteArray> cookies;
    const auto [begin, end] = request.headers.equal_range("Cookie");
    for (auto one = begin; one != end; ++one) {
        for (const QByteArray& pair : QByteArray::fromStdString(one->second).split(';')) {
            const qsizetype equals = pair.indexOf('=');
            const QByteArray name = pair.left(equals).trimmed();
            if (equals > 0 && !cookies.contains(name))
                cookies.insert(name, pair.mid(equals + 1).trimmed());
        }
    }
    return cookies;
}

QHash<QString, QString> fieldsOf(const QByteArray& encoded)
{
    QHash<QString, QString> fields;
    const QUrlQuery query(QString::fromLatin1(encoded).replace(u'+', u"%20"_s));
    for (const auto& [name, value] : query.queryItems(QUrl::FullyDecoded)) {
        if (!fields.contains(name))
            fields.insert(name, value);
    }
    return fields;
}

std::optional<ServiceMethod> methodOf(const httplib::Request& request)
{
    if (request.method == "GET" || request.method == "HEAD")
        return ServiceMethod::get;
    if (request.method == "POST")
        return ServiceMethod::post;
    return request.method == "PATCH" ? std::optional(ServiceMethod::patch) : std::nullopt;
}

std::optional<QString> ownHost(const httplib::Request& request, const QString& toldHost, int port)
{
    const QString host = headerOf(request, "Host").toLower();
    const QUrl url(u"http://"_s + host, QUrl::StrictMode);
    const QHostAddress address = plain(url.host());
    // A numeric address is ours only if it is a loopback address, `toldHost`, or the address that
    // the connection came in on.
    const bool isOurs =
        url.host() == u"localhost" || address.isLoopback() ||
        (!isWildcard(address) &&
         (url.host() == toldHost.toLower() ||
          (!address.isNull() && address == plain(QString::fromStdString(request.local_addr)))));
    const bool isPlain =
        url.userInfo().isEmpty() && url.path().isEmpty() && !url.hasQuery() && !url.hasFragment();
    if (request.get_header_value_count("Host") != 1 || !isOurs || !isPlain || url.port(80) != port)
        return std::nullopt;
    return host;
}

bool wasPassedOn(const httplib::Request& request)
{
    constexpr std::array marks{"Forwarded", "X-Forwarded-For", "X-Forwarded-Host", "X-Real-IP",
                               "Via"};
    return std::ranges::any_of(marks, [&](const char* mark) { return request.has_header(mark); });
}

QString loopbackFor(const QString& host)
{
    const QHostAddress address(host);
    if (address == QHostAddress(QHostAddress::AnyIPv6))
        return u"::1"_s;
    return isWildcard(address) ? u"127.0.0.1"_s : host;
}
