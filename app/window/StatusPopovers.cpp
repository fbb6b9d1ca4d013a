#include "app/window/StatusPopovers.h"

#include "app/theme/Icons.h"
#include "app/theme/Painting.h"

#include <QListWidget>
#include <QLocale>
#include <QScrollArea>
#include <QScrollBar>
#include <QTextLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int statusMostRows = 6;    // of one sentence

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
            paintStatusIcon(painter, QRectF(12, top + entryMargin, 16, 16), entry.kind, theme, 0);
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
        list->setAccessibleName(u"Archivos del aviso"_qs);
        list->setFrameShape(QFrame::NoFrame);
        list->setFont(fontOf(Type::small));
        list->setUniformItemSizes(true);
        list->setTextElideMode(Qt::ElideMiddle);
        list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        QPalette colors;    // all else as in the program's, also after a change of the theme
        colors.setColor(QPalette::Base, Qt::transparent);
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

}    // namespace

void paintStatusIcon(QPainter& painter, const QRectF& box, StatusKind kind, const Theme& theme,
                     double turn)
{
    if (kind == StatusKind::working)
        paintSpinner(painter, box.adjusted(2, 2, -2, -2), theme.line2, theme.accentLine, turn, 1.8);
    else
        paintIcon(painter, row(kind).icon, box, 16, theme.*row(kind).color);
}

QWidget* historyPopover(const QList<StatusEntry>& history, QSize room, QWidget* parent)
{
    return new HistoryPopover(history, room, parent);
}

QWidget* detailsPopover(const QStringList& details, QSize room, QWidget* parent)
{
    return new DetailsPopover(details, room, parent);
}
