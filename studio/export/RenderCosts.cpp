#include "studio/export/RenderCosts.h"

#include "canvas/RenderFingerprint.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"

#include <QCoroFuture>

#include <algorithm>
#include <utility>
#include <vector>

RenderCosts::RenderCosts(std::shared_ptr<PhotoCache> photos, OutputSize outputSize, QObject* parent)
    : QObject(parent), m_photos(std::move(photos)), m_outputSize(std::move(outputSize))
{
    m_refresh.setSingleShot(true);
    connect(&m_refresh, &QTimer::timeout, this, &RenderCosts::refreshRenderCostsNow);
}

void RenderCosts::scheduleRenderCostRefresh(const Batch& batch, std::chrono::milliseconds debounce)
{
    const Batch before = std::exchange(m_batch, batch);
    const QList<Row> rowsBefore = std::exchange(m_rows, QList<Row>(batch.items.size()));
    const bool isSameFormat = before.format == batch.format;
    const auto placesBefore = std::exchange(m_places, {});
    m_places.reserve(batch.items.size());
    for (qsizetype i = 0; i < batch.items.size(); ++i) {
        const PublicationItem& item = batch.items[i];
        m_places.insert(item.id, i);
        const qsizetype place = placesBefore.value(item.id, -1);
        Row& row = m_rows[i];
        if (place >= 0)
            row = rowsBefore[place];
        const bool isSame =
            isSameFormat && place >= 0 &&
            (batch.items.shares(i, before.items, place) || item == before.items[place]);
        if (!isSame)
            setPayment(i, knownAtOnce(item));
    }
    m_unknown = std::ranges::count(m_rows, Payment::unknown, &Row::payment);
    // isPaid() may answer differently after items were added or removed.
    m_paidVersion += before.items.size() != batch.items.size();
    if (m_unknown > 0)
        m_refresh.start(debounce);
    Q_EMIT changed();
}

namespace {

// Number of characters to lay out, on which the duration of answer() mostly depends.
qsizetype lengthOf(const PublicationItem& item)
{
    qsizetype length = 0;
    for (const TextLayer& layer : item.layers)
        length += layer.isVisible ? layer.text.size() : 0;
    return length;
}

}    // namespace

void RenderCosts::refreshRenderCostsNow()
{
    m_refresh.stop();
    // Checks a few items with short texts here, which is faster than on a worker.
    constexpr qsizetype mostAtOnce = 2, longestAtOnce = 600;
    QList<qsizetype> open;
    bool mustLook = false;
    for (qsizetype i = 0; i < m_rows.size(); ++i) {
        if (m_rows[i].payment != Payment::unknown || m_rows[i].job != 0)
            continue;
        if (isLookedAt(m_batch.items[i]))
            open.append(i);
        else
            mustLook = true;
    }
    if (mustLook && !m_isLooking)
        lookAtPhotos();
    const bool isLong = std::ranges::any_of(
        open, [this](qsizetype i) { return lengthOf(m_batch.items[i]) > longestAtOnce; });
    if (open.size() > mostAtOnce || isLong)
        return findOutOnWorkers(open);
    for (const qsizetype i : open) {
        const PublicationItem& item = m_batch.items[i];
        setPayment(i, answer({item, m_batch.format, m_outputSize, *digestOf(item)}));
    }
    if (!open.isEmpty())
        Q_EMIT changed();
}

// The payment as far as it is known without computing a fingerprint.
RenderCosts::Payment RenderCosts::knownAtOnce(const PublicationItem& item) const
{
    if (!isLookedAt(item))
        return Payment::unknown;
    if (!digestOf(item))
        return Payment::unrenderable;
    return item.paidRenderFingerprints.isEmpty() ? Payment::unpaid : Payment::unknown;
}

RenderCosts::Payment RenderCosts::answer(const Question& question)
{
    const bool isPaid =
        isRenderAmong(question.item.paidRenderFingerprints,
                      {question.item, question.content, question.outputSize(question.format),
                       designSize(question.format)});
    return isPaid ? Payment::paid : Payment::unpaid;
}

// Whether the digest of the photo's file is known. A photo with a digest was read at the import.
bool RenderCosts::isLookedAt(const PublicationItem& item) const
{
    return !item.image.digest.isEmpty() || m_contents.contains(item.id);
}

std::optional<QByteArray> RenderCosts::digestOf(const PublicationItem& item) const
{
    const auto looked = m_contents.constFind(item.id);
    return usableContent(item.image,
                         looked == m_contents.cend() ? item.image.digest : looked.value());
}

void RenderCosts::setPayment(qsizetype index, Payment payment)
{
    Row& row = m_rows[index];
    m_unknown += int(payment == Payment::unknown) - int(row.payment == Payment::unknown);
    const bool isPaid = payment == Payment::unknown ? row.wasPaid : payment == Payment::paid;
    m_paidVersion += isPaid != row.wasPaid;
    row = {payment, isPaid, 0};
}

void RenderCosts::findOutOnWorkers(const QList<qsizetype>& indices)
{
    const qsizetype portion = indices.size() / workers().maxThreadCount() + 1;
    for (qsizetype first = 0; first < indices.size(); first += portion) {
        const int job = ++m_lastJob;
        QList<QUuid> items;
        Questions questions;
        for (const qsizetype i : indices.mid(first, portion)) {
            const PublicationItem& item = m_batch.items[i];
            m_rows[i].job = job;
            items.append(item.id);
            questions.append({item, m_batch.format, m_outputSize, *digestOf(item)});
        }
        runJob(this, job, items, questions);
    }
}

QCoro::Task<> RenderCosts::runJob(QPointer<RenderCosts> self, int job, QList<QUuid> items,
                                  Questions questions)
{
    const auto work = [questions] {
        QList<Payment> payments;
        for (const Question& question : questions)
            payments.append(answer(question));
        return payments;
    };
    QFuture<QList<Payment>> working = runOnWorker(work, Urgency::urgent);
    QList<Payment> payments;
    try {
        payments = co_await working;
    } catch (const std::exception&) {
        // Out of memory: treated like items that cannot be rendered.
        payments = QList<Payment>(items.size(), Payment::unrenderable);
    }
    if (self)
        self->finishJob(job, items, payments);
}

void RenderCosts::finishJob(int job, const QList<QUuid>& items, const QList<Payment>& payments)
{
    for (qsizetype i = 0; i < items.size(); ++i) {
        const qsizetype place = m_places.value(items[i], -1);
        // Drops the answer if the item was edited meanwhile: its row then no longer has this job.
        if (place >= 0 && m_rows[place].job == job)
            setPayment(place, payments[i]);
    }
    Q_EMIT changed();
}

void RenderCosts::lookAtPhotos()
{
    m_mustLookAgain = m_isLooking;
    if (m_isLooking || m_batch.items.isEmpty())
        return;
    m_isLooking = true;
    runLook(this, m_batch.items, m_photos);
}

QCoro::Task<> RenderCosts::runLook(QPointer<RenderCosts> self, PublicationItems items,
                                   std::shared_ptr<PhotoCache> photos)
{
    const auto look = [photos](const PublicationItems& some) {
        Contents contents;
        for (const PublicationItem& item : some)
            contents.insert(item.id, photos->digestOf(item.image.path));
        return contents;
    };
    constexpr qsizetype portion = 16;
    std::vector<QFuture<Contents>> portions;
    for (qsizetype first = 0; first < items.size(); first += portion) {
        portions.push_back(
            runOnWorker([look, some = items.mid(first, portion)] { return look(some); }));
    }
    for (const QFuture<Contents>& each : portions) {
        Contents contents;
        try {
            contents = co_await each;
        } catch (const std::exception&) {
            continue;    // out of memory: these photos count as not looked at
        }
        if (self)
            self->takeLook(contents);
    }
    if (self)
        self->finishLook();
}

void RenderCosts::takeLook(const Contents& contents)
{
    bool isNew = false;
    for (auto looked = contents.cbegin(); looked != contents.cend(); ++looked) {
        const qsizetype place = m_places.value(looked.key(), -1);
        if (place < 0)
            continue;
        const PublicationItem& item = m_batch.items[place];
        const bool wasLookedAt = isLookedAt(item);
        const auto before = digestOf(item);
        m_contents.insert(item.id, looked.value());
        if (wasLookedAt && before == digestOf(item))
            continue;
        setPayment(place, knownAtOnce(item));
        isNew = true;
    }
    if (isNew) {
        Q_EMIT changed();
        refreshRenderCostsNow();
    }
}

void RenderCosts::finishLook()
{
    m_isLooking = false;
    m_contents.removeIf([this](const auto& looked) { return !m_places.contains(looked.key()); });
    if (std::exchange(m_mustLookAgain, false))
        lookAtPhotos();
}

std::optional<qint64> RenderCosts::renderCreditCost(const QList<int>& indices) const
{
    qsizetype unpaid = 0;
    bool isComplete = true;
    for (const int index : indices) {
        const Payment payment = m_rows.value(index).payment;
        if (payment == Payment::unrenderable)
            return exportCreditCost * indices.size();
        isComplete &= payment != Payment::unknown;
        unpaid += payment == Payment::unpaid;
    }
    return isComplete ? std::optional(exportCreditCost * unpaid) : std::nullopt;
}

bool RenderCosts::isPaid(QUuid item) const
{
    const qsizetype place = m_places.value(item, -1);
    return place >= 0 && m_rows[place].wasPaid;
}
