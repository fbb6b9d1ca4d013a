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
    Account account;               // where the route needs a session
    QByteArray formSecret = {};    // of the browser; see form()
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

// Throws Refusal with `code` when the body is no such record.
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

// A page of our own look.
ServiceReply pageReply(const Visit& visit, const QString& title, const Html& content,
                       int status = 200);
ServiceReply seeOther(const QString& path);

// A form that only the browser it was shown in can send, and only to `action`.
Html form(Visit& visit, const QString& action, const Html& content);
bool formIsOurs(const Visit& visit);

// A page that ends in a link of ours, which the browser may not know how to open.
ServiceReply deepLinkPage(const Visit& visit, const QString& title, const QString& sentence,
                          const QString& label, const QString& link);
// A page for what cannot be shown.
ServiceReply sentencePage(const Visit& visit, int status, const QString& title,
                          const QString& sentence);
// Throws Refusal. Pages that show what a mailbox or a password would protect elsewhere.
void needThisMachine(const Visit& visit);

QByteArray styleSheet();
