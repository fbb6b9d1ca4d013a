#pragma once

#include "account/AccountRecords.h"
#include "service/Html.h"
#include "service/Http.h"
#include "service/store/Accounts.h"

#include <optional>

class Service;

// One request on its way through its handler.
struct Visit {
    Service& service;
    const ServiceRequest& request;
    Account account;               // filled in where the route needs a session
    QByteArray formSecret = {};    // identifies the browser; see form()
};

// The part of the path after its last slash.
inline QString lastSegment(const Visit& visit)
{
    return visit.request.path.section(u'/', -1);
}

template <typename Record>
ServiceReply wireReply(const Record& record)
{
    return {.body = toWire(record)};
}

// The body as a Record. Throws Refusal with `code` when it is none.
template <typename Record>
Record wireBody(const Visit& visit, const char* code = "invalid_request")
{
    auto record = fromWire<Record>(visit.request.body);
    if (!record)
        throw Refusal(400, code, QStringLiteral("the body is not such a record"));
    return *std::move(record);
}

ServiceReply okReply();
ServiceReply refusalReply(const Refusal& refusal);

// A page with the header and the style sheet of the service.
ServiceReply pageReply(const Visit& visit, const QString& title, const Html& content,
                       int status = 200);
ServiceReply seeOther(const QString& path);

// A form that only the browser it was shown in can send, and only to `action`. Must be made before
// the page's reply: pageReply() sends the browser the cookie that goes with it.
Html form(Visit& visit, const QString& action, const Html& content);
bool formIsOurs(const Visit& visit);

// A page with a link back to the studio (moltiva://), which the browser may not know how to open.
ServiceReply deepLinkPage(const Visit& visit, const QString& title, const QString& sentence,
                          const QString& label, const QString& link);
// A page that holds one sentence, such as why something cannot be shown.
ServiceReply sentencePage(const Visit& visit, int status, const QString& title,
                          const QString& sentence);
// Throws Refusal unless the client is our own user on this machine. For pages that show what a
// mailbox or a password would protect elsewhere.
void needThisMachine(const Visit& visit);

QByteArray styleSheet();
