#include "app/controls/popovers/Sheet.h"

#include "app/controls/Button.h"
#include "app/controls/Caption.h"
#include "app/controls/popovers/FocusRound.h"
#include "app/theme/KeyboardFocus.h"
#include "app/theme/PointerEvents.h"
#include "app/theme/WindowClass.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QStyle>

using namespace Qt::StringLiterals;

namespace {

constexpr int sheetWindowMargin = 24, compactSheetMargin = 12, riseTime = 180;    // riseTime in ms
constexpr double riseFrom = 0.98;
constexpr int contentSide = 32, contentTop = 22, contentBottom = 24;

// Paints the background of the sheet's box and of its column.
class Box : public QWidget {
public:
    Box(int columnWidth, QWidget* parent) : QWidget(parent), m_columnWidth(columnWidth) {}

protected:
    void paintEvent(QPaintEvent*) override
    {
        const Theme& theme = themeOf(this);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        fillRounded(painter, rect(), Radius::sheet, theme.panel);
        if (m_columnWidth > 0) {
            fillRounded(painter, QRectF(0, 0, m_columnWidth, height()), Corners{Radius::sheet, 0},
                        theme.bg);
            painter.fillRect(QRectF(m_columnWidth, 0, 1, height()), theme.line);
        }
        strokeRounded(painter, rect(), Radius::sheet, theme.line2);
    }

private:
    const int m_columnWidth;
};

// Tells screen readers that the sheet is modal.
class SheetAccessible : public QAccessibleWidget {
public:
    explicit SheetAccessible(Sheet* sheet) : QAccessibleWidget(sheet, QAccessible::Dialog) {}
    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.modal = true;
        return state;
    }
};

QAccessibleInterface* accessibleSheetOf(const QString&, QObject* object)
{
    auto* sheet = qobject_cast<Sheet*>(object);
    return sheet ? new SheetAccessible(sheet) : nullptr;
}

}    // namespace

Sheet::Sheet(const QString& title, QSize size, QWidget* window, const ColumnMeasures& column)
    : QWidget(window), m_size(size), m_box(new Box(column.width, this)), m_column(new QVBoxLayout),
      m_content(new QVBoxLayout), m_close(new IconButton(Icon::close, u"Cerrar"_s, 32, m_box))
{
    QAccessible::installFactory(accessibleSheetOf);
    hide();
    setFocusPolicy(Qt::ClickFocus);
    setAccessibleName(title);
    m_close->setAccessibleName(u"Cerrar la hoja"_s);    // a sheet may have a button "Cerrar", too
    auto* columns = new QHBoxLayout(m_box);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->setSpacing(0);
    auto* left = new QWidget;
    left->setFixedWidth(column.width);
    left->setVisible(column.width > 0);
    left->setLayout(m_column);
    m_column->setContentsMargins(column.side, column.top, column.side, column.top);
    m_column->setSpacing(2);
    auto* heading = new Caption(Type::sheetTitle, &Theme::text, title);
    auto* headingRow = new QHBoxLayout;
    headingRow->setContentsMargins(column.headingGap, 0, 0, column.headingGap);
    headingRow->addWidget(heading);
    m_column->addLayout(headingRow);
    m_content->setContentsMargins(contentSide, contentTop, contentSide, contentBottom);
    m_content->setSpacing(0);
    columns->addWidget(left);
    columns->addLayout(m_content, 1);
    connect(m_close, &IconButton::clicked, this, &Sheet::closeRequested);
    window->installEventFilter(this);
    m_rise.setDuration(riseTime);
    m_rise.setStartValue(0.0);
    m_rise.setEndValue(1.0);
    m_rise.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_rise, &QVariantAnimation::valueChanged, this, [this] { update(); });
    connect(&m_rise, &QVariantAnimation::finished, this, &Sheet::finishRise);
}

void Sheet::present()
{
    if (m_isPresented)
        return;
    m_isPresented = true;
    m_before = window()->focusWidget();
    place();
    show();
    raise();
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { keepFocus(now); });
    QWidget* first = m_firstFocus ? m_firstFocus.data() : m_close;
    first->setFocus(KeyboardFocus::reason());
    if (style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0 &&
        window()->isVisible()) {
        // During the animation paintEvent() paints a picture of the box. The box itself is placed
        // below the bottom edge of the window; hidden, it would lose the focus.
        m_picture = m_box->grab();
        m_rise.start();
        place();
    }
}

void Sheet::dismiss()
{
    if (!m_isPresented)
        return;
    m_isPresented = false;
    disconnect(qApp, &QApplication::focusChanged, this, nullptr);
    m_rise.stop();
    finishRise();
    hide();
    if (m_before && m_before->isVisible() && m_before->isEnabled())
        m_before->setFocus(KeyboardFocus::reason());
    m_before = nullptr;
    m_last = nullptr;
}

void Sheet::finishRise()
{
    m_picture = {};
    place();
    update();
}

void Sheet::place()
{
    setGeometry(parentWidget()->rect());
    const bool isCompact = windowClassOf(size()) == WindowClass::compact;
    const int margin = 2 * (isCompact ? compactSheetMargin : sheetWindowMargin);
    const QSize room = size() - QSize(margin, margin);
    QRect box(QPoint(), m_size.boundedTo(room));
    box.moveCenter(rect().center());
    if (m_rise.state() == QAbstractAnimation::Running)
        box.moveTop(height() + sheetWindowMargin);
    m_box->setGeometry(box);
    m_close->move(m_box->width() - m_close->width() - 16, 16);
    m_close->raise();
}

// Takes the focus back from a widget behind the sheet, and takes it when no widget has it any more:
// otherwise keys would not reach the sheet.
void Sheet::keepFocus(QWidget* now)
{
    if (!now) {
        // Queued, because the widget that loses the focus may be on its way out or hand it on.
        const auto take = [this] {
            if (m_isPresented && window()->isActiveWindow() && !window()->focusWidget())
                setFocus(Qt::OtherFocusReason);
        };
        QMetaObject::invokeMethod(this, take, Qt::QueuedConnection);
        return;
    }
    if (now->window() != window() || !isVisible())
        return;
    if (isAncestorOf(now))
        m_last = now;
    else if (now != this)
        (m_last ? m_last.data() : m_close)->setFocus(Qt::OtherFocusReason);
}

bool Sheet::event(QEvent* event)
{
    if (!isPointerEvent(event))
        return QWidget::event(event);
    event->accept();
    return true;
}

bool Sheet::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::Resize && m_isPresented && object == parentWidget())
        place();
    return QWidget::eventFilter(object, event);
}

bool Sheet::focusNextPrevChild(bool next)
{
    moveFocusRound(this, next);
    return true;
}

void Sheet::keyPressEvent(QKeyEvent* event)
{
    event->accept();    // keeps every key from the window
    if (event->key() == Qt::Key_Escape)
        Q_EMIT closeRequested();
    else
        pressFocused(event, this);
}

void Sheet::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    const double share = m_picture.isNull() ? 1 : m_rise.currentValue().toDouble();
    painter.fillRect(rect(), withOpacity(theme.scrim, share));
    QRectF box = m_box->geometry();
    if (!m_picture.isNull()) {
        box.moveCenter(QRectF(rect()).center());
        painter.setOpacity(share);
        painter.translate(box.center());
        painter.scale(riseFrom + (1 - riseFrom) * share, riseFrom + (1 - riseFrom) * share);
        painter.translate(-box.center());
    }
    paintShadow(painter, box.adjusted(12, 12, -12, -12),
                {.offset = 24, .blur = 70, .color = theme.shadow});
    if (!m_picture.isNull()) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawPixmap(box.topLeft(), m_picture);
    }
}
