#include "account/CreditJournal.h"

#include "account/AccountAPI.h"
#include "account/AccountError.h"
#include "account/AccountSession.h"
#include "platform/PreferencesStore.h"
#include "tests/FullDisk.h"
#include "tests/account/Awaited.h"
#include "tests/account/ScriptedServer.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

// Tests of the requests that the journal sends to the account service, also when several runs of
// the program share one preferences file. Tests with a real ledger are in tests/studio.

namespace {

// A service that knows one reservation.
class Bank : public ScriptedServer {
public:
    Bank()
        : ScriptedServer([this](const Request& request) {
              if (request.target == "/api/auth/me")
                  return reply(200, R"({"balance":)" + QByteArray::number(balance) +
                                        R"(,"profile":{"id":")" + user +
                                        R"(","email":"ana@ejemplo.es"}})");
              if (!request.target.contains("/credits/"))
                  return reply(200, "{}");
              log.append(request.target.mid(request.target.lastIndexOf('/') + 1));
              const bool isReserve = log.last() == "reserve";
              if (!isReserve && (!wasReserved || refusesRefunds))
                  return reply(409, R"({"error":"credit_not_reserved"})");
              wasReserved = true;
              balance = isReserve ? 950 : 1000;
              return reply(200, R"({"ok":true,"balance":)" + QByteArray::number(balance) +
                                    R"(,"cost":50})");
          })
    {
    }
    QByteArray user = "1";
    int balance = 1000;
    bool wasReserved = false;
    bool refusesRefunds = false;    // refuses refunds, as if it had lost its reservation
    QByteArrayList log;             // the requests so far: "reserve", "refund"
};

bool turnUntil(const std::function<bool()>& isDone)
{
    QElapsedTimer watch;
    for (watch.start(); !isDone() && watch.elapsed() < 10'000;)
        QGuiApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 20);
    return isDone();
}

struct Program {
    explicit Program(const Bank& bank, const QString& folder, CreditJournal::Times times = {},
                     RequestLimits limits = {})
        : preferences(folder + u"/p.sqlite"_s),
          api(bank.configuration(), preferences, nullptr, limits),
          account(api, {.openInBrowser = {}}),
          journal(account, preferences, folder + u"/runs"_s, times)
    {
        QObject::connect(&journal, &CreditJournal::refunded, &journal,
                         [this](qint64 credits) { returned += credits; });
        QObject::connect(&journal, &CreditJournal::lost, &journal,
                         [this](qint64 credits) { gone += credits; });
        awaited(account.refresh());
        awaited(journal.refundLeftOpen());
    }
    ChargeResult pay(const std::function<QCoro::Task<bool>()>& work)
    {
        return awaited(journal.run(operation(work)));
    }
    ChargedOperation operation(const std::function<QCoro::Task<bool>()>& work)
    {
        return {.requestId = u"id"_s,
                .cost = 50,
                .what = u"una prueba"_s,
                .covers = {u"a"_s, u"b"_s},
                .isStillDue = {},
                .work = work,
                .record = [this](const Strike& strike) { return preferences.transaction(strike); }};
    }
    QStringList entries() const
    {
        return preferences.keysBeginningWith(u"moltiva.creditReservation."_s);
    }

    PreferencesStore preferences;
    AccountAPI api;
    AccountSession account;
    CreditJournal journal;
    qint64 returned = 0, gone = 0;
};

QCoro::Task<bool> succeed()
{
    co_return true;
}

QCoro::Task<bool> fail()
{
    throw std::bad_alloc();
    co_return false;
}

class CreditJournalTest : public ::testing::Test {
protected:
    // Leaves an open entry, as a program does that is killed while it works.
    void leaveOpen()
    {
        Program doomed(bank, folder.path());
        doomed.pay([&] {
            doomed.preferences.setValue(u"copy"_s,
                                        *doomed.preferences.value(doomed.entries().value(0)));
            key = doomed.entries().value(0);
            return succeed();
        });
        doomed.preferences.setValue(key, *doomed.preferences.value(u"copy"_s));
    }

    Bank bank;
    QTemporaryDir folder;
    QString key;
};

}    // namespace

TEST_F(CreditJournalTest, AnEntryIsThereFromBeforeTheReservationUntilItsEnd)
{
    Program program(bank, folder.path());
    QByteArrayList steps;
    program.journal.stepReached = [&](const char* step) {
        steps.append(step + QByteArray::number(program.entries().size()) +
                     QByteArray::number(bank.log.size()));
    };
    EXPECT_EQ(program.pay(&succeed).state, ChargeResult::State::done);
    EXPECT_EQ(steps, QByteArrayList({"opened10", "reserved11", "worked11", "recorded01"}));
    steps.clear();
    EXPECT_EQ(program.pay(&fail).state, ChargeResult::State::failed);
    EXPECT_EQ(steps, QByteArrayList({"opened11", "reserved12", "refunding12", "refunded13"}));
    EXPECT_TRUE(program.entries().isEmpty());
    EXPECT_EQ(bank.log, QByteArrayList({"reserve", "reserve", "refund"}));
}

TEST_F(CreditJournalTest, AFailureIsHandedOnAndMoreIsStoredOnlyWithTheEndOfItsEntry)
{
    Program program(bank, folder.path());
    const ChargeResult failed = program.pay([]() -> QCoro::Task<bool> {
        throw AccountError::message(u"La red no responde."_s);
        co_return false;
    });
    EXPECT_EQ(failed.state, ChargeResult::State::failed);
    EXPECT_EQ(failed.error, u"La red no responde."_s);

    ChargedOperation writing = program.operation(&succeed);
    bool isRoom = false;
    Strike again;
    writing.alsoStore = [&] { return program.preferences.setValue(u"texto"_s, "Otoño") && isRoom; };
    writing.record = [&](const Strike& strike) {
        again = strike;
        return program.preferences.transaction(strike);
    };
    EXPECT_FALSE(awaited(program.journal.run(writing)).isRecorded);
    EXPECT_FALSE(program.preferences.contains(u"texto"_s));
    EXPECT_EQ(program.entries().size(), 1);
    isRoom = true;
    EXPECT_TRUE(program.preferences.transaction(again));
    EXPECT_TRUE(program.preferences.contains(u"texto"_s) && program.entries().isEmpty());
}

TEST_F(CreditJournalTest, WhatADeadProgramLeftIsGivenBackOnceAndToItsOwner)
{
    leaveOpen();
    bank.user = "2";
    {
        Program another(bank, folder.path());
        EXPECT_EQ(another.returned, 0) << "it was somebody else's";
    }
    bank.user = "1";
    Program program(bank, folder.path());
    EXPECT_EQ(program.returned, 50);
    EXPECT_TRUE(program.entries().isEmpty());
    Program again(bank, folder.path());
    EXPECT_EQ(again.returned, 0);
    EXPECT_EQ(bank.log, QByteArrayList({"reserve", "refund"}));
}

TEST_F(CreditJournalTest, ALiveProgramIsLeftAlone)
{
    Program one(bank, folder.path());
    Program other(bank, folder.path());
    const ChargeResult paid = one.pay([&] {
        awaited(other.journal.refundLeftOpen());
        EXPECT_EQ(bank.log, QByteArrayList{"reserve"});
        const ChargeResult refused = other.pay(&succeed);
        EXPECT_EQ(refused.state, ChargeResult::State::notReserved);
        EXPECT_EQ(refused.error,
                  u"Otra orden de Moltiva está pagando lo mismo. Espera a que termine."_s);
        ChargedOperation part = other.operation(&succeed);
        part.requestId = u"de otra cosa más"_s;
        part.covers = {u"b"_s, u"c"_s};
        EXPECT_EQ(awaited(other.journal.run(part)).refusal, ChargeResult::Refusal::beingPaid);
        const auto isPaying = [&](const QString& render) {
            return other.journal.isBeingPaid([&](const QString& each) { return each == render; });
        };
        EXPECT_TRUE(isPaying(u"b"_s));
        EXPECT_FALSE(isPaying(u"c"_s));
        return succeed();
    });
    EXPECT_EQ(paid.state, ChargeResult::State::done);
    EXPECT_EQ(bank.log, QByteArrayList{"reserve"});
    EXPECT_TRUE(one.entries().isEmpty());
}

TEST_F(CreditJournalTest, TheSameAgainTakesTheOpenEntryOver)
{
    Program program(bank, folder.path());
    leaveOpen();    // after `program` has looked for open entries
    EXPECT_EQ(program.pay(&succeed).state, ChargeResult::State::done);
    EXPECT_TRUE(program.entries().isEmpty());
    awaited(program.journal.refundLeftOpen());
    EXPECT_EQ(bank.log, QByteArrayList({"reserve", "reserve"})) << "which is one to the service";
}

TEST_F(CreditJournalTest, WhatIsBeingGivenBackIsNotPaidMeanwhile)
{
    Program program(bank, folder.path());
    leaveOpen();
    bank.hold("/api/credits/social-copy/refund");
    program.journal.refundLeftOpen();
    bool isPaid = false;
    auto paying = [](Program& by, bool& done) -> QCoro::Task<> {
        const ChargedOperation operation = by.operation(&succeed);
        QCoro::Task<ChargeResult> running = by.journal.run(operation);
        const ChargeResult result = co_await std::move(running);
        done = result.state == ChargeResult::State::done;
    }(program, isPaid);
    QElapsedTimer watch;
    watch.start();
    turnUntil([&] { return watch.elapsed() > 100; });
    EXPECT_EQ(bank.log, QByteArrayList{"reserve"});
    bank.release();
    awaited(std::move(paying));
    EXPECT_TRUE(isPaid);
    EXPECT_EQ(bank.log, QByteArrayList({"reserve", "refund", "reserve"}));
}

// The first charge makes the Bank confirm any later refund, even one that comes before its
// reservation.
TEST_F(CreditJournalTest, AReservationThatComesLateIsGivenBackWhenItHasCome)
{
    using namespace std::chrono_literals;
    Program program(bank, folder.path(), {.retry = 50ms, .look = 1h, .underWay = 2s},
                    {.withoutBody = 300ms, .withBody = 300ms});
    program.pay(&fail);
    EXPECT_TRUE(program.entries().isEmpty());
    bank.hold("/api/credits/social-copy/reserve");
    EXPECT_EQ(program.pay(&succeed).state, ChargeResult::State::notReserved);
    EXPECT_EQ(program.entries().size(), 1);
    bank.balance = 950;    // the late reservation takes effect
    EXPECT_TRUE(turnUntil([&] { return bank.balance == 1000; }));
    EXPECT_TRUE(turnUntil([&] { return program.entries().isEmpty(); }));
}

TEST_F(CreditJournalTest, AReservationThatWasConfirmedIsNotGivenUpForOneAnswer)
{
    using namespace std::chrono_literals;
    for (const bool isForEver : {false, true}) {
        Program program(bank, folder.path(), {.retry = 50ms, .look = 1h, .underWay = 400ms});
        bank.refusesRefunds = true;
        const ChargeResult failed = program.pay(&fail);
        EXPECT_EQ(failed.state, ChargeResult::State::failed);
        EXPECT_TRUE(failed.isRefundPending);
        EXPECT_EQ(program.entries().size(), 1);
        bank.refusesRefunds = isForEver;
        EXPECT_TRUE(turnUntil([&] { return program.entries().isEmpty(); }));
        EXPECT_EQ(program.returned, isForEver ? 0 : 50);
        EXPECT_EQ(program.gone, isForEver ? 50 : 0);
    }
    EXPECT_GE(bank.log.count("refund"), 4);
}

TEST_F(CreditJournalTest, AnotherPriceIsAnotherReservation)
{
    Program program(bank, folder.path());
    leaveOpen();
    ChargedOperation dearer = program.operation(&succeed);
    dearer.cost = 60;
    EXPECT_EQ(awaited(program.journal.run(dearer)).state, ChargeResult::State::done);
    EXPECT_EQ(bank.log, QByteArrayList({"reserve", "refund", "reserve"}));
}

TEST_F(CreditJournalTest, WhatWasPaidMeanwhileIsNotPaidAgain)
{
    Program program(bank, folder.path());
    ChargedOperation late = program.operation(&succeed);
    late.isStillDue = [] { return false; };
    EXPECT_EQ(awaited(program.journal.run(late)).error,
              u"Otra orden de Moltiva ha pagado una parte mientras tanto. Vuelve a intentarlo."_s);
    EXPECT_TRUE(bank.log.isEmpty() && program.entries().isEmpty());
}

TEST_F(CreditJournalTest, AFullDiskAndEntriesThatDoNotReadChargeNothingAndBlockNothing)
{
    using namespace std::chrono_literals;
    Program program(bank, folder.path(), {.retry = 50ms});
    leaveOpen();
    program.preferences.setValue(key, "{\"run\":7}");
    program.preferences.setValue(key + u'2', "[");
    awaited(program.journal.refundLeftOpen());
    EXPECT_EQ(program.pay(&succeed).state, ChargeResult::State::done);
    bank.log.clear();

    refuseWrites(true);
    EXPECT_EQ(program.pay(&succeed).error,
              u"No se pudo anotar el pago: no se puede escribir en «%1»."_s.arg(folder.path()));
    EXPECT_TRUE(bank.log.isEmpty());
    refuseWrites(false);
    // The disk fills up during the work: the credits are refunded now, the entry is removed later.
    const ChargeResult failed = program.pay([&] {
        refuseWrites(true);
        return fail();
    });
    EXPECT_FALSE(failed.isRefundPending);
    EXPECT_EQ(program.entries().size(), 2) << "with the one that does not read";
    refuseWrites(false);
    EXPECT_TRUE(turnUntil([&] { return program.entries().size() == 1; }));
    EXPECT_EQ(program.pay(&succeed).state, ChargeResult::State::done);
}
