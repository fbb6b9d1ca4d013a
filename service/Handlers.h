#pragma once

struct ServiceReply;
struct Visit;

// Handlers of the routes in Routes.cpp. Each may throw Refusal, which becomes an error reply.

ServiceReply signIn(Visit& visit);
ServiceReply registerAccount(Visit& visit);
ServiceReply signOut(Visit& visit);
ServiceReply showAccount(Visit& visit);
ServiceReply changeProfile(Visit& visit);
ServiceReply changePassword(Visit& visit);
ServiceReply requestPasswordReset(Visit& visit);
ServiceReply exchangeDesktopToken(Visit& visit);

ServiceReply reserve(Visit& visit);
ServiceReply refund(Visit& visit);
ServiceReply startPurchase(Visit& visit);
ServiceReply confirmPurchase(Visit& visit);
ServiceReply showPurchases(Visit& visit);
ServiceReply showPurchaseLink(Visit& visit);

ServiceReply showCopyConfig(Visit& visit);
ServiceReply generateCopy(Visit& visit);
ServiceReply showTemplates(Visit& visit);
ServiceReply showTemplateFile(Visit& visit);
ServiceReply uploadTemplate(Visit& visit);
ServiceReply deleteTemplate(Visit& visit);
ServiceReply showConnections(Visit& visit);
ServiceReply giveConnectToken(Visit& visit);
ServiceReply publishPost(Visit& visit);

ServiceReply startPage(Visit& visit);
ServiceReply styleSheetFile(Visit& visit);
ServiceReply mailsPage(Visit& visit);
ServiceReply mailPage(Visit& visit);
ServiceReply resetPage(Visit& visit);
ServiceReply resetSent(Visit& visit);
ServiceReply googlePage(Visit& visit);
ServiceReply googleSent(Visit& visit);
ServiceReply payPage(Visit& visit);
ServiceReply paySent(Visit& visit);
ServiceReply invoicePage(Visit& visit);
ServiceReply connectPage(Visit& visit);
ServiceReply connectSent(Visit& visit);
ServiceReply basicConnectPage(Visit& visit);
ServiceReply basicConnectSent(Visit& visit);
ServiceReply postPage(Visit& visit);
ServiceReply postImage(Visit& visit);
