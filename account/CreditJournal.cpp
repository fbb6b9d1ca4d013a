#include "account/CreditJournal.h"

#include "account/AccountError.h"
#include "account/CreditAccount.h"
#include "account/JournalEntry.h"
#include "platform/HttpClient.h"
#include "platform/Log.h"
#include "platform/PreferencesStore.h"

#include <QDateTime>
#include <QPointer>

using namespace Qt::StringLiterals;

namespace {

double now()
{
    return double(QDateTime::currentMSecsSinceEpoch());
}

// Sum of several journal entries, for one sentence to the user.
struct Total {
    qint64 credits = 0;
    QString what;

    void add(const OpenReservation& entry)
    {
        credits += entry.cost;
        what = what.isEmpty() || what == entry.what ? entry.what : u"una operación"_s;
    }
};

// Whether `error` is a refusal of the service with this machine code.
bool isCode(const std::exception& error, QStringView code)
{
    const auto* refusal = dynamic_cast<const AccountError*>(&error);
    return refusal && refusal->code() == code;
}

using Refusal = ChargeResult::Refusal;

ChargeResult notReserved(const QString& reason, Refusal refusal = Refusal::other)
{
    ChargeResult result;
    result.state = ChargeResult::State::notReserved;
    result.error = reason;
    result.refusal = refusal;
    return result;
}

Refusal refusalOf(const std::exception& error)
{
    const auto* answer = dynamic_cast<const AccountError*>(&error);
    if (answer && answer->kind() == AccountError::Kind::unauthorized)
        return Refusal::signedOut;
    if (isCode(error, u"insufficient_credits"))
        return Refusal::tooFewCredits;
    return isUnreachable(error) ? Refusal::unreachable : Refusal::other;
}

}    // namespace

QString refundSentence(qint64 credits, const QString& what)
{
    return u"Se han devuelto %1 créditos: %2 no llegó a terminar."_s.arg(QString::number(credits),
                                                                         what);
}

QString lossSentence(qint64 credits, const QString& what)
{
    return u"No se han podido devolver %1 créditos de %2: el servicio no encuentra su reserva."_s
        .arg(QString::number(credits), what);
}

CreditJournal::CreditJournal(CreditAccount& account, PreferencesStore& preferences,
                             const QString& runs, Times times, QObject* parent)
    : QObject(parent), m_account(account), m_preferences(preferences), m_run(runs), m_times(times)
{
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, [this] { refundLeftOpen(); });
    connect(&account, &CreditAccount::changed, this, &CreditJournal::accountChanged);
    accountChanged();
}

CreditJournal::~CreditJournal()
{
    m_isEnding = true;
    for (const std::shared_ptr<Completion>& given : std::exchange(m_givingBack, {}))
        given->complete();
    m_refundedAll.complete();
}

void CreditJournal::accountChanged()
{
    const QString account = m_account.accountKey();
    if (std::exchange(m_accountKey, account) != account && !account.isEmpty())
        refundLeftOpen();
}

QCoro::Task<ChargeResult> CreditJournal::run(ChargedOperation operation)
{
    const QPointer<CreditJournal> self = this;
    const QString entry =
        operation.cost > 0 ? keyPrefixOf(m_account.accountKey()) + operation.requestId : QString();
    ChargeResult result;
    if (!entry.isEmpty()) {
        QCoro::Task<ChargeResult> reserving = reserve(entry, operation);
        result = co_await std::move(reserving);
        if (!self || result.state != ChargeResult::State::done)
            co_return std::move(result);
        reached("reserved");
    }
    bool isDone = false;
    QCoro::Task<bool> working = operation.work();
    try {
        isDone = co_await std::move(working);
    } catch (const std::exception& error) {
        result.error = readable(error);
    }
    if (!self) {
        result.state = ChargeResult::State::failed;
        co_return std::move(result);
    }
    if (isDone) {
        reached("worked");
        result.isRecorded = isRecorded(operation, entry);
        if (!entry.isEmpty())
            qCInfo(logWork) << "paid" << operation.cost << "credits; stored:" << result.isRecorded;
        reached("recorded");
        co_return std::move(result);
    }
    result.state = ChargeResult::State::failed;
    if (!entry.isEmpty()) {
        QCoro::Task<Refund> refunding = giveBack(entry);
        result.isRefundPending = isPending(co_await std::move(refunding));
    }
    co_return std::move(result);
}

QCoro::Task<ChargeResult> CreditJournal::reserve(QString key, ChargedOperation operation)
{
    const QPointer<CreditJournal> self = this;
    ChargeResult result;
    QCoro::Task<QString> freeing = refusalAfterEarlierCharge(key, operation.cost);
    const QString inUse = co_await std::move(freeing);
    if (!self || !inUse.isEmpty()) {
        const bool isOut = self && m_account.accountKey().isEmpty();
        result = notReserved(inUse, isOut ? Refusal::signedOut : Refusal::other);
        co_return std::move(result);
    }
    if (const std::optional<ChargeResult> refused = openEntry(key, operation)) {
        result = *refused;
        co_return std::move(result);
    }
    reached("opened");
    QCoro::Task<> reserving =
        m_account.reserveCloudCopyCredits(operation.cost, operation.requestId);
    try {
        co_await std::move(reserving);
    } catch (const std::exception& error) {
        result = notReserved(readable(error), refusalOf(error));
    }
    qCInfo(logWork) << "reserving" << operation.cost << "credits:"
                    << (result.state == ChargeResult::State::done ? "done" : "not reserved");
    if (!self)
        co_return std::move(result);
    if (result.state == ChargeResult::State::done) {
        noteReserved(key);
    } else if (result.refusal == Refusal::tooFewCredits) {
        endRefused(key);
    } else {
        // After any other error the service may have reserved the credits, or may still do so.
        noteLate(key);
        QCoro::Task<Refund> refunding = giveBack(key);
        result.isRefundPending = isPending(co_await std::move(refunding));
    }
    co_return std::move(result);
}

// An earlier charge of `key` may still be open: waits for its refund, or refunds it here if its
// price differs. Returns why the new charge is refused; empty if it may go on.
QCoro::Task<QString> CreditJournal::refusalAfterEarlierCharge(QString key, qint64 cost)
{
    const QPointer<CreditJournal> self = this;
    QString refusal;
    while (self && !m_isEnding && m_givingBack.contains(key)) {
        const std::shared_ptr<Completion> given = m_givingBack.value(key);
        co_await given->wait();
    }
    if (!self || m_isEnding || m_account.accountKey().isEmpty() ||
        !key.startsWith(keyPrefixOf(m_account.accountKey()))) {
        refusal = AccountError::unauthorized().text();
        co_return std::move(refusal);
    }
    const auto before = entryAt(key, m_preferences);
    if (before && before->cost != cost && isLeftOpen(key) && claim(key)) {
        QCoro::Task<Refund> refunding = giveBack(key);
        const Refund refund = co_await std::move(refunding);
        if (self && refund == Refund::lost)
            Q_EMIT lost(before->cost, before->what);
        if (isPending(refund))
            refusal = u"Hay un pago anterior de lo mismo por devolver. Prueba más tarde."_s;
    }
    co_return std::move(refusal);
}

// Writes the entry of `operation` under `key`. Replaces an entry that an earlier run left open
// under the same key. Returns the refusal if it could not be written; nothing on success.
std::optional<ChargeResult> CreditJournal::openEntry(const QString& key,
                                                     const ChargedOperation& operation)
{
    const OpenReservation opened{.requestId = operation.requestId,
                                 .account = m_account.accountKey(),
                                 .what = operation.what,
                                 .run = m_run.name(),
                                 .cost = operation.cost,
                                 .isReserved = false,
                                 .lateUntil = soon(),
                                 .lateBefore = 0,
                                 .covers = operation.covers,
                                 .deniedAt = 0};
    bool isOthers = false, isDue = true;
    const auto write = [&] {
        const auto before = entryAt(key, m_preferences);
        isOthers = (before && !isLeftOpen(key)) || isBeingPaid([&](const QString& render) {
                       return operation.covers.contains(render);
                   });
        isDue = !operation.isStillDue || operation.isStillDue();
        OpenReservation entry = opened;
        entry.lateBefore = before ? before->lateUntil : 0;
        return !isOthers && isDue && m_preferences.setValue(key, writtenEntry(entry));
    };
    const bool isOpen = !opened.run.isEmpty() &&
                        m_preferences.transaction(write, PreferencesStore::Durability::onDisk);
    if (isOthers) {
        return notReserved(u"Otra orden de Moltiva está pagando lo mismo. Espera a que termine."_s,
                           Refusal::beingPaid);
    }
    if (!isDue) {
        return notReserved(
            u"Otra orden de Moltiva ha pagado una parte mientras tanto. Vuelve a intentarlo."_s,
            Refusal::paidMeanwhile);
    }
    if (!isOpen) {
        return notReserved(u"No se pudo anotar el pago: %1."_s.arg(
            opened.run.isEmpty() ? u"no se puede escribir en la carpeta de datos"_s
                                 : m_preferences.reason()));
    }
    m_ownLeftOpen.remove(key);
    return {};
}

bool CreditJournal::isBeingPaid(const std::function<bool(const QString& render)>& matches) const
{
    const QStringList keys = m_preferences.keysBeginningWith(keyPrefixOf(m_account.accountKey()));
    return std::ranges::any_of(keys, [&](const QString& key) {
        const auto entry = entryAt(key, m_preferences);
        return entry && !isLeftOpen(key) && std::ranges::any_of(entry->covers, matches);
    });
}

template <typename Change>
bool CreditJournal::changeEntry(const QString& key, Change change)
{
    auto entry = entryAt(key, m_preferences);
    if (!entry)
        return false;
    change(*entry);
    return m_preferences.setValue(key, writtenEntry(*entry));
}

void CreditJournal::noteReserved(const QString& key)
{
    changeEntry(key, [](OpenReservation& entry) {
        entry.isReserved = true;
        entry.lateUntil = entry.lateBefore;
    });
}

// Removes the entry after a refusal for lack of credits, which reserved nothing. Leaves it open
// instead while the request of an entry that it replaced may still reach the service.
void CreditJournal::endRefused(const QString& key)
{
    const auto entry = entryAt(key, m_preferences);
    if (!entry || entry->lateBefore <= now())
        return strike(key);
    changeEntry(key, [](OpenReservation& kept) { kept.lateUntil = kept.lateBefore; });
    leaveOpen(key);
}

void CreditJournal::noteLate(const QString& key)
{
    changeEntry(key, [this](OpenReservation& entry) { entry.lateUntil = soon(); });
}

// Time in ms since the epoch by which a request sent now has reached the service or is lost.
double CreditJournal::soon() const
{
    return now() + double(m_times.underWay.count());
}

Strike CreditJournal::strikeOf(const ChargedOperation& operation, const QString& entry) const
{
    return [preferences = &m_preferences, entry, alsoStore = operation.alsoStore] {
        return (!alsoStore || alsoStore()) && (entry.isEmpty() || preferences->remove(entry));
    };
}

// Records the result. If it cannot be stored, the entry stays in the journal; if it never is
// stored, a later run refunds the credits.
bool CreditJournal::isRecorded(const ChargedOperation& operation, const QString& entry) const
{
    try {
        return operation.record(strikeOf(operation, entry));
    } catch (const std::exception&) {
        return false;    // out of memory, for instance
    }
}

QCoro::Task<CreditJournal::Refund> CreditJournal::giveBack(QString key)
{
    const QPointer<CreditJournal> self = this;
    const auto given = std::make_shared<Completion>();
    m_givingBack.insert(key, given);
    QCoro::Task<Refund> asking = askBack(key);
    const Refund refund = co_await std::move(asking);
    if (self && !m_isEnding) {
        m_givingBack.remove(key);
        given->complete();
    }
    co_return refund;
}

QCoro::Task<CreditJournal::Refund> CreditJournal::askBack(QString key)
{
    const QPointer<CreditJournal> self = this;
    const auto entry = entryAt(key, m_preferences);
    if (!entry || entry->account != m_account.accountKey()) {
        leaveOpen(key);
        co_return Refund::unreachable;
    }
    reached("refunding");
    const double asked = now();
    Refund refund = Refund::done;
    QCoro::Task<> refunding = m_account.refundCloudCopyCredits(entry->cost, entry->requestId);
    try {
        co_await std::move(refunding);
    } catch (const std::exception& error) {
        refund = refundAfter(error);
    }
    if (!self)
        co_return refund;
    if (refund == Refund::neverReserved && entry->isReserved)
        refund = afterDenial(key, *entry, asked);
    reached("refunded");
    qCInfo(logWork) << "refunding" << entry->cost
                    << "credits:" << (isPending(refund) ? "later" : "settled");
    // A reservation request that reaches the service after this refund needs another refund, so the
    // entry stays until `late`.
    const double late = std::min(entry->lateUntil, soon());    // the clock may have been set back
    if (isPending(refund)) {
        leaveOpen(key);
    } else if (asked < late) {
        changeEntry(key, [late](OpenReservation& kept) {
            kept.isReserved = false;
            kept.lateUntil = late;
        });
        leaveOpen(key);
    } else {
        strike(key);
    }
    co_return refund;
}

CreditJournal::Refund CreditJournal::refundAfter(const std::exception& error)
{
    if (isCode(error, u"credit_not_reserved"))
        return Refund::neverReserved;
    const auto* answer = dynamic_cast<const AccountError*>(&error);
    return answer && answer->kind() != AccountError::Kind::unauthorized ? Refund::refused
                                                                        : Refund::unreachable;
}

CreditJournal::Refund CreditJournal::afterDenial(const QString& key, const OpenReservation& entry,
                                                 double asked)
{
    // A `deniedAt` after `asked` means that the clock has been set back.
    const bool isFirst = entry.deniedAt <= 0 || entry.deniedAt > asked;
    if (isFirst)
        changeEntry(key, [asked](OpenReservation& kept) { kept.deniedAt = asked; });
    const bool isFinal = !isFirst && asked - entry.deniedAt >= double(m_times.underWay.count());
    return isFinal ? Refund::lost : Refund::denied;
}

bool CreditJournal::isPending(Refund refund)
{
    return refund == Refund::denied || refund == Refund::refused || refund == Refund::unreachable;
}

// Removes the entry. If that fails, the entry is refunded again later, which moves no credits.
void CreditJournal::strike(const QString& key)
{
    if (m_preferences.remove(key))
        m_ownLeftOpen.remove(key);
    else
        leaveOpen(key);
}

// Leaves the entry to a later attempt at the refund, by this process or another.
void CreditJournal::leaveOpen(const QString& key)
{
    changeEntry(key, [](OpenReservation& entry) { entry.run.clear(); });
    m_ownLeftOpen.insert(key);
    if (!m_isRefundingAll)
        m_retry.start(m_times.retry);
}

// Marks the entry as this run's before its refund. Two processes must not both refund it: if the
// user paid again in between, the second refund would take back that payment.
bool CreditJournal::claim(const QString& key)
{
    const bool isClaimed = m_preferences.transaction([&] {
        const QString run = m_run.name();
        return !run.isEmpty() && isLeftOpen(key) &&
               changeEntry(key, [&](OpenReservation& entry) { entry.run = run; });
    });
    if (isClaimed)
        m_ownLeftOpen.insert(key);
    return isClaimed;
}

// Whether no process works on the entry: its run has ended, or it is this run's and waits for a
// refund.
bool CreditJournal::isLeftOpen(const QString& key) const
{
    const auto entry = entryAt(key, m_preferences);
    if (!entry || m_givingBack.contains(key))
        return false;
    const bool isOwn = m_run.is(entry->run);
    return isOwn ? m_ownLeftOpen.contains(key) : !m_run.isGoingOn(entry->run);
}

QStringList CreditJournal::keysLeftOpen() const
{
    QStringList keys = m_preferences.keysBeginningWith(keyPrefixOf(m_account.accountKey()));
    keys.removeIf([this](const QString& key) { return !isLeftOpen(key); });
    return keys;
}

QCoro::Task<> CreditJournal::refundLeftOpen()
{
    if (m_isRefundingAll) {
        co_await m_refundedAll.wait();
    } else if (!m_account.accountKey().isEmpty()) {
        QCoro::Task<> refunding = refundAllLeftOpen();
        co_await std::move(refunding);
    }
}

QCoro::Task<> CreditJournal::refundAllLeftOpen()
{
    const QPointer<CreditJournal> self = this;
    m_isRefundingAll = true;
    m_refundedAll.reset();
    const QString account = m_account.accountKey();
    Total returned, gone;
    const QStringList keys = keysLeftOpen();
    // Ends the loop when the service does not answer: each further refund would wait for its whole
    // timeout.
    bool isReached = true;
    for (qsizetype i = 0; i < keys.size() && isReached && account == m_account.accountKey(); ++i) {
        const QString key = keys[i];
        const auto entry =
            isLeftOpen(key) && claim(key) ? entryAt(key, m_preferences) : std::nullopt;
        if (!entry)
            continue;
        const qint64 balance = m_account.balance();
        QCoro::Task<Refund> refunding = giveBack(key);
        const Refund refund = co_await std::move(refunding);
        if (!self)
            co_return;
        // The user is told only of a refund that moved credits; that of an unconfirmed or already
        // refunded reservation may move none.
        const bool isNews = entry->isReserved || m_account.balance() > balance;
        if (refund == Refund::done && isNews)
            returned.add(*entry);
        else if (refund == Refund::lost)
            gone.add(*entry);
        isReached = refund != Refund::unreachable;
    }
    m_isRefundingAll = false;
    if (account != m_account.accountKey())
        m_retry.start(0);    // the signed-in user has changed meanwhile
    else
        m_retry.start(keysLeftOpen().isEmpty() ? m_times.look : m_times.retry);
    if (returned.credits > 0)
        Q_EMIT refunded(returned.credits, returned.what);
    if (gone.credits > 0)
        Q_EMIT lost(gone.credits, gone.what);
    m_refundedAll.complete();
}

void CreditJournal::reached(const char* step) const
{
    if (stepReached)
        stepReached(step);
}
