#include "app/controls/popovers/FontField.h"

#include "app/controls/popovers/FontCatalog.h"
#include "app/controls/popovers/FontPopover.h"
#include "canvas/TextFitting.h"

using namespace Qt::StringLiterals;

namespace {
constexpr int fontFieldPadding = 10, fontFieldIconSide = 16;
}

FontField::FontField(QWidget* parent) : Control(parent)
{
    setFixedHeight(32);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setProperty("focusRadius", Radius::field);
    setFontName(u"System"_s);
    connect(this, &FontField::clicked, this, &FontField::toggle);
}

void FontField::setFontName(const QString& storedName)
{
    if (storedName == m_fontName)
        return;
    m_fontName = storedName;
    m_missing = !storedName.isEmpty() && !ExportCanvasRenderer::isInstalled(storedName);
    setText(storedName == "System"_L1 ? u"Sistema"_s : storedName);
    setAccessibleName(u"Fuente %1"_s.arg(text()).trimmed());
    const QString problem = u"No está instalada; se dibuja con otra."_s;
    setAccessibleDescription(m_missing ? problem : QString());
    setToolTip(m_missing ? problem : QString());
    update();
}

void FontField::closePopover()
{
    if (m_popover)
        m_popover->close();
}

void FontField::toggle()
{
    if (m_popover) {
        m_popover->close();
        return;
    }
    auto* popover = new FontPopover(this, m_fontName);
    m_popover = popover;
    connect(popover, &Popover::closing, this, [this] { m_popover = nullptr; });
    connect(popover, &FontPopover::chosen, this, &FontField::chosen);
    popover->open();
}

void FontField::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), Radius::field,
                isEnabled() ? mixed(theme.control, theme.hover, hovered())
                            : mixed(theme.panel, theme.control, 0.65));
    QRectF line = QRectF(rect()).adjusted(fontFieldPadding, 0, -fontFieldPadding, 0);
    paintIcon(painter, Icon::unfold,
              QRectF(line.right() - fontFieldIconSide, 0, fontFieldIconSide, height()),
              fontFieldIconSide, isEnabled() ? theme.text2 : theme.dis);
    line.setRight(line.right() - fontFieldIconSide - 4);
    if (m_missing) {
        paintIcon(painter, Icon::alert, QRectF(line.left() - 2, 0, fontFieldIconSide, height()),
                  fontFieldIconSide, isEnabled() ? theme.warn : theme.dis);
        line.setLeft(line.left() + fontFieldIconSide + 4);
    }
    paintText(painter, line, Qt::AlignLeft, Type::body, isEnabled() ? theme.text : theme.dis,
              m_fontName.isEmpty() ? u"Fuente"_s : text());
}
