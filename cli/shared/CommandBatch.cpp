#include "cli/shared/CommandBatch.h"

#include "canvas/RenderFingerprint.h"
#include "cli/shared/AccountConnection.h"
#include "cli/shared/PaidRenders.h"
#include "studio/export/RenderedOutput.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

// Gives a photo the same item id in every run of the command, because the request identifiers of
// charges depend on it. `occurrence`: how many times the same file occurs earlier in the list.
QUuid itemId(const QString& file, int occurrence)
{
    const QUuid space = QUuid::fromString(u"{a3a31d52-6a5e-4d0c-9d0c-3f0a4d5f7c21}"_s);
    return QUuid::createUuidV5(space, file + u'\n' + QString::number(occurrence));
}

}    // namespace

CommandBatch commandBatch(const BatchOptions& options, const PublicationItems& accepted,
                          const QSet<QString>& paid, const CommandBatchWatch& watch)
{
    const QList<QUrl>& photos = options.photos;
    PublicationItems asked;
    for (const QUrl& photo : photos)
        asked.append(PublicationItem::make(photo, {}));
    const TextSheet sheet = options.texts.value_or(TextSheet());
    const SheetMatch texts = matchRows(sheet, asked);
    for (const RowProblem& problem : texts.problems)
        watch.rowFailed(problem);
    for (const QString& photo : options.unreachable)
        watch.unreadable(photo);

    CommandBatch batch;
    batch.lacksTexts = options.texts.has_value();
    QHash<QString, int> occurrences;    // by file
    qsizetype next = 0;                 // index in `accepted`
    for (qsizetype i = 0; i < photos.size(); ++i) {
        const QString photo = photos[i].toLocalFile();
        if (next == accepted.size() || accepted[next].url != photos[i]) {
            watch.unreadable(photo);
            continue;
        }
        PublicationItem item = accepted[next++];
        const QString file = QFileInfo(photo).canonicalFilePath();
        item.id = itemId(file, occurrences[file]++);
        item.paidRenderFingerprints = paid;
        if (const auto row = texts.rowOfImage[i]) {
            fillTexts(item, sheet.rows[*row]);
            batch.lacksTexts = false;
        }
        if (options.design)
            options.design(item);
        batch.items.append(item);
        batch.photos.append(i);
    }
    return batch;
}

std::optional<qint64> unpaidRenders(const PublicationItems& items, SocialFormat format,
                                    const std::function<bool()>& isStopped)
{
    const QSizeF size = exportSizeOf(format), reference = designSize(format);
    qint64 unpaid = items.size();
    for (const PublicationItem& item : items) {
        if (isStopped())
            return {};
        unpaid -=
            isRenderAmong(item.paidRenderFingerprints, {item, item.image.digest, size, reference});
    }
    return unpaid;
}

ChargeServices chargeServices(AccountConnection& connection, const QString& payer,
                              const PublicationItems& items)
{
    PreferencesStore& preferences = connection.preferences();
    return {.account = &connection.session(),
            .journal = &connection.journal(),
            .payer = payer,
            .payments = [&preferences, payer,
                         items] { return paymentsOf(items, paidRenders(preferences, payer)); },
            .record =
                [&preferences, payer](const QList<RenderedOutput>& outputs, const Strike& strike) {
                    return addPaidRenders(preferences, payer, outputs, strike);
                }};
}
