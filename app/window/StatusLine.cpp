#include "app/window/StatusLine.h"

#include "app/controls/Button.h"
#include "app/controls/ProgressBar.h"

#include <QHelpEvent>
#include <QListWidget>
#include <QLocale>
#include <QMouseEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QTextLayout>
#include <QToolTip>

using namespace Qt::StringLiterals;

namespace {

constexpr int statusLineHeight = 28, statusSide = 16;
constexpr int sentenceLeft = statusSide + 24, linkGap = 8;
constexpr int widestHistory = 720, statusMostRows = 6;    // pixels; most rows of one sentence
constexpr int announcePause = 3000, statusTurnTime = 1000, statusFrameTime = 33;    // ms

struct KindRow {
    StatusKind kind;
    Icon icon;
    QColor Theme::*color;
};
constexpr std::array kinds{
    KindRow{StatusKind::note, Icon::info, &Theme::text2},
    KindRow{StatusKind::done, Icon::done, &Theme::ok},
    KindRow{StatusKind::warning, Icon::alert, &Theme::warn},
    KindRow{StatusKind::error, Icon::alert, &Theme::err},
    KindRow{StatusKind::working, Icon::none, &Theme::accentLine},
};
constexpr const KindRow& row(StatusKind kind)
{
    return kinds[std::size_t(kind)];
}
static_assert(std::ranges::all_of(kinds, [](const auto& r) { return &row(r.kind) == &r; }));

void paintState(QPainter& painter, const QRectF& box, StatusKind kind, const Theme& theme,
                double turn)
{
    if (kind == StatusKind::working)
        paintSpinner(painter, box.adjusted(2, 2, -2, -2), theme.line2, theme.accentLine, turn, 1.8);
    else
        paintIcon(painter, row(kind).icon, box, 16, theme.*row(kind).color);
}

// Text of the button that opens the link; empty if there is nothing to open.
QString wordOf(const StatusLink& link)
{
    if (link.isPurchase)
        return u"Comprar créditos"_s;
    if (!link.folder.isEmpty())
        return u"Abrir carpeta"_s;
    return link.details.isEmpty() ? QString() : u"Ver cuáles"_s;
}

// Breaks a sentence into at most statusMostRows rows. The last row may be wider than `width`.
QStringList rowsOf(const QString& sentence, double width)
{
    QTextLayout layout(sentence, fontOf(Type::small));
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    QStringList rows;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        if (rows.size() == statusMostRows - 1) {
            rows.append(sentence.mid(line.textStart()));
            break;
        }
        rows.append(sentence.mid(line.textStart(), line.textLength()));
    }
    layout.endLayout();
    return rows;
}

// Base of the popups above the status line. Being a Qt::Popup, it closes at Esc and then gives the
// focus back.
class LinePopover : public QWidget {
public:
    explicit LinePopover(QWidget* parent)
        : QWidget(parent, Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint)
    {
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_DeleteOnClose);
    }

protected:
    void resizeEvent(QResizeEvent*) override { setMask(roundedRegion(rect(), Radius::popover)); }
    void paintEvent(QPaintEvent*) override
    {
        const Theme& theme = themeOf(this);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        fillRounded(painter, rect(), Radius::popover, theme.elev);
        strokeRounded(painter, rect(), Radius::popover, theme.line2);
    }
};

// Shows sentences with their times, the newest at the bottom.
class HistoryRows : public QWidget {
public:
    // `mostWidth`: the largest width in pixels.
    HistoryRows(const QList<StatusEntry>& history, int mostWidth, QWidget* parent) : QWidget(parent)
    {
        double widest = 200, widestTime = 0;
        for (const StatusEntry& told : history) {
            widest = std::max(widest, textWidth(Type::small, told.sentence));
            widestTime = std::max(widestTime, textWidth(Type::small, timeOf(told)));
        }
        m_timeWidth = qCeil(widestTime);
        const int width = std::min(mostWidth, qCeil(widest) + textLeft + textRight());
        int height = 2 * edge;
        for (const StatusEntry& told : history) {
            // Shows the icon of a note in place of the spinner if the activity that told the
            // sentence has ended.
            const bool isOver = told.kind == StatusKind::working && told.isOutdated;
            const Entry entry{isOver ? StatusKind::note : told.kind,
                              rowsOf(told.sentence, width - textLeft - textRight()), timeOf(told)};
            height += entry.height();
            m_entries.append(entry);
        }
        resize(width, height);
    }
    QString spoken() const
    {
        QStringList sentences;
        for (const Entry& entry : m_entries)
            sentences.append(entry.time + u' ' + entry.rows.join(QString()));
        return sentences.join(u'\n');
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        const Theme& theme = themeOf(this);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        int top = edge;
        for (const Entry& entry : m_entries) {
            const bool newest = &entry == &m_entries.last();
            paintState(painter, QRectF(12, top + entryMargin, 16, 16), entry.kind, theme, 0);
            QRectF row(textLeft, top + entryMargin, width() - textLeft - textRight(), rowHeight);
            paintText(painter, QRectF(row.right() + timeGap, row.y(), m_timeWidth, rowHeight),
                      Qt::AlignRight, Type::small, theme.text3, entry.time, Qt::ElideNone);
            for (const QString& text : entry.rows) {
                paintText(painter, row, Qt::AlignLeft, Type::small,
                          newest ? theme.text : theme.text2, text);
                row.translate(0, rowHeight);
            }
            top += entry.height();
        }
    }

private:
    static constexpr int edge = 8, textLeft = 36, entryMargin = 5, timeGap = 16;
    static constexpr int rowHeight = row(Type::small).lineHeight;
    struct Entry {
        StatusKind kind;
        QStringList rows;
        QString time;
        int height() const { return int(rows.size()) * rowHeight + 2 * entryMargin; }
    };
    static QString timeOf(const StatusEntry& told)
    {
        const bool isOfToday = told.time.date() == QDate::currentDate();
        return QLocale(QLocale::Spanish)
            .toString(told.time, isOfToday ? u"HH:mm"_s : u"d MMM HH:mm"_s);
    }
    int textRight() const { return timeGap + m_timeWidth + 12; }

    QList<Entry> m_entries;
    int m_timeWidth = 0;
};

// Shows the sentences, and scrolls if they do not fit.
class HistoryPopover : public LinePopover {
public:
    // `room`: the largest size of the popup, in pixels.
    HistoryPopover(const QList<StatusEntry>& history, QSize room, QWidget* parent)
        : LinePopover(parent)
    {
        auto* rows = new HistoryRows(history, room.width() - scrollBarRoom, this);
        auto* area = new QScrollArea(this);
        area->setAccessibleName(rows->spoken());
        area->setFrameShape(QFrame::NoFrame);
        area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        area->viewport()->setAutoFillBackground(false);
        area->setWidget(rows);
        rows->setAutoFillBackground(false);
        const bool scrolls = rows->height() > room.height();
        resize(rows->width() + (scrolls ? scrollBarRoom : 0),
               std::min(rows->height(), room.height()));
        area->setGeometry(rect());
        setFocusProxy(area);
    }

protected:
    // Scrolls to the newest sentence here, because the scroll bar has its range only when it is
    // shown.
    void showEvent(QShowEvent* event) override
    {
        LinePopover::showEvent(event);
        for (QScrollBar* bar : findChildren<QScrollBar*>())
            bar->setValue(bar->maximum());
    }

private:
    static constexpr int scrollBarRoom = 16;
};

// A scrolling list of names.
class DetailsPopover : public LinePopover {
public:
    DetailsPopover(const QStringList& details, QSize room, QWidget* parent) : LinePopover(parent)
    {
        auto* list = new QListWidget(this);
        list->setAccessibleName(u"Archivos que no se han podido leer"_qs);
        list->setFrameShape(QFrame::NoFrame);
        list->setFont(fontOf(Type::small));
        list->setUniformItemSizes(true);
        list->setTextElideMode(Qt::ElideMiddle);
        list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        QPalette colors = list->palette();
        colors.setColor(QPalette::Base, Qt::transparent);
        colors.setColor(QPalette::Text, themeOf(this).text);
        list->setPalette(colors);
        double widest = 200;
        for (const QString& detail : details) {
            auto* row = new QListWidgetItem(detail, list);
            row->setSizeHint({0, rowHeight});
            row->setToolTip(plainToolTip(detail));
            widest = std::max(widest, textWidth(Type::small, detail));
        }
        list->setCurrentRow(0);
        setFocusProxy(list);
        const qsizetype rows = std::clamp<qsizetype>((room.height() - 2 * edge) / rowHeight, 1, 12);
        resize(std::min(room.width(), qCeil(widest) + 2 * edge + scrollBarRoom),
               int(std::min(rows, details.size())) * rowHeight + 2 * edge);
        list->setGeometry(rect().adjusted(edge, edge, -edge, -edge));
    }

private:
    static constexpr int edge = 8, rowHeight = 26, scrollBarRoom = 28;
};

// A button without a frame, in text as small as the sentence before it.
class SentenceLink : public Control {
public:
    explicit SentenceLink(QWidget* parent) : Control(parent)
    {
        setAccessibleName(u"Enlace del aviso"_qs);    // for screen readers, until it has a text
        setCursor(Qt::PointingHandCursor);
        setProperty("focusRadius", Radius::chip);
    }
    QSize sizeHint() const override
    {
        return {qCeil(textWidth(Type::smallMedium, text())) + 2 * padding, linkHeight};
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        const Theme& theme = themeOf(this);
        QPainter painter(this);
        paintText(painter, QRectF(rect()).adjusted(padding, 0, 0, 0), Qt::AlignLeft,
                  Type::smallMedium, mixed(theme.accentText, theme.text, hovered()), text(),
                  Qt::ElideNone);
    }

private:
    static constexpr int padding = 4, linkHeight = 20;
};

}    // namespace

StatusLine::StatusLine(QWidget* parent)
    : QWidget(parent), m_bar(new ProgressBar(this)),
      m_stop(new IconButton(Icon::close, u"Cancelar"_qs, 24, this)), m_link(new SentenceLink(this)),
      m_hints(new KeyHints({}, this))
{
    m_link->hide();
    setFixedHeight(statusLineHeight);
    m_stop->setIconSize(16);
    m_stop->hide();
    m_bar->hide();
    m_spin.setInterval(statusFrameTime);
    m_announceLater.setSingleShot(true);
    connect(&m_announceLater, &QTimer::timeout, this, &StatusLine::announce);
    connect(m_stop, &IconButton::clicked, this, &StatusLine::stopRequested);
    connect(m_link, &Control::clicked, this, &StatusLine::linkRequested);
    connect(&m_spin, &QTimer::timeout, this, [this] {
        m_turn = std::fmod(m_turn + double(statusFrameTime) / statusTurnTime, 1.0);
        update(0, 0, statusSide + 20, height());
    });
}

void StatusLine::setStatus(const StatusEntry& told, const std::optional<Activity>& underWay)
{
    const bool isSame = told.sentence == m_told.sentence && told.kind == m_told.kind;
    m_told = told;
    m_underWay = underWay;
    const bool isStep = told.kind == StatusKind::working;
    showParts();
    if (isStep)
        m_spin.start();
    else
        m_spin.stop();
    if (!isSame) {
        // Announces at most one step every three seconds: fast work would make a screen reader talk
        // without end.
        const qint64 since = m_announced.isValid() ? m_announced.elapsed() : announcePause;
        if (isStep && since < announcePause)
            m_announceLater.start(int(announcePause - since));
        else
            announce();
    }
    place();
    update();
}

void StatusLine::showParts()
{
    const QString link = wordOf(m_told.link);
    const bool hasLink = !link.isEmpty();
    const bool stops = m_underWay && m_underWay->stop;
    // Unlike hasFocus(), focusWidget() also works in an inactive window.
    const QWidget* focused = window()->focusWidget();
    const bool losesFocus = (focused == m_link && !hasLink) || (focused == m_stop && !stops);
    m_bar->setValue(m_underWay ? m_underWay->fraction() : std::nullopt);
    m_bar->setVisible(m_underWay.has_value());
    m_stop->setVisible(stops);
    m_hints->setVisible(!m_underWay);
    if (hasLink) {
        m_link->setText(link);
        m_link->setAccessibleName(link);
    }
    m_link->setVisible(hasLink);
    if (losesFocus)
        Q_EMIT leaveRequested();
}

QList<QWidget*> StatusLine::focusOrder() const
{
    return {m_link, m_stop};
}

void StatusLine::announce()
{
    m_announceLater.stop();
    m_announced.start();
    setAccessibleName(m_told.sentence);
}

void StatusLine::setKeyHints(const QList<KeyHint>& hints)
{
    m_hints->setHints(hints);
    place();
}

void StatusLine::resizeEvent(QResizeEvent*)
{
    place();
}

void StatusLine::place()
{
    int right = width() - statusSide;
    if (!m_stop->isHidden()) {
        m_stop->move(right - m_stop->width() + 6, (height() - m_stop->height()) / 2 + 1);
        right -= m_stop->width();
    }
    const int percentage = 38;
    m_bar->setGeometry(right - percentage - 180, (height() - 4) / 2 + 1, 180, 4);
    const int hints = std::min(m_hints->sizeHint().width(), width() / 2);
    m_hints->setGeometry(width() - statusSide - hints, (height() - 20) / 2 + 1, hints, 20);
    const QSize link = m_link->sizeHint();
    const int after = sentenceLeft + qCeil(textWidth(Type::small, m_told.sentence)) + linkGap;
    const int left = std::max(sentenceLeft, std::min(after, sentenceEnd() - link.width()));
    m_link->setGeometry(QRect(QPoint(left, (height() - link.height()) / 2 + 1), link));
}

int StatusLine::sentenceEnd() const
{
    return (m_bar->isHidden() ? m_hints->x() : m_bar->x()) - Space::large;
}

QRect StatusLine::sentenceRect() const
{
    const int right = m_link->isHidden() ? sentenceEnd() : m_link->x() - linkGap;
    return {sentenceLeft, 1, std::max(0, right - sentenceLeft), height() - 1};
}

void StatusLine::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), theme.panel);
    painter.fillRect(0, 0, width(), 1, theme.line);
    if (!m_told.sentence.isEmpty())
        paintState(painter, QRectF(statusSide, (height() - 16) / 2.0 + 1, 16, 16), m_told.kind,
                   theme, m_turn);
    paintText(painter, sentenceRect(), Qt::AlignLeft, Type::small, theme.text2, m_told.sentence);
    if (const auto fraction = m_underWay ? m_underWay->fraction() : std::nullopt) {
        const int percent = qRound(std::clamp(*fraction, 0.0, 1.0) * 100);
        paintText(painter, QRectF(m_bar->geometry().right() + 1, 1, 38, height() - 1),
                  Qt::AlignRight, Type::small, theme.text2, u"%1 %"_qs.arg(percent), Qt::ElideNone);
    }
}

// Shows the tooltip without setToolTip(): a screen reader would read the tooltip's markup as the
// description of the widget.
bool StatusLine::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const bool isCut = textWidth(Type::small, m_told.sentence) > sentenceRect().width();
    if (!isCut || !sentenceRect().contains(help->pos())) {
        QToolTip::hideText();
    } else {
        // Rich text, because Qt does not break plain text in a tooltip into lines, and the sentence
        // may be wider than the screen.
        QToolTip::showText(help->globalPos(),
                           u"<qt>%1</qt>"_qs.arg(m_told.sentence.toHtmlEscaped()), this,
                           sentenceRect());
    }
    return true;
}

void StatusLine::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && sentenceRect().contains(event->position().toPoint()))
        Q_EMIT historyRequested();
}

void StatusLine::showHistory(const QList<StatusEntry>& history)
{
    if (!history.isEmpty())
        popUp(new HistoryPopover(history, popoverRoom(), this));
}

void StatusLine::showDetails(const QStringList& details)
{
    if (!details.isEmpty())
        popUp(new DetailsPopover(details, popoverRoom(), this));
}

QSize StatusLine::popoverRoom() const
{
    const int above = mapTo(window(), QPoint()).y();
    return {std::clamp(width() - 2 * statusSide, 240, widestHistory), above - 2 * Space::small};
}

void StatusLine::popUp(QWidget* popover) const
{
    popover->move(mapToGlobal(QPoint(8, -popover->height() - 4)));
    popover->show();
    popover->setFocus(Qt::PopupFocusReason);
}
