#include "app/window/KeysSheet.h"

#include "app/controls/AccessibleRole.h"
#include "app/controls/Caption.h"
#include "app/controls/Grounds.h"
#include "app/controls/KeyHint.h"
#include "app/controls/fields/LineField.h"
#include "app/theme/Painting.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize keysSheetSize(1120, 716);
constexpr ColumnMeasures noColumn{.width = 0, .side = 0, .top = 0};
constexpr int keyColumns = 3, keyColumnGap = 40, keyRowHeight = 32, keyCapHeight = 22,
              keyCapPadding = 6, keyCapGap = 5, keyGroupGap = 16, groupTitleHeight = 28;
constexpr int searchWidth = 280, besideCross = 48;

double keyCapWidth(const QString& key)
{
    if (key == keyOr)
        return std::ceil(textWidth(Type::caption, key));
    return std::max(double(keyCapHeight),
                    std::ceil(textWidth(Type::caption, key)) + 2 * keyCapPadding);
}

// A line with an action at the left and its keys at the right.
class KeyLine : public QWidget {
public:
    explicit KeyLine(const KeyRow& row) : m_row(row)
    {
        setFixedHeight(keyRowHeight);
        setAccessibleRole(this, QAccessible::StaticText);
        setAccessibleName(u"%1: %2"_s.arg(row.text, row.caps.join(u' ')));
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        const Theme& theme = themeOf(this);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillRect(0, height() - 1, width(), 1, theme.line);
        double left = width();
        for (auto key = m_row.caps.crbegin(); key != m_row.caps.crend(); ++key) {
            const double capWidth = keyCapWidth(*key);
            left -= capWidth;
            const QRectF cap(left, (height() - keyCapHeight) / 2.0, capWidth, keyCapHeight);
            if (*key != keyOr)
                fillRounded(painter, cap, Radius::chip, theme.control);
            paintText(painter, cap, Qt::AlignHCenter, Type::caption,
                      *key == keyOr ? theme.text2 : theme.text, *key, Qt::ElideNone);
            left -= keyCapGap;
        }
        paintText(painter, QRectF(0, 0, roomForText(), height()), Qt::AlignLeft, Type::body,
                  theme.text, m_row.text);
    }
    void resizeEvent(QResizeEvent*) override
    {
        const bool isElided = textWidth(Type::body, m_row.text) > roomForText();
        setToolTip(isElided ? plainToolTip(m_row.text) : QString());
    }

private:
    double roomForText() const
    {
        double room = width() - keyCapGap;
        for (const QString& key : m_row.caps)
            room -= keyCapWidth(key) + keyCapGap;
        return std::max(0.0, room);
    }

    const KeyRow m_row;
};

int heightOf(const KeyGroup& group)
{
    return groupTitleHeight + int(group.rows.size()) * keyRowHeight + keyGroupGap;
}

// Puts the groups into columns of like height, in their order.
QWidget* columnsOf(const QList<KeyGroup>& groups)
{
    auto* page = new QWidget;
    auto* columns = new QHBoxLayout(page);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->setSpacing(keyColumnGap);
    int whole = 0;
    for (const KeyGroup& group : groups)
        whole += heightOf(group);
    QList<QVBoxLayout*> rows;
    for (int i = 0; i < keyColumns; ++i) {
        rows.append(new QVBoxLayout);
        rows.last()->setSpacing(0);
        columns->addLayout(rows.last(), 1);
    }
    int before = 0;
    for (const KeyGroup& group : groups) {
        const int middle = before + heightOf(group) / 2;
        QVBoxLayout* column = rows[std::min(keyColumns - 1, middle * keyColumns / whole)];
        auto* title = new Caption(Type::smallMedium, &Theme::text2, group.title);
        title->setFixedHeight(groupTitleHeight);
        column->addWidget(title);
        for (const KeyRow& row : group.rows)
            column->addWidget(new KeyLine(row));
        column->addSpacing(keyGroupGap);
        before += heightOf(group);
    }
    for (QVBoxLayout* column : rows)
        column->addStretch(1);
    return page;
}

}    // namespace

KeysSheet::KeysSheet(const QList<KeyGroup>& groups, QWidget* window)
    : Sheet(u"Atajos de teclado"_s, keysSheetSize, window, noColumn), m_groups(groups),
      m_search(new LineField(u"Buscar acción o tecla"_s, u"Buscar acción o tecla"_s, Icon::search)),
      m_area(new QScrollArea)
{
    auto* head = new QHBoxLayout;
    head->setContentsMargins(0, 0, besideCross, 0);
    head->addWidget(new Caption(Type::sheetTitle, &Theme::text, u"Atajos de teclado"_s), 1);
    m_search->setFixedWidth(searchWidth);
    head->addWidget(m_search);
    content()->addLayout(head);
    content()->addSpacing(Space::column);
    m_area->setFrameShape(QFrame::NoFrame);
    m_area->setFocusPolicy(Qt::NoFocus);
    m_area->verticalScrollBar()->setSingleStep(keyRowHeight);
    m_area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_area->setWidgetResizable(true);
    m_area->viewport()->setAutoFillBackground(false);
    content()->addWidget(m_area, 1);
    content()->addSpacing(Space::medium);
    auto* foot = new QHBoxLayout;
    foot->setSpacing(Space::small);
    foot->addWidget(new IconView(Icon::info, &Theme::text2));
    foot->addWidget(
        new Caption(Type::small, &Theme::text2,
                    u"Las teclas sin Ctrl actúan cuando no estás escribiendo en un campo."_s),
        1);
    foot->addWidget(new KeyHints({{{u"Esc"_s}, u"Cerrar"_s}}));
    content()->addLayout(foot);
    setFirstFocus(m_search);
    connect(m_search, &LineField::textChanged, this, &KeysSheet::showMatching);
    connect(m_search, &LineField::abandoned, this, &Sheet::closeRequested);
    showMatching();
}

QList<KeyGroup> KeysSheet::shown() const
{
    return matchingKeys(m_groups, m_search->text());
}

// Scrolls the list: the search has no use for these keys.
void KeysSheet::keyPressEvent(QKeyEvent* event)
{
    QScrollBar* bar = m_area->verticalScrollBar();
    switch (event->key()) {
    case Qt::Key_Up:
        return bar->triggerAction(QAbstractSlider::SliderSingleStepSub);
    case Qt::Key_Down:
        return bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    case Qt::Key_PageUp:
        return bar->triggerAction(QAbstractSlider::SliderPageStepSub);
    case Qt::Key_PageDown:
        return bar->triggerAction(QAbstractSlider::SliderPageStepAdd);
    default:
        Sheet::keyPressEvent(event);
    }
}

void KeysSheet::showMatching()
{
    const QList<KeyGroup> groups = shown();
    QWidget* page = groups.isEmpty() ? new QWidget : columnsOf(groups);
    if (groups.isEmpty()) {
        auto* rows = new QVBoxLayout(page);
        rows->setContentsMargins(0, 0, 0, 0);
        rows->addWidget(new Caption(Type::body, &Theme::text2, u"Ninguna tecla coincide."_s));
        rows->addStretch(1);
    }
    m_area->setWidget(page);    // deletes the former one
    page->setAutoFillBackground(false);
}
