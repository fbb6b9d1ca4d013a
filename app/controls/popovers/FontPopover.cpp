#include "app/controls/popovers/FontPopover.h"

#include "app/controls/fields/LineField.h"
#include "app/controls/popovers/FontList.h"
#include "app/theme/Icons.h"
#include "app/theme/Painting.h"

#include <QFontDatabase>
#include <QKeyEvent>
#include <QListView>
#include <QStyledItemDelegate>

using namespace Qt::StringLiterals;

namespace {

constexpr int fontPopoverContentWidth = 292, contentHeight = 400, leastHeight = 240,
              searchHeight = 32, fontPopoverGap = 8;
constexpr int fontRowHeight = 34, rowPadding = 10, faceIndent = 18, fontPopoverIconSide = 16,
              samplePixels = 15;

class FontDelegate : public QStyledItemDelegate {
public:
    FontDelegate(FontList* fonts, QObject* parent) : QStyledItemDelegate(parent), m_fonts(fonts) {}

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override
    {
        return {fontPopoverContentWidth, fontRowHeight};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override
    {
        const Theme& theme = themeOf(option.palette);
        const FontRow& row = m_fonts->rowAt(index.row());
        const SavedPainter saved(*painter);
        painter->setRenderHint(QPainter::Antialiasing);
        const bool marked = option.state & (QStyle::State_Selected | QStyle::State_MouseOver);
        if (marked)
            fillRounded(*painter, option.rect, Radius::field, theme.hover);
        QRectF line = QRectF(option.rect).adjusted(rowPadding, 0, -rowPadding, 0);
        const auto iconAtRight = [&](Icon icon, const QColor& color) {
            paintIcon(*painter, icon,
                      QRectF(line.right() - fontPopoverIconSide, line.top(), fontPopoverIconSide,
                             fontRowHeight),
                      fontPopoverIconSide, color);
            line.setRight(line.right() - fontPopoverIconSide - 6);
        };
        if (row.kind == FontRowKind::family && m_fonts->hasFaces(row.name))
            iconAtRight(m_fonts->isUnfolded(row.name) ? Icon::fold : Icon::unfold, theme.text3);
        if (m_fonts->isMarked(row))
            iconAtRight(Icon::check, theme.accentText);
        if (row.kind == FontRowKind::face)
            line.setLeft(line.left() + faceIndent);
        if (row.kind == FontRowKind::missing) {
            paintIcon(*painter, Icon::alert,
                      QRectF(line.left(), line.top(), fontPopoverIconSide, fontRowHeight),
                      fontPopoverIconSide, theme.warn);
            line.setLeft(line.left() + fontPopoverIconSide + 6);
        }
        const QFont font = sampleFont(row);
        painter->setFont(font);
        painter->setPen(row.kind == FontRowKind::face && !marked ? theme.text2 : theme.text);
        painter->setClipRect(option.rect);    // some fonts paint higher than their metrics say
        painter->drawText(line, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                          QFontMetricsF(font).elidedText(row.name, Qt::ElideRight, line.width()));
    }

private:
    // The font of the row, or the interface's font if the name could not be read in its own.
    static QFont sampleFont(const FontRow& row)
    {
        if (row.kind == FontRowKind::missing || row.kind == FontRowKind::system)
            return fontOf(Type::body);
        const QFont font = fontOfStored(row.storedName, samplePixels);
        const bool isReadable =
            isForWords(font.family()) &&
            QFontDatabase::writingSystems(font.family()).contains(QFontDatabase::Latin);
        return isReadable ? font : fontOf(Type::body);
    }

    FontList* m_fonts;
};

}    // namespace

FontPopover::FontPopover(QWidget* owner, const QString& current)
    : Popover(owner), m_fonts(new FontList(current, this)),
      m_search(new LineField(u"Buscar fuente"_s, u"Buscar fuente"_s, Icon::search, this)),
      m_view(new QListView(this))
{
    setAccessibleName(u"Fuentes"_s);
    m_view->setAccessibleName(u"Fuentes"_s);
    m_view->setFrameShape(QFrame::NoFrame);
    m_view->setUniformItemSizes(true);
    m_view->setItemDelegate(new FontDelegate(m_fonts, m_view));
    m_view->setModel(m_fonts);
    m_view->setFocusPolicy(Qt::NoFocus);
    m_view->setMouseTracking(true);
    m_view->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->viewport()->setAutoFillBackground(false);
    connect(m_search, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_fonts->setFilter(text);
        m_view->setCurrentIndex(m_fonts->index(0));
        update();
    });
    connect(m_view, &QListView::clicked, this, [this](const QModelIndex& index) {
        const FontRow& row = m_fonts->rowAt(index.row());
        const bool onChevron =
            m_pressX > m_view->viewport()->width() - rowPadding - fontPopoverIconSide - 6;
        if (row.kind == FontRowKind::family && onChevron && m_fonts->hasFaces(row.name))
            setUnfolded(index.row(), !m_fonts->isUnfolded(row.name));
        else
            choose(index.row());
    });
}

void FontPopover::open()
{
    openWithin({fontPopoverContentWidth, std::min(contentHeight, window()->height() - 120)},
               leastHeight);
    const QRect area = content();
    m_search->setGeometry(area.left(), area.top(), area.width(), searchHeight);
    m_view->setGeometry(area.adjusted(0, searchHeight + fontPopoverGap, 0, 0));
    takeFocus(m_search, Qt::PopupFocusReason);
    const QModelIndex current = m_fonts->index(std::max(0, m_fonts->indexOf(m_fonts->current())));
    m_view->setCurrentIndex(current);
    m_view->scrollTo(current, QAbstractItemView::PositionAtCenter);
}

void FontPopover::moveCurrent(int rows)
{
    const int last = m_fonts->rowCount() - 1;
    const QModelIndex target =
        m_fonts->index(std::clamp(m_view->currentIndex().row() + rows, 0, std::max(0, last)));
    m_view->setCurrentIndex(target);
    m_view->scrollTo(target);
}

void FontPopover::choose(int index)
{
    if (index < 0 || index >= m_fonts->rowCount())
        return;
    const QString storedName = m_fonts->rowAt(index).storedName;
    const bool same = storedName == m_fonts->current();
    close();
    if (!same)
        Q_EMIT chosen(storedName);
}

bool FontPopover::setUnfolded(int index, bool unfolded)
{
    if (index < 0 || index >= m_fonts->rowCount())
        return false;
    FontRow row = m_fonts->rowAt(index);
    if (row.kind == FontRowKind::face) {    // the family is the nearest row above that is no face
        while (index > 0 && m_fonts->rowAt(index).kind == FontRowKind::face)
            --index;
        row = m_fonts->rowAt(index);
    }
    if (row.kind != FontRowKind::family || !m_fonts->hasFaces(row.name) ||
        m_fonts->isUnfolded(row.name) == unfolded)
        return false;
    m_fonts->setUnfolded(row.name, unfolded);
    m_view->setCurrentIndex(m_fonts->index(m_fonts->indexOf(row.storedName)));
    return true;
}

bool FontPopover::pressKey(int key)
{
    const int page = std::max(1, m_view->height() / fontRowHeight - 1);
    const bool atEnd = m_search->cursorPosition() == m_search->text().size();
    switch (key) {
    case Qt::Key_Up:
        moveCurrent(-1);
        return true;
    case Qt::Key_Down:
        moveCurrent(1);
        return true;
    case Qt::Key_PageUp:
        moveCurrent(-page);
        return true;
    case Qt::Key_PageDown:
        moveCurrent(page);
        return true;
    case Qt::Key_Left:
    case Qt::Key_Right:
        // Returns false where no family folds or unfolds: the key then moves the cursor in the
        // search.
        return atEnd && setUnfolded(m_view->currentIndex().row(), key == Qt::Key_Right);
    case Qt::Key_Return:
    case Qt::Key_Enter:
        choose(m_view->currentIndex().row());
        return true;
    default:
        return false;
    }
}

void FontPopover::paintEvent(QPaintEvent* event)
{
    Popover::paintEvent(event);
    if (m_fonts->rowCount() > 0)
        return;
    QPainter painter(this);
    paintText(painter,
              QRectF(m_view->x() + rowPadding, m_view->y(), fontPopoverContentWidth, fontRowHeight),
              Qt::AlignLeft, Type::body, themeOf(this).text3, u"Ninguna fuente se llama así."_s,
              Qt::ElideNone);
}

bool FontPopover::eventFilter(QObject* object, QEvent* event)
{
    if (object == m_search) {
        const bool press = event->type() == QEvent::KeyPress;
        if ((press || event->type() == QEvent::ShortcutOverride)) {
            const int key = static_cast<QKeyEvent*>(event)->key();
            const bool turnsPage = key == Qt::Key_PageUp || key == Qt::Key_PageDown;
            if (press && pressKey(key))
                return true;
            if (!press && turnsPage) {    // otherwise the window would show another image
                event->accept();
                return true;
            }
        }
    }
    if (object == m_view->viewport() && event->type() == QEvent::MouseButtonPress)
        m_pressX = static_cast<QMouseEvent*>(event)->position().x();
    return Popover::eventFilter(object, event);
}
