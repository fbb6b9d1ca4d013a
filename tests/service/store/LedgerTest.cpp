#include "service/store/Ledger.h"
#include "service/Http.h"
#include "service/store/Accounts.h"
#include "service/store/Database.h"
#include "service/store/Schema.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <thread>

using namespace Qt::StringLiterals;

namespace {

class LedgerTest : public testing::Test {
protected:
    LedgerTest() : m_database(m_folder.filePath(u"libro.sqlite"_s), &bringUpToDate)
    {
        Transaction transaction(m_database);
        m_account = addAccount(transaction, u"ana@ejemplo.es"_s, {}, 1).id;
        transaction.commit();
    }

    // Runs `operation`. Returns "ok" or the refusal's code, and then the balance: "ok 9990".
    template <typename Operation>
    std::string after(Operation operation, int cost, const QString& requestId)
    {
        std::string outcome = "ok";
        try {
            Transaction transaction(m_database);
            operation(transaction, m_account, cost, requestId, 1);
            transaction.commit();
        } catch (const Refusal& refusal) {
            outcome = refusal.code();
        }
        Transaction transaction(m_database);
        return outcome + " " + std::to_string(balance(transaction, m_account));
    }

    QTemporaryDir m_folder;
    Database m_database;
    qint64 m_account = 0;
};

}    // namespace

TEST_F(LedgerTest, chargesOnceUntilItIsGivenBackAndGivesBackOnce)
{
    EXPECT_EQ(after(refundCredits, 10, u"a"_s), "credit_not_reserved 10000");
    EXPECT_EQ(after(reserveCredits, 10, u"a"_s), "ok 9990");
    EXPECT_EQ(after(reserveCredits, 10, u"a"_s), "ok 9990");
    EXPECT_EQ(after(reserveCredits, 11, u"a"_s), "invalid_credit_request 9990");
    EXPECT_EQ(after(refundCredits, 11, u"a"_s), "credit_not_reserved 9990");
    EXPECT_EQ(after(refundCredits, 10, u"b"_s), "credit_not_reserved 9990");
    EXPECT_EQ(after(refundCredits, 10, u"a"_s), "ok 10000");
    EXPECT_EQ(after(refundCredits, 10, u"a"_s), "ok 10000");
    EXPECT_EQ(after(reserveCredits, 20, u"a"_s), "ok 9980") << "open again, at another cost";
    EXPECT_EQ(after(refundCredits, 10, u"a"_s), "credit_not_reserved 9980");
    EXPECT_EQ(after(refundCredits, 20, u"a"_s), "ok 10000");
    EXPECT_EQ(after(reserveCredits, 10'000, u"b"_s), "ok 0");
    EXPECT_EQ(after(reserveCredits, 1, u"c"_s), "insufficient_credits 0");
}

TEST_F(LedgerTest, refusesWhatIsNoCostOrNoIdentifier)
{
    for (const int cost : {0, -5, 1'000'001, INT_MIN})
        EXPECT_EQ(after(reserveCredits, cost, u"a"_s), "invalid_credit_request 10000") << cost;
    for (const QString& id : {QString(), QString(201, u'a'), u"a\nb"_s, QString(QChar(0xD800))}) {
        EXPECT_EQ(after(reserveCredits, 1, id), "invalid_credit_request 10000");
        EXPECT_EQ(after(refundCredits, 1, id), "invalid_credit_request 10000");
    }
    EXPECT_EQ(after(reserveCredits, 1, QString(200, u'ñ')), "ok 9999");
}

TEST_F(LedgerTest, entriesAreNeitherChangedNorDroppedNorWrong)
{
    for (const char* statement :
         {"UPDATE ledger_entry SET note = 'x'", "DELETE FROM ledger_entry",
          "INSERT INTO ledger_entry (account, kind, amount, balance, note, created)"
          " VALUES (1, 'purchase', 5, 6, '', 1)"}) {
        Transaction transaction(m_database);
        EXPECT_THROW(transaction.run(statement), DatabaseError) << statement;
    }
    Transaction transaction(m_database);
    EXPECT_TRUE(ledgerAddsUp(transaction));
    // Changes an entry without the triggers, as another program could.
    transaction.run("DROP TRIGGER ledger_keeps");
    transaction.run("UPDATE ledger_entry SET amount = 7");
    EXPECT_FALSE(ledgerAddsUp(transaction));
}

TEST_F(LedgerTest, balancesGrowBeyondWhatAnOlderFileAllowed)
{
    EXPECT_EQ(after(reserveCredits, 10, u"a"_s), "ok 9990");
    {
        Transaction transaction(m_database);
        transaction.run("PRAGMA writable_schema = ON");
        transaction.run("UPDATE sqlite_schema SET sql = replace(sql, 'balance >= 0',"
                        " 'balance BETWEEN 0 AND 2000000000')");
        transaction.run("DROP TABLE template_version");
        transaction.run("DROP TABLE template");
        transaction.run("PRAGMA user_version = 2");
        transaction.commit();
    }
    Database database(m_folder.filePath(u"libro.sqlite"_s), &bringUpToDate);
    Transaction transaction(database);
    transaction.run("INSERT INTO ledger_entry (account, kind, amount, balance, note, created)"
                    " VALUES (1, 'purchase', 3000000000, 3000009990, '', 1)");
    refundCredits(transaction, m_account, 10, u"a"_s, 1);
    EXPECT_EQ(balance(transaction, m_account), 3'000'010'000);
    EXPECT_THROW(addPurchase(transaction, m_account, 1, {}, 1);
                 transaction.run("DELETE FROM ledger_entry"), DatabaseError)
        << "its rules came along";
}

TEST_F(LedgerTest, manyAtOnceNeverOverdraw)
{
    std::atomic<int> charged = 0;
    std::vector<std::thread> clients;
    clients.reserve(16);
    for (int client = 0; client < 16; ++client) {
        clients.emplace_back([&, client] {
            for (int i = 0; i < 10; ++i)
                charged +=
                    after(reserveCredits, 100, u"%1 %2"_s.arg(client).arg(i)).starts_with("ok");
        });
    }
    for (std::thread& client : clients)
        client.join();
    EXPECT_EQ(charged, 100);
    EXPECT_EQ(after(reserveCredits, 1, u"más"_s), "insufficient_credits 0");
}
