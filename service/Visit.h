#pragma once

#include "account/AccountRecords.h"
#include "service/Html.h"
#include "service/Http.h"
#include "service/store/Accounts.h"

#include <optional>

class Service;

// A request with what its handler needs to answer it.
struct Visit {
    Service& service;
    const ServiceRequest& request;
    Account account;               // set only where the route needs a session
    QByteArray formSecret = {};    // random; identifies the browser, see form()
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

// Reads the body as a Record. Throws Refusal with `code` when the body is not a Record.
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

// A form that can be sent only by the browser that showed it, and only to `action`. Call it before
// pageReply(), which sends the cookie that identifies the browser.
Html form(Visit& visit, const QString& action, const Html& content);
bool formIsOurs(const Visit& visit);

// A page with a moltiva:// link back to the studio. It also shows the link as text, because the
// browser may not know how to open it.
ServiceReply deepLinkPage(const Visit& visit, const QString& title, const QString& sentence,
                          const QString& label, const QString& link);
// A page that holds one sentence, such as why something cannot be shown.
ServiceReply sentencePage(const Visit& visit, int status, const QString& title,
                          const QString& sentence);
// Throws Refusal unless the client is a program of our own user on this machine. For the pages that
// show mails and stand in for Google's sign-in: they ask for no password.
void needThisMachine(const Visit& visit);

QByteArray styleSheet();
