#include "app/copy/RunPill.h"

#include "app/theme/Painting.h"

#include <QPainterPath>

#include <utility>

namespace {
constexpr int pillWidth = 178, pillHeight = 36, pillPadding = 12, pillSpinner = 16, pillGap = 8;
constexpr double pillFill = 0.35;    // of the accent over the soft ground
}    // namespace

RunPill::RunPill(QWidget* parent) : ProgressBar(parent), m_turn(this)
{
    setFixedSize(pillWidth, pillHeight);
}

void RunPill::setText(const QString& text)
{
    if (change(text))
        m_announcer.tellStep();
}

void RunPill::setLastText(const QString& text)
{
    if (change(text))
        m_announcer.tellNow();
}

bool RunPill::change(const QString& text)
{
    update();
    return std::exchange(m_text, text) != text;
}

void RunPill::showEvent(QShowEvent* event)
{
    ProgressBar::showEvent(event);
    m_turn.run(true);
}

void RunPill::hideEvent(QHideEvent* event)
{
    ProgressBar::hideEvent(event);
    m_turn.run(false);
}

void RunPill::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath outline;
    outline.addRoundedRect(rect(), Radius::button, Radius::button);
    painter.setClipPath(outline);
    painter.fillRect(rect(), theme.accentSoft);
    painter.fillRect(filled(), mixed(theme.accentSoft, theme.accentLine, pillFill));
    const QRectF spinner(pillPadding, (height() - pillSpinner) / 2.0, pillSpinner, pillSpinner);
    paintSpinner(painter, spinner, withOpacity(theme.accentText, 0.25), theme.accentText,
                 m_turn.value(), 1.8);
    const double left = spinner.right() + pillGap;
    paintText(painter, QRectF(left, 0, width() - left - Space::small, height()), Qt::AlignLeft,
              Type::heading, theme.accentText, m_text);
}
