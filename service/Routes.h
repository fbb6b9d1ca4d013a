#pragma once

#include "service/Http.h"

class Service;
struct Visit;

enum class RouteNeeds {
    nothing,
    session,
    administrator,    // a session of the administrator
    ourForm,          // a form that the service has shown in the same browser
};

enum class RouteKind {
    byPath,    // refused with a JSON record below /api/, with a page elsewhere
    page,      // opened in a browser: refused with a page, also below /api/
};

struct Route {
    ServiceMethod method;
    QStringView path;    // "*" stands for one segment
    RouteNeeds needs;
    qint64 largestBody;    // bytes
    ServiceReply (*handle)(Visit& visit);
    RouteKind kind = RouteKind::byPath;
};

// Checks `head`, a request whose body has not been read. Throws Refusal for an unknown path, a
// wrong method, a missing session or a user who is not the administrator. Returns how many bytes
// the body may have.
qint64 admit(Service& service, const ServiceRequest& head);

// The reply for a refusal: a page for the routes that browsers open, else a JSON record.
ServiceReply refused(Service& service, const ServiceRequest& request, const Refusal& refusal);

// The reply of the route's handler, or an error reply. Never throws.
ServiceReply answer(Service& service, const ServiceRequest& request);

inline bool isApi(const QString& path)
{
    return path.startsWith(u"/api/");
}
