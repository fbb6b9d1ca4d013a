#include "app/copy/ComposeBar.h"
#include "app/controls/fields/SegmentedControl.h"
#include "app/copy/RunPill.h"
#include "tests/app/Events.h"

#include <QAccessible>
#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace {

struct Bar : ComposeBar {
    explicit Bar(int width = 855)
    {
        resize(width, 52);
        state.credits = {0, 10};
        state.offer = {.images = 1, .mostImages = 24};
        connect(this, &ComposeBar::modeChosen, [this] { ++modes; });
        connect(this, &ComposeBar::generateRequested, [this] { ++generated; });
        connect(this, &ComposeBar::cancelRequested, [this] { ++cancelled; });
        setState(state);
        show();
        activateWindow();
        settle();
    }
    void change(const std::function<void(ComposeState&)>& edit)
    {
        edit(state);
        setState(state);
    }
    GenerateButton* generate() { return findChild<GenerateButton*>(); }
    SegmentedControl* segments() { return findChild<SegmentedControl*>(); }
    RunPill* pill() { return findChild<RunPill*>(); }
    QWidget* cancel() { return focusOrder().last(); }

    ComposeState state;
    int modes = 0, generated = 0, cancelled = 0;
};

const auto inCloud = [](ComposeState& state) {
    state.mode = CopyGenerationMode::cloud;
    state.offer.cost = Cost{.credits = 10 * state.offer.images, .balance = 4280, .most = 240};
};
const auto underWay = [](ComposeState& state) {
    state.run = ComposeRun{.position = 8, .finished = 7, .total = 16};
};

}    // namespace

TEST(ComposeBar, nothingMovesWhenTheSelectionChanges)
{
    for (const bool isCloud : {false, true}) {
        Bar bar;
        if (isCloud)
            bar.change(inCloud);
        const QRect before = bar.generate()->geometry();
        bar.change([](ComposeState& state) { state.offer.images = 24; });
        if (isCloud)
            bar.change(inCloud);
        EXPECT_EQ(bar.generate()->geometry(), before);
        EXPECT_EQ(bar.generate()->accessibleName(), u"Generar 24"_s);
        EXPECT_EQ(bar.generate()->accessibleDescription(),
                  isCloud ? u"cuesta 240 créditos"_s : QString());
    }
}

TEST(ComposeBar, aRefusalDisablesAndIsTheTooltip)
{
    Bar bar;
    const QString why = u"Importa imágenes para analizarlas en local."_s;
    bar.change([&](ComposeState& state) { state.offer.refusal = why; });
    EXPECT_FALSE(bar.generate()->isEnabled());
    EXPECT_EQ(bar.generate()->toolTip(), why);
    bar.change([](ComposeState& state) { state.offer.refusal.clear(); });
    EXPECT_TRUE(bar.generate()->isEnabled());

    bar.change([](ComposeState& state) { state.cloudRefusal = u"La IA está desactivada."_s; });
    press(*bar.segments(), bar.segments()->segmentRect(1).center());
    type(*bar.segments(), Qt::Key_Right);
    EXPECT_EQ(bar.modes, 0);
    bar.change([](ComposeState& state) { state.cloudRefusal.clear(); });
    press(*bar.segments(), bar.segments()->segmentRect(1).center());
    EXPECT_EQ(bar.modes, 1);
    EXPECT_EQ(bar.segments()->current(), 0) << "until the session answers";
    EXPECT_EQ(bar.segments()->accessibleName(), u"Modo Local, 0 créditos por imagen"_s);
}

TEST(ComposeBar, aRunLocksTheModeAndTheButtonsTakeTurnsAtTheFocus)
{
    Bar bar;
    bar.generate()->setFocus(Qt::TabFocusReason);
    bar.generate()->click();
    EXPECT_EQ(bar.generated, 1);
    bar.change(underWay);
    EXPECT_FALSE(bar.segments()->isEnabled());
    EXPECT_EQ(bar.focusWidget(), bar.cancel());
    EXPECT_EQ(bar.pill()->width(), 178);
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(bar.pill());
    EXPECT_EQ(spoken->role(), QAccessible::ProgressBar);
    EXPECT_EQ(spoken->text(QAccessible::Name), u"Generando 8 de 16"_s);
    EXPECT_EQ(spoken->valueInterface()->currentValue().toInt(), 44);
    type(*bar.cancel(), Qt::Key_Space);
    QKeyEvent release(QEvent::KeyRelease, Qt::Key_Space, Qt::NoModifier);
    QApplication::sendEvent(bar.cancel(), &release);
    EXPECT_EQ(bar.cancelled, 1);
    bar.change([](ComposeState& state) { state.run->isStopping = true; });
    EXPECT_EQ(bar.pill()->accessibleName(), u"Cancelando…"_s);
    bar.change([](ComposeState& state) { state.run = {}; });
    EXPECT_EQ(bar.focusWidget(), bar.generate());
}

// The narrowest stage leaves 488 pixels.
TEST(ComposeBar, theObjectiveAlwaysHasRoom)
{
    for (const int width : {488, 724, 855, 1120}) {
        for (const auto& look : std::initializer_list<std::function<void(ComposeState&)>>{
                 [](ComposeState&) {}, inCloud, underWay}) {
            Bar bar(width);
            bar.change([](ComposeState& state) { state.offer.images = 24; });
            bar.change(look);
            EXPECT_GE(bar.objectiveEdit()->width(), 80) << width;
            for (const QWidget* part : bar.findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
                EXPECT_TRUE(!part->isVisible() || bar.rect().contains(part->geometry())) << width;
        }
    }
}
