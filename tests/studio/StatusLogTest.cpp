#include "studio/StatusLog.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using Kind = Activity::Kind;

namespace {

class StatusLogTest : public ::testing::Test {
protected:
    QString shown() const { return log.current().sentence; }
    // Ends the turn of the event loop, and lets the time pass in which a message must stay
    // readable.
    void later()
    {
        QGuiApplication::processEvents();
        clock += std::chrono::seconds(4);
    }
    QStringList kept() const
    {
        QStringList sentences;
        for (const StatusEntry& entry : log.entries())
            sentences.append(entry.sentence);
        return sentences;
    }

    QDateTime now{QDate(2026, 11, 22), QTime(10, 0)};
    std::chrono::steady_clock::time_point clock;
    StatusLog log{[this] { return clock; }, [this] { return now; }};
};

}    // namespace

TEST_F(StatusLogTest, whatStoodBeforeAPassingStepIsShownAgain)
{
    log.tell(u"Sesión restaurada."_s, StatusKind::done);
    log.tellStep(Kind::exporting, u"Preparando 1 de 2"_s);
    log.tellStep(Kind::account, u"Conectando…"_s);
    EXPECT_EQ(shown(), u"Conectando…"_s);
    log.endSteps(Kind::account);
    EXPECT_EQ(shown(), u"Preparando 1 de 2"_s);
    log.tellStep(Kind::exporting, u"Preparando 2 de 2"_s);
    later();
    log.outdate();
    EXPECT_EQ(shown(), u"Preparando 2 de 2"_s) << "an edit says nothing of what is under way";
    int changes = 0;
    QObject::connect(&log, &StatusLog::changed, [&] { ++changes; });
    log.endSteps(Kind::exporting);
    EXPECT_EQ(shown(), QString()) << "outdated by the edit";
    EXPECT_EQ(changes, 1);

    log.tellStep(Kind::exporting, u"Guardando 1 de 1"_s);
    log.tell(u"Exportado."_s, StatusKind::done);
    changes = 0;
    log.endSteps(Kind::exporting);
    EXPECT_EQ(shown(), u"Exportado."_s);
    EXPECT_EQ(changes, 0) << "the outcome would be announced twice";
    EXPECT_EQ(kept(), (QStringList{u"Sesión restaurada."_s, u"Conectando…"_s,
                                   u"Preparando 2 de 2"_s, u"Guardando 1 de 1"_s, u"Exportado."_s}))
        << "the steps of an activity are one entry";
}

TEST_F(StatusLogTest, anEditOutdatesWhatCanHaveBeenRead)
{
    log.tell(u"Estilo pegado."_s, StatusKind::done);
    log.outdate();
    EXPECT_EQ(shown(), u"Estilo pegado."_s) << "of the same turn";
    later();
    log.outdate();
    EXPECT_EQ(shown(), QString());

    log.tell(u"No se pudo guardar."_s, StatusKind::error);
    QGuiApplication::processEvents();
    EXPECT_TRUE(log.isProblemUnread());
    log.outdate();
    EXPECT_EQ(shown(), u"No se pudo guardar."_s);
    later();
    EXPECT_FALSE(log.isProblemUnread());
    log.outdate();
    EXPECT_EQ(shown(), QString());

    log.tell(u"1 no se ha podido leer."_s, StatusKind::warning, {.details = {u"x.jpg"_s}});
    later();
    log.outdate();
    EXPECT_EQ(log.current().link.details, QStringList{u"x.jpg"_s}) << "told nowhere else";
    log.tell({});
    EXPECT_EQ(shown(), QString());
}

TEST_F(StatusLogTest, keepsTheLastFiftyWithTheirTimesAndARepeatedOneOnce)
{
    for (int i = 1; i <= 52; ++i) {
        now = now.addSecs(60);
        log.tell(u"Frase %1"_s.arg(i));
        log.tell(u"Frase %1"_s.arg(i));
    }
    ASSERT_EQ(log.entries().size(), 50);
    EXPECT_EQ(log.entries().first().sentence, u"Frase 3"_s);
    EXPECT_EQ(log.entries().first().time.time(), QTime(10, 3));
}

TEST(Activities, theLastKindIsTheForemostAndMayEndWhileItIsStopped)
{
    Activities activities;
    EXPECT_EQ(activities.foremost(), nullptr);
    activities.set({.kind = Kind::exporting,
                    .done = 1,
                    .total = 4,
                    .stop =
                        [&, said = QString(100, u'x')] {
                            activities.end(Kind::exporting);
                            EXPECT_EQ(said.size(), 100);
                        },
                    .delaysClosing = true});
    activities.set({.kind = Kind::importing, .total = 0});
    EXPECT_EQ(activities.foremost()->kind, Kind::exporting);
    EXPECT_EQ(activities.foremost()->fraction(), 0.25);
    EXPECT_EQ(activities.delayingClosing(), activities.foremost());
    activities.stop(Kind::importing);    // does nothing: this activity has no stop function
    activities.stop(Kind::exporting);
    EXPECT_EQ(activities.foremost()->kind, Kind::importing);
    EXPECT_EQ(activities.foremost()->fraction(), 0.0);
    EXPECT_EQ(activities.delayingClosing(), nullptr);
    activities.set({.kind = Kind::importing});
    EXPECT_EQ(activities.foremost()->fraction(), std::nullopt);
}
