#pragma once

#include "service/Http.h"

class Service;
struct Visit;

enum class RouteNeeds {
    nothing,
    session,
    administrator,    // as well as a session
    ourForm,          // was shown by us to the same browser
};

enum class RouteKind {
    byPath,    // below /api records, else pages
    page,      // is opened by a browser, wherever it lies
};

struct Route {
    ServiceMethod method;
    QStringView path;    // "*" stands for one segment
    RouteNeeds needs;
    qint64 largestBody;    // bytes
    ServiceReply (*handle)(Visit& visit);
    RouteKind kind = RouteKind::byPath;
};

// What may be said before the body is there: throws Refusal for an unknown path, a wrong method or
// a missing session; else gives how large the body may be.
qint64 admit(Service& service, const ServiceRequest& head);

// As a page where a browser asked for one.
ServiceReply refused(Service& service, const ServiceRequest& request, const Refusal& refusal);

// Never throws.
ServiceReply answer(Service& service, const ServiceRequest& request);

inline bool isApi(const QString& path)
{
    return path.startsWith(u"/api/");
}
