#include "app/copy/ComposeBar.h"

#include "account/AccountTexts.h"
#include "app/controls/fields/SegmentedControl.h"
#include "app/controls/fields/TextField.h"
#include "app/copy/RunPill.h"

#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace {

constexpr int composeHeight = 52, compactComposeHeight = 48, objectiveLeft = 38, composeEdge = 8;
constexpr int modesGap = 12, cancelGap = 8;
constexpr int leastObjective = 140;    // what gives way below it: credits, then words
constexpr std::array modeIcons{Icon::modeLocal, Icon::modeCloud};

}    // namespace

ComposeBar::ComposeBar(QWidget* parent)
    : QWidget(parent),
      m_objective(new TextField(
          u"Objetivo de la campaña"_qs,
          u"Ej.: llenar los fines de semana de octubre con parejas y familias"_qs, this)),
      m_modes(new SegmentedControl(modes(Room::full), this)), m_generate(new GenerateButton(this)),
      m_pill(new RunPill(this)),
      m_cancel(new PushButton(Icon::close, u"Cancelar"_s, ButtonKind::outlined, ButtonSize::regular,
                              this))
{
    setFixedHeight(composeHeight);
    setMaximumWidth(1120);
    m_pill->hide();
    m_cancel->hide();
    connect(m_objective, &TextField::edited, this, &ComposeBar::objectiveEdited);
    connect(m_modes, &SegmentedControl::chosen, this, [this](int index) {
        // The session's answer shows the mode.
        m_modes->setCurrent(int(m_state.mode));
        Q_EMIT modeChosen(CopyGenerationMode(index));
    });
    connect(m_generate, &GenerateButton::clicked, this, &ComposeBar::generateRequested);
    connect(m_cancel, &PushButton::clicked, this, &ComposeBar::cancelRequested);
}

void ComposeBar::setObjective(const QString& objective)
{
    m_objective->setText(objective);
}

void ComposeBar::setState(const ComposeState& state)
{
    if (state == m_state)
        return;
    m_state = state;
    m_generate->setOffer(state.offer);
    m_modes->setCurrent(int(state.mode));
    showRun();
    place();
}

void ComposeBar::setKeys(const QString& generate, const QString& cancel)
{
    m_generate->setKey(generate);
    m_cancel->setToolTip(u"Cancelar · %1"_s.arg(cancel));
}

// The buttons take turns at the keyboard focus, so that it does not go astray.
void ComposeBar::showRun()
{
    const bool isRunning = m_state.run.has_value();
    const QWidget* focused = window()->focusWidget();
    const bool takesTurn = focused == m_generate || focused == m_cancel;
    m_modes->setEnabled(!isRunning);
    m_modes->setToolTip(isRunning ? u"El modo no cambia mientras se generan textos."_s : QString());
    m_pill->setVisible(isRunning);
    m_cancel->setVisible(isRunning);
    m_generate->setVisible(!isRunning);
    if (isRunning) {
        const ComposeRun& run = *m_state.run;
        m_cancel->setWorking(run.isStopping);
        if (run.isStopping)
            m_pill->setLastText(u"Cancelando…"_s);
        else
            m_pill->setText(u"Generando %1 de %2"_s.arg(run.position).arg(run.total));
        m_pill->setValue(run.total > 0 ? double(run.finished) / double(run.total) : 0);
    }
    if (!takesTurn)
        return;
    PushButton* next = isRunning ? m_cancel : m_generate;
    if (next->isEnabled())
        next->setFocus(Qt::OtherFocusReason);
    else
        Q_EMIT leaveRequested();
}

void ComposeBar::setClass(WindowClass windowClass)
{
    setFixedHeight(windowClass == WindowClass::compact ? compactComposeHeight : composeHeight);
}

QWidget* ComposeBar::objectiveEdit() const
{
    return m_objective->edit();
}

void ComposeBar::finishEdit()
{
    m_objective->finish();
}

QList<QWidget*> ComposeBar::focusOrder() const
{
    return {m_objective->edit(), m_modes, m_generate, m_cancel};
}

QList<Segment> ComposeBar::modes(Room room) const
{
    QList<Segment> segments;
    for (const auto& mode : Vocabulary<CopyGenerationMode>::rows) {
        const qint64 credits = m_state.credits[std::size_t(mode.value)];
        const QString name = mode.rawValue.toString();
        const bool isRefused = mode.value == CopyGenerationMode::cloud;
        segments.append({.icon = modeIcons[std::size_t(mode.value)],
                         .text = name,
                         .toolTip = mode.explanation.toString(),
                         .name = u"Modo %1, %2 por imagen"_s.arg(name, creditsText(credits)),
                         .refusal = isRefused ? m_state.cloudRefusal : QString()});
        if (room == Room::full && !m_state.run)
            segments.last().credits = credits;
    }
    return segments;
}

int ComposeBar::roomOfObjective() const
{
    const int buttons = m_state.run ? m_pill->width() + cancelGap + m_cancel->sizeHint().width()
                                    : m_generate->sizeHint().width();
    return width() - objectiveLeft - composeEdge - buttons - 2 * modesGap -
           m_modes->sizeHint().width();
}

void ComposeBar::place()
{
    for (const Room room : {Room::full, Room::withoutCredits, Room::iconsAlone}) {
        m_modes->setSegments(modes(room));
        m_modes->setLabels(room == Room::iconsAlone ? Labels::hidden : Labels::shown);
        m_cancel->setLabels(room == Room::iconsAlone ? Labels::hidden : Labels::shown);
        if (roomOfObjective() >= leastObjective)
            break;
    }
    int right = width() - composeEdge;
    const auto put = [&](QWidget* widget, int gap) {
        const QSize size = widget->sizeHint();
        right -= size.width();
        widget->setGeometry(QRect(QPoint(right, (height() - size.height()) / 2), size));
        right -= gap;
    };
    if (m_state.run) {
        put(m_cancel, cancelGap);
        right -= m_pill->width();
        m_pill->move(right, (height() - m_pill->height()) / 2);
        right -= modesGap;
    } else {
        put(m_generate, modesGap);
    }
    put(m_modes, modesGap);
    m_objective->setGeometry(objectiveLeft, (height() - m_objective->height()) / 2,
                             std::max(0, right - objectiveLeft), m_objective->height());
}

void ComposeBar::resizeEvent(QResizeEvent*)
{
    place();
}

void ComposeBar::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), Radius::card, theme.panel);
    strokeRounded(painter, rect(), Radius::card, theme.line);
    paintIcon(painter, Icon::objective, QRectF(14, 0, 20, height()), 20, theme.text2);
}
