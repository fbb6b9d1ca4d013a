#include "app/window/StatusLine.h"
#include "app/controls/Badge.h"
#include "app/controls/Button.h"
#include "tests/app/Events.h"

#include <QLocale>
#include <QScrollArea>
#include <QScrollBar>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

StatusEntry entryOf(StatusKind kind, const QString& sentence, const StatusLink& link = {})
{
    return {.kind = kind, .sentence = sentence, .link = link};
}

}    // namespace

TEST(StatusLine, fastStepsAreNotAllAnnouncedButTheOutcomeIs)
{
    StatusLine line;
    line.setStatus(entryOf(StatusKind::working, u"Paso 1"_s));
    line.setStatus(entryOf(StatusKind::working, u"Paso 2"_s));
    EXPECT_EQ(line.accessibleName(), u"Paso 1"_s);
    line.setStatus(entryOf(StatusKind::error, u"No se pudo"_s));
    EXPECT_EQ(line.accessibleName(), u"No se pudo"_s);
}

TEST(StatusLine, theStopButtonIsThereOnlyForWorkThatCanStop)
{
    StatusLine line;
    const auto* stop = line.findChild<IconButton*>();
    Activity activity{.kind = Activity::Kind::exporting, .done = 1, .total = 2, .stop = [] {}};
    line.setStatus(entryOf(StatusKind::working, u"Exportando"_s), activity);
    EXPECT_FALSE(stop->isHidden());
    activity.stop = {};
    line.setStatus(entryOf(StatusKind::working, u"Guardando"_s), activity);
    EXPECT_TRUE(stop->isHidden());
}

TEST(StatusLine, aLinkFollowsTheSentenceAndGoesWithIt)
{
    StatusLine line;
    line.resize(600, 28);
    line.show();
    line.activateWindow();
    settle();
    QWidget* link = line.focusOrder().first();
    int pressed = 0, left = 0;
    QObject::connect(&line, &StatusLine::linkRequested, [&] { ++pressed; });
    QObject::connect(&line, &StatusLine::leaveRequested, [&] { ++left; });
    const QString sentence = u"Exportado: foto.png"_s;
    for (const QString& each : {sentence, sentence.repeated(30)}) {
        line.setStatus(entryOf(StatusKind::done, each, {.folder = u"/tmp"_s}));
        EXPECT_TRUE(link->isVisible());
        EXPECT_TRUE(line.rect().contains(link->geometry()));
    }
    EXPECT_EQ(link->accessibleName(), u"Abrir carpeta"_s);
    link->setFocus(Qt::TabFocusReason);
    press(*link, link->rect().center());
    EXPECT_EQ(pressed, 1);
    line.setStatus(entryOf(StatusKind::note, u"Cambio deshecho."_s));
    EXPECT_FALSE(link->isVisible());
    EXPECT_EQ(left, 1) << "the keyboard would act on whatever comes next";
}

TEST(StatusLine, actionsFollowTheSentenceAndTextsThatWaitAreTold)
{
    StatusLine line;
    line.resize(900, 28);
    line.show();
    settle();
    QList<StatusAction> done;
    QObject::connect(&line, &StatusLine::actionRequested,
                     [&](StatusAction action) { done.append(action); });
    const QList<StatusAction> offered{StatusAction::retryCopy, StatusAction::recoverTexts};
    const QString sentence = u"Textos generados para 14 imagen(es)."_s;
    line.setStatus(entryOf(StatusKind::warning, sentence, {.actions = offered}));
    line.setWaiting(1, u"Se aplicarán cuando termines de escribir."_s);
    int end = 0;
    for (const QString& name : {u"1 texto espera"_s, u"Reintentar"_s, u"Recuperar mis textos"_s}) {
        const auto* part = named<QWidget>(&line, name);
        ASSERT_TRUE(part && part->isVisible()) << qPrintable(name);
        EXPECT_GT(part->x(), end);
        end = part->geometry().right();
        EXPECT_TRUE(line.rect().contains(part->geometry()));
    }
    for (QWidget* stop : line.focusOrder()) {
        if (stop->isVisible())
            press(*stop, stop->rect().center());
    }
    EXPECT_EQ(done, offered);
    line.setWaiting(0, {});
    line.setStatus(entryOf(StatusKind::note, sentence));
    EXPECT_FALSE(line.findChild<Badge*>()->isVisible());
}

// Shows fifty sentences, which need more height than the window has.
TEST(StatusLine, theHistoryOpensAtTheNewestSentenceAndTellsEachTime)
{
    QWidget window;
    window.resize(900, 400);
    StatusLine line(&window);
    line.setGeometry(0, 372, 900, 28);
    window.show();
    settle();
    QList<StatusEntry> history;
    const QDateTime now = QDateTime::currentDateTime();
    for (int i = 0; i < 50; ++i) {
        history.append(entryOf(StatusKind::done, u"Frase %1."_s.arg(i)));
        history.last().time = now.addDays(i < 49 ? -2 : 0);
    }
    line.showHistory(history);
    settle();
    const auto* area = line.findChild<QScrollArea*>();
    ASSERT_TRUE(area);
    EXPECT_LT(area->window()->height(), window.height());
    EXPECT_GT(area->verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(area->verticalScrollBar()->value(), area->verticalScrollBar()->maximum());
    const QStringList spoken = area->accessibleName().split(u'\n');
    const QString day = QLocale(QLocale::Spanish).toString(now.addDays(-2), u"d MMM HH:mm"_s);
    EXPECT_EQ(spoken.first(), day + u" Frase 0."_s);
    EXPECT_EQ(spoken.last(), now.toString(u"HH:mm"_s) + u" Frase 49."_s);
}
