#pragma once

#include "service/Http.h"

class Service;
struct Visit;

enum class RouteNeeds {
    nothing,
    session,
    administrator,    // as well as a session
    ourForm,          // a form that we showed in the same browser
};

enum class RouteKind {
    byPath,    // below /api for JSON records, else for pages
    page,      // opened by a browser, also below /api
};

struct Route {
    ServiceMethod method;
    QStringView path;    // "*" stands for one segment
    RouteNeeds needs;
    qint64 largestBody;    // bytes
    ServiceReply (*handle)(Visit& visit);
    RouteKind kind = RouteKind::byPath;
};

// Checks a request before its body is read. Throws Refusal for an unknown path, a wrong method or a
// missing session; else returns how many bytes the body may have.
qint64 admit(Service& service, const ServiceRequest& head);

// The reply that tells a refusal: a page where a browser asked for one, else a JSON record.
ServiceReply refused(Service& service, const ServiceRequest& request, const Refusal& refusal);

// The reply of the route's handler, or one that tells what went wrong. Never throws.
ServiceReply answer(Service& service, const ServiceRequest& request);

inline bool isApi(const QString& path)
{
    return path.startsWith(u"/api/");
}
