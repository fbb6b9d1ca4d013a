#pragma once

#include "cli/shared/BatchOptions.h"
#include "studio/export/RenderCharge.h"
#include "studio/sheet/SheetMatch.h"

class AccountConnection;

// The readable photos of a command, as items.
struct CommandBatch {
    PublicationItems items;
    QList<qsizetype> photos;    // index of each item's photo in BatchOptions::photos
    bool lacksTexts = false;    // texts were given, but none of their rows fits a readable photo
};

// Who is told what could not be used.
struct CommandBatchWatch {
    std::function<void(const QString& photo)> unreadable;
    std::function<void(const RowProblem& problem)> rowFailed;
};

// `accepted`: the items of the readable photos, in the order of the options. Gives them ids that
// are the same in every run, texts, design and the fingerprints of `paid` renders. Matches texts
// with all photos, readable or not, so that an unreadable photo does not change the texts of
// others.
CommandBatch commandBatch(const BatchOptions& options, const PublicationItems& accepted,
                          const QSet<QString>& paid, const CommandBatchWatch& watch);

// How many of the items are unpaid, as known before drawing. Takes a while, because it lays out the
// texts. Returns nothing when `isStopped` returns true.
std::optional<qint64> unpaidRenders(const PublicationItems& items, SocialFormat format,
                                    const std::function<bool()>& isStopped);

// Charges the account `payer` for renders of the items, and stores what is paid with those of
// other commands. The connection must outlive the services.
ChargeServices chargeServices(AccountConnection& connection, const QString& payer,
                              const PublicationItems& items);
