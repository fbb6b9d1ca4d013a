#pragma once

#include "app/publish/PublishShown.h"
#include "app/theme/Icons.h"

#include <QDateTime>

// The sentences of the publish sheet.
namespace PublishTexts {

QString selection(qsizetype selected, qsizetype batch);
// "Publicar en Feed (150 créditos)".
QString action(const NetworkShown& network, SocialPublishPlacement placement);
QString primary(const PublishShown& shown);
bool canPublish(const PublishShown& shown);

QString state(ConnectionState state);
// Of a network: which account it uses, or what is missing.
QString hint(const NetworkShown& network, const QString& site);
// The name of a connected account in one short line, as it may be shown.
QString account(const QString& displayName);
// For the tooltip of the button that connects a network.
QString connecting(const QString& site);

// `cost` and `balance` in credits.
QString cost(SocialPublishNetwork network, std::optional<qint64> cost, qint64 balance);
// `paid` of `sent` images cost nothing more; empty if none is paid.
QString paidNote(qsizetype paid, qsizetype sent);
QString warnings(const CheckedPost& checks);    // "3 avisos antes de publicar"; may be empty
QString passed(const CheckedPost& checks);      // "7 comprobaciones correctas"
QString checking();                             // while not all checks are done
QString origin(const QString& name, qsizetype position);    // counted from 1; 0: not in the batch

QString place(SocialPublishNetwork network, SocialPublishPlacement placement);
QString date(const QDateTime& local, const QDate& today);
QString amount(qint64 sent, qint64 total);    // bytes
QString kept(qsizetype posts);                // "6 publicaciones en esta cuenta"

Icon icon(SocialPublishNetwork network);

}    // namespace PublishTexts
