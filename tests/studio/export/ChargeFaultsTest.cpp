#include "tests/studio/FaultyProxy.h"
#include "tests/studio/PayingStudio.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

// Tests faults between the program and the service at each step of a charge. No credit may be lost
// or charged twice, and the status must tell what really happened.

namespace {

constexpr auto reserveTarget = "/api/credits/social-copy/reserve";
constexpr auto refundTarget = "/api/credits/social-copy/refund";

class ChargeFaultsTest : public ::testing::TestWithParam<Fault> {
protected:
    void start()
    {
        studio.reset();
        constexpr std::chrono::milliseconds limit(300);
        CreditJournal::Times times = PayingStudio::quickTimes;
        if (GetParam() == Fault::lateRequest)
            times.underWay = 4 * FaultyProxy::delay;
        studio = std::make_unique<PayingStudio>(world, proxy.url(), PayingStudio::smallSize,
                                                RequestLimits{limit, limit}, times);
    }
    void signInAndLoad()
    {
        start();
        studio->signIn();
        studio->load({world.photo(u"a.png"_s)});
    }
    // Ends the fault, and waits until the journal has refunded all open entries.
    void recover()
    {
        proxy.heal();
        if (GetParam() == Fault::lateRequest)
            turnUntil([] { return false; }, int(FaultyProxy::delay.count()) + 100);
        if (!awaited(studio->account.refreshSilently()))
            studio->signIn();
        EXPECT_TRUE(turnUntil([&] { return entries().isEmpty(); }));
    }
    QStringList entries() const
    {
        return studio->preferences.keysBeginningWith(u"moltiva.creditReservation."_s);
    }

    PayingWorld world;
    FaultyProxy proxy{world.service.port()};
    std::unique_ptr<PayingStudio> studio;
};

}    // namespace

TEST_P(ChargeFaultsTest, AReservationThatGoesWrongCostsNothing)
{
    signInAndLoad();
    proxy.spoil(reserveTarget, GetParam());
    const QString told = studio->exportCurrent();
    EXPECT_GE(proxy.spoiled(), 1);
    const bool isSignedOut =
        GetParam() == Fault::signedOutBefore || GetParam() == Fault::signedOutAfter;
    EXPECT_EQ(told.contains(u"Necesitas iniciar sesión."_s), isSignedOut) << told.toStdString();
    // With these faults, the refund of the failed reservation fails too.
    const bool isPending = isSignedOut || GetParam() == Fault::noConnection;
    EXPECT_EQ(told.endsWith(u" Si se habían descontado, los 50 créditos se devolverán al recuperar "
                            "la conexión."_s),
              isPending)
        << told.toStdString();
    EXPECT_FALSE(told.contains(u"Exportad"_s) || told.contains(u"Se han devuelto"_s));
    EXPECT_TRUE(world.exported().isEmpty());
    recover();
    EXPECT_EQ(world.charged(), 0);
    EXPECT_EQ(studio->prices().first, 50);
    EXPECT_EQ(studio->exportCurrent(), u"Exportado: una.png"_s);
    EXPECT_EQ(world.charged(), 50);
    EXPECT_EQ(studio->account.account().balance, world.balance());
}

TEST_P(ChargeFaultsTest, ARefundThatGoesWrongComesLater)
{
    signInAndLoad();
    proxy.spoil(refundTarget, GetParam());
    EXPECT_EQ(studio->exportCurrent(u"no existe/a.png"_s),
              u"No se pudo guardar el archivo. Los 50 créditos se devolverán al recuperar la "
              "conexión."_s);
    recover();
    EXPECT_EQ(world.charged(), 0);
    EXPECT_TRUE(turnUntil([&] {
        return studio->session.status() ==
               u"Se han devuelto 50 créditos: una exportación no llegó a terminar."_s;
    })) << studio->session.status().toStdString();

    // If this run ends before the refund, the next run refunds the charge.
    proxy.spoil(refundTarget, GetParam());
    studio->exportCurrent(u"no existe/a.png"_s);
    EXPECT_EQ(entries().size(), 1);
    proxy.heal();
    start();
    recover();
    EXPECT_EQ(world.charged(), 0);
    EXPECT_EQ(studio->prices().first, 50);
}

INSTANTIATE_TEST_SUITE_P(AtEachStep, ChargeFaultsTest,
                         ::testing::Values(Fault::noConnection, Fault::resetBefore,
                                           Fault::resetAfter, Fault::errorBefore, Fault::errorAfter,
                                           Fault::signedOutBefore, Fault::signedOutAfter,
                                           Fault::lateAnswer, Fault::lateRequest));
