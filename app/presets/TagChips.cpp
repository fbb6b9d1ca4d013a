#include "app/presets/TagChips.h"

#include "app/controls/PartsAccessible.h"
#include "app/theme/Icons.h"
#include "app/theme/KeyboardFocus.h"
#include "app/theme/Painting.h"

#include <QHoverEvent>
#include <QKeyEvent>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace {

constexpr int tagChipHeight = 28, tagChipGap = 6, tagChipPadding = 10, starSide = 16, starGap = 4,
              mostChipRows = 2, widestChip = 160;

// Tags are stored in lower case.
QString capitalized(const QString& tag)
{
    return tag.left(1).toUpper() + tag.mid(1);
}

}    // namespace

TagChips::TagChips(QWidget* parent) : QWidget(parent)
{
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setAccessibleName(u"Filtro de plantillas"_s);
    setProperty("focusRadius", Radius::field);
    place();
}

void TagChips::setTags(const QStringList& tags)
{
    if (tags == m_tags)
        return;
    m_tags = tags;
    place();
}

void TagChips::setFilter(const GalleryFilter& filter)
{
    if (filter.tag == m_tag && filter.favourites == m_favourites)
        return;
    m_tag = filter.tag;
    m_favourites = filter.favourites;
    place();
    if (hasFocus())
        tellPart(this, QAccessible::Focus, current());
}

QString TagChips::labelOf(const Chip& chip) const
{
    switch (chip.kind) {
    case Chip::Kind::all:
        return u"Todas"_s;
    case Chip::Kind::favourites:
        return u"Favoritas"_s;
    case Chip::Kind::tag:
        return capitalized(chip.tag);
    case Chip::Kind::more:
        return chip.tag.isEmpty() ? u"Más…"_s : capitalized(chip.tag);
    }
    Q_UNREACHABLE();
}

int TagChips::widthOf(const Chip& chip) const
{
    const int star = chip.kind == Chip::Kind::favourites ? starSide + starGap : 0;
    return std::min(widestChip,
                    2 * tagChipPadding + star + qCeil(textWidth(Type::smallMedium, labelOf(chip))));
}

// Puts as many chips as fit into the rows. Tags that do not fit go to the menu of a last chip,
// which bears the chosen tag if that is one of them.
void TagChips::place()
{
    m_chips = {{Chip::Kind::all}, {Chip::Kind::favourites}};
    for (const QString& tag : std::as_const(m_tags))
        m_chips.append({Chip::Kind::tag, tag});
    Chip more{Chip::Kind::more, m_tags.contains(m_tag) ? QString() : m_tag};
    int left = 0, row = 0;
    qsizetype placed = 0;
    const auto put = [&](Chip& chip, int roomAfter) {
        const int across = widthOf(chip);
        if (left > 0 && left + across + roomAfter > width() && row + 1 < mostChipRows) {
            left = 0;
            ++row;
        }
        if (left > 0 && left + across + roomAfter > width())
            return false;
        chip.rect = QRect(left, row * (tagChipHeight + tagChipGap), across, tagChipHeight);
        left += across + tagChipGap;
        return true;
    };
    for (; placed < m_chips.size(); ++placed) {
        const bool isLast = placed + 1 == m_chips.size() && more.tag.isEmpty();
        const bool isLastRow = row + 1 == mostChipRows;
        // The widest label that the last chip may get.
        Chip last = more;
        if (!isLast && placed > 1 && last.tag.isEmpty() && m_tags.mid(placed - 2).contains(m_tag))
            last.tag = m_tag;
        if (!put(m_chips[placed], isLast || !isLastRow ? 0 : tagChipGap + widthOf(last)))
            break;
    }
    m_rest.clear();
    for (qsizetype i = placed; i < m_chips.size(); ++i)
        m_rest.append(m_chips[i].tag);
    m_chips.resize(placed);
    if (m_rest.contains(m_tag))
        more.tag = m_tag;
    if (!m_rest.isEmpty() || !more.tag.isEmpty()) {
        put(more, 0);
        m_chips.append(more);
    }
    setFixedHeight((row + 1) * (tagChipHeight + tagChipGap) - tagChipGap);
    update();
}

int TagChips::current() const
{
    const auto chosen = std::ranges::find_if(m_chips, [this](const Chip& chip) {
        if (chip.kind == Chip::Kind::all)
            return m_tag.isEmpty() && !m_favourites;
        return chip.kind == Chip::Kind::favourites ? m_favourites
                                                   : !chip.tag.isEmpty() && chip.tag == m_tag;
    });
    return chosen == m_chips.end() ? -1 : int(chosen - m_chips.begin());
}

QString TagChips::choiceName(int index) const
{
    const Chip& chip = m_chips[index];
    return chip.kind == Chip::Kind::more && chip.tag.isEmpty() ? u"Más filtros"_s : labelOf(chip);
}

void TagChips::choose(int index)
{
    if (index < 0 || index >= m_chips.size())
        return;
    const Chip chip = m_chips[index];
    if (chip.kind == Chip::Kind::more)
        return showRest();
    choose(chip.tag, chip.kind == Chip::Kind::favourites);
}

void TagChips::choose(const QString& tag, bool favourites)
{
    if (tag == m_tag && favourites == m_favourites)
        return;
    setFilter({.tag = tag, .favourites = favourites});
    Q_EMIT chosen(tag, favourites);
}

void TagChips::showRest()
{
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const QString& tag : std::as_const(m_rest)) {
        QAction* action = menu->addAction(inMenu(capitalized(tag)));
        action->setCheckable(true);
        action->setChecked(tag == m_tag);
        connect(action, &QAction::triggered, this, [this, tag] { choose(tag, false); });
    }
    connect(menu, &QObject::destroyed, this, [this] {
        m_hovered = chipAt(mapFromGlobal(QCursor::pos()));
        update();
    });
    menu->popup(mapToGlobal(m_chips.last().rect.bottomLeft()));
}

int TagChips::chipAt(QPoint position) const
{
    const auto at = std::ranges::find_if(
        m_chips, [position](const Chip& chip) { return chip.rect.contains(position); });
    return at == m_chips.end() ? -1 : int(at - m_chips.begin());
}

bool TagChips::event(QEvent* event)
{
    int hovered = m_hovered;
    if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverMove)
        hovered = chipAt(static_cast<QHoverEvent*>(event)->position().toPoint());
    else if (event->type() == QEvent::HoverLeave)
        hovered = -1;
    if (std::exchange(m_hovered, hovered) != hovered)
        update();
    return QWidget::event(event);
}

void TagChips::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int i = 0; i < m_chips.size(); ++i) {
        const Chip& chip = m_chips[i];
        const bool isChosen = i == current();
        const QColor ink = isChosen ? theme.accentText : theme.text2;
        const QColor ground =
            isChosen ? theme.accentSoft : (i == m_hovered ? theme.hover : theme.control);
        fillRounded(painter, chip.rect, Radius::chip, ground);
        if (isChosen)
            strokeRounded(painter, chip.rect, Radius::chip, theme.accentLine, 1.5);
        QRectF line = QRectF(chip.rect).adjusted(tagChipPadding, 0, -tagChipPadding, 0);
        if (chip.kind == Chip::Kind::favourites) {
            paintIcon(painter, isChosen ? Icon::starFilled : Icon::star,
                      QRectF(line.left(), line.top(), starSide, line.height()), starSide, ink);
            line.setLeft(line.left() + starSide + starGap);
        }
        paintText(painter, line, Qt::AlignHCenter, Type::smallMedium, ink, labelOf(chip));
    }
}

void TagChips::resizeEvent(QResizeEvent*)
{
    place();
}

void TagChips::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        choose(chipAt(event->position().toPoint()));
}

void TagChips::keyPressEvent(QKeyEvent* event)
{
    const bool isDown = event->key() == Qt::Key_Down && !m_rest.isEmpty();
    if (isDown)
        showRest();
    else if (const auto index = choiceByKey(event->key(), current(), choiceCount()))
        choose(*index);
    else
        QWidget::keyPressEvent(event);
}

void TagChips::focusInEvent(QFocusEvent* event)
{
    KeyboardFocus::entered(this, event);
}

void TagChips::focusOutEvent(QFocusEvent*)
{
    KeyboardFocus::left(this);
}
