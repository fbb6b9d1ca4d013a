#include "app/theme/StudioStyle.h"

#include "app/theme/KeyboardFocus.h"
#include "app/theme/Painting.h"

#include <QApplication>
#include <QFocusFrame>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOption>

using namespace Qt::StringLiterals;

namespace {

constexpr int menuRadius = 10, tipRadius = 7;
constexpr int menuRow = 30, menuPadding = 5, menuIconBox = 36, menuShortcutGap = 28;

void paintFloating(QPainter& painter, const QRect& rect, double radius, const Theme& theme)
{
    painter.setPen(theme.line2);
    painter.setBrush(theme.elev);
    painter.drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

void paintMenuItem(QPainter& painter, const QStyleOptionMenuItem& item)
{
    const Theme& theme = themeOf(item.palette);
    if (item.menuItemType == QStyleOptionMenuItem::Separator) {
        painter.fillRect(
            QRect(item.rect.left() + 8, item.rect.center().y(), item.rect.width() - 16, 1),
            theme.line2);
        return;
    }
    const bool enabled = item.state & QStyle::State_Enabled;
    const bool chosen = enabled && (item.state & QStyle::State_Selected);
    if (chosen)
        fillRounded(painter, item.rect, 7, theme.hover);
    const QColor color = enabled ? theme.text : theme.dis;
    const bool ticked = item.checkType != QStyleOptionMenuItem::NotCheckable && item.checked;
    if (!item.icon.isNull()) {
        QPixmap pixmap = item.icon.pixmap(QSize(20, 20), painter.device()->devicePixelRatioF());
        QPainter tint(&pixmap);
        tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
        tint.fillRect(pixmap.rect(), enabled ? theme.text2 : theme.dis);
        tint.end();
        painter.drawPixmap(item.rect.left() + 8, item.rect.center().y() - 9, pixmap);
    } else if (ticked) {
        painter.setPen(QPen(theme.accentText, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        const QPointF at(item.rect.left() + 13, item.rect.center().y() + 1);
        painter.drawPolyline(QPolygonF{at, at + QPointF(3.5, 3.5), at + QPointF(10, -4)});
    }
    const QRect text = item.rect.adjusted(
        item.maxIconWidth > 0 || item.menuHasCheckableItems ? menuIconBox : 12, 0, -12, 0);
    const QStringList parts = item.text.split(u'\t');
    painter.setFont(item.font);
    painter.setPen(color);
    painter.drawText(text, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextHideMnemonic, parts.first());
    painter.setPen(enabled ? theme.text3 : theme.dis);
    if (item.menuItemType == QStyleOptionMenuItem::SubMenu) {
        const QPointF at(text.right() - 2, text.center().y() + 0.5);
        painter.setPen(QPen(theme.text3, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(QPolygonF{at + QPointF(-4, -4), at, at + QPointF(-4, 4)});
    } else if (parts.size() > 1) {
        painter.setFont(fontOf(Type::small));
        painter.drawText(text, Qt::AlignVCenter | Qt::AlignRight, parts.last());
    }
}

}    // namespace

StudioStyle::StudioStyle(Motion motion) : QProxyStyle(u"Fusion"_qs), m_motion(motion) {}

void StudioStyle::polish(QWidget* widget)
{
    QProxyStyle::polish(widget);
    // Smooth round corners need a transparent window. On a desktop without a compositor, the masks
    // of styleHint() cut the corners instead.
    if (qobject_cast<QMenu*>(widget)) {
        widget->setAttribute(Qt::WA_TranslucentBackground);
        widget->setWindowFlag(Qt::FramelessWindowHint);
    } else if (widget->inherits("QTipLabel")) {
        widget->setAttribute(Qt::WA_TranslucentBackground);
    } else if (qobject_cast<QScrollBar*>(widget)) {
        widget->setAttribute(Qt::WA_Hover);
        widget->setAttribute(Qt::WA_OpaquePaintEvent, false);
    }
}

void StudioStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                QPainter* painter, const QWidget* widget) const
{
    const Theme& theme = themeOf(option->palette);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (element == PE_PanelMenu) {
        paintFloating(*painter, option->rect, menuRadius, theme);
    } else if (element == PE_PanelTipLabel) {
        paintFloating(*painter, option->rect, tipRadius, theme);
    } else if (const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
               element == PE_PanelLineEdit && frame && frame->lineWidth == 0) {
        // Paints nothing for a line edit without a frame: the field around it paints the box.
    } else if (element != PE_FrameMenu) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
    painter->restore();
}

void StudioStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element == CE_MenuItem && item) {
        paintMenuItem(*painter, *item);
    } else if (element == CE_FocusFrame) {
        const auto* frame = qobject_cast<const QFocusFrame*>(widget);
        const QVariant radius =
            frame && frame->widget() ? frame->widget()->property("focusRadius") : QVariant();
        const double outer = (radius.isValid() ? radius.toDouble() : Radius::button) + 3;
        painter->setPen(QPen(themeOf(widget).accentLine, 2));
        painter->setBrush(Qt::NoBrush);
        painter->drawRoundedRect(QRectF(option->rect).adjusted(1, 1, -1, -1), outer, outer);
    } else if (element == CE_Splitter) {
        painter->fillRect(option->rect, themeOf(option->palette).line);
    } else if (element != CE_MenuEmptyArea) {
        QProxyStyle::drawControl(element, option, painter, widget);
    }
    painter->restore();
}

void StudioStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                     QPainter* painter, const QWidget* widget) const
{
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control != CC_ScrollBar || !bar)
        return QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (bar->maximum <= bar->minimum)
        return;
    const Theme& theme = themeOf(option->palette);
    const bool lively = option->state & (State_MouseOver | State_Sunken);
    QRectF handle = subControlRect(control, option, SC_ScrollBarSlider, widget);
    const double inset = lively ? 2 : 3;
    handle = bar->orientation == Qt::Vertical ? handle.adjusted(inset, 2, -inset, -2)
                                              : handle.adjusted(2, inset, -2, -inset);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    fillRounded(*painter, handle, std::min(handle.width(), handle.height()) / 2,
                lively ? theme.dis : theme.line2);
    painter->restore();
}

QRect StudioStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                  SubControl part, const QWidget* widget) const
{
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control != CC_ScrollBar || !bar)
        return QProxyStyle::subControlRect(control, option, part, widget);
    // There are no arrow buttons, so the handle moves along the whole length.
    const bool vertical = bar->orientation == Qt::Vertical;
    const int length = vertical ? bar->rect.height() : bar->rect.width();
    const qint64 span = qint64(bar->maximum) - bar->minimum + bar->pageStep;
    const int handle = span > 0 && bar->maximum > bar->minimum
                           ? std::clamp(int(qint64(length) * bar->pageStep / span), 32, length)
                           : length;
    const int start = sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition,
                                              length - handle, bar->upsideDown);
    const auto along = [&](int from, int size) {
        return vertical ? QRect(0, from, bar->rect.width(), size)
                        : QRect(from, 0, size, bar->rect.height());
    };
    switch (part) {
    case SC_ScrollBarSlider:
        return along(start, handle);
    case SC_ScrollBarSubPage:
        return along(0, start);
    case SC_ScrollBarAddPage:
        return along(start + handle, length - start - handle);
    case SC_ScrollBarGroove:
        return along(0, length);
    default:
        return {};
    }
}

QSize StudioStyle::sizeFromContents(ContentsType type, const QStyleOption* option,
                                    const QSize& contents, const QWidget* widget) const
{
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (type != CT_MenuItem || !item)
        return QProxyStyle::sizeFromContents(type, option, contents, widget);
    if (item->menuItemType == QStyleOptionMenuItem::Separator)
        return {contents.width(), 9};
    const QStringList parts = item->text.split(u'\t');
    int width = QFontMetrics(item->font).horizontalAdvance(parts.first()) + menuIconBox + 16;
    if (parts.size() > 1)
        width +=
            QFontMetrics(fontOf(Type::small)).horizontalAdvance(parts.last()) + menuShortcutGap;
    return {std::max(width, 180), menuRow};
}

int StudioStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                             const QWidget* widget) const
{
    switch (metric) {
    case PM_ScrollBarExtent:
        return 12;
    case PM_ScrollBarSliderMin:
        return 32;
    case PM_MenuHMargin:
    case PM_MenuVMargin:
        return menuPadding;
    case PM_MenuPanelWidth:
        return 0;
    case PM_ToolTipLabelFrameWidth:
        return 7;
    case PM_FocusFrameHMargin:
    case PM_FocusFrameVMargin:
        return 4;    // the ring and its gap, two pixels each
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int StudioStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                           QStyleHintReturn* data) const
{
    switch (hint) {
    case SH_Widget_Animation_Duration:
        return m_motion == Motion::reduced ? 0 : 90;
    case SH_LineEdit_PasswordCharacter:
        return 0x2022;    // a bullet; Fusion's own is a large disc
    case SH_ToolTip_WakeUpDelay:
        return 500;
    case SH_FocusFrame_AboveWidget:
        return 1;
    case SH_Menu_Mask:
    case SH_ToolTip_Mask:
        if (auto* mask = qstyleoption_cast<QStyleHintReturnMask*>(data); mask && option)
            mask->region =
                roundedRegion(option->rect, hint == SH_Menu_Mask ? menuRadius : tipRadius);
        return 1;
    case SH_FocusFrame_Mask:
    case SH_ScrollBar_Transient:
    case SH_UnderlineShortcut:
    case SH_EtchDisabledText:
    case SH_DitherDisabledText:
        return 0;
    case SH_ToolTipLabel_Opacity:
        return 255;
    default:
        return QProxyStyle::styleHint(hint, option, widget, data);
    }
}

void setMotion(Motion motion)
{
    if (auto* style = qobject_cast<StudioStyle*>(QApplication::style()))
        style->setMotion(motion);
}

void dress(QApplication& application, const Theme& theme, Motion motion)
{
    application.setStyle(new StudioStyle(motion));    // setStyle() takes ownership
    application.setFont(fontOf(Type::body));
    KeyboardFocus::watch(application);
    applyTheme(theme);
}
