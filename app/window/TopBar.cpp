#include "app/window/TopBar.h"

#include "app/account/UserAccountButton.h"
#include "app/controls/Button.h"
#include "app/controls/Mark.h"
#include "app/controls/fields/SegmentedControl.h"
#include "app/export/ExportButtons.h"

#include <QMenu>

using namespace Qt::StringLiterals;

namespace {

constexpr int topBarHeight = 56, topBarSide = 14, topBarGap = 12, fullLabelsFrom = 1400,
              compactSide = 10;

class MarkButton : public Control {
public:
    explicit MarkButton(QWidget* parent) : Control(parent)
    {
        setAccessibleName(u"Menú"_qs);
        setToolTip(u"Menú"_qs);
        setFixedSize(28, 28);
        setProperty("focusRadius", 8);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setOpacity(isDown() ? 0.86 : 1 - 0.08 * hovered());
        paintMark(painter, themeOf(this));
    }
};

constexpr std::array ratioIcons{Icon::ratio916, Icon::ratio169, Icon::ratio45, Icon::ratio11};

QList<Segment> segmentsOf(const QList<FormatChoice>& formats)
{
    QList<Segment> segments;
    for (const FormatChoice& format : formats) {
        const auto at = std::min(std::size_t(segments.size()), ratioIcons.size() - 1);
        segments.append({
            .icon = ratioIcons[at],
            .text = format.ratio,
            .toolTip = u"%1 · %2 × %3 px"_qs.arg(format.title)
                           .arg(format.pixels.width())
                           .arg(format.pixels.height()),
            .name = u"Formato %1, %2"_qs.arg(format.title, format.spoken),
        });
    }
    return segments;
}

}    // namespace

TopBar::TopBar(const QList<FormatChoice>& formats, QWidget* parent)
    : QWidget(parent), m_mark(new MarkButton(this)),
      m_images(new PushButton(Icon::importImages, u"Imágenes"_qs)),
      m_folder(new PushButton(Icon::importFolder, u"Carpeta"_qs)),
      m_import(new JoinedButtons({m_images, m_folder}, this)),
      m_undo(new IconButton(Icon::undo, u"Deshacer"_qs, 36, this)),
      m_redo(new IconButton(Icon::redo, u"Rehacer"_qs, 36, this)),
      m_formats(new SegmentedControl(segmentsOf(formats), this)),
      m_exports(new ExportButtons(this)),
      m_publish(new PushButton(Icon::publish, u"Publicar"_qs, ButtonKind::soft, ButtonSize::regular,
                               this)),
      m_account(new UserAccountButton(this))
{
    setFixedHeight(topBarHeight);
    setUndo(false);
    setRedo(false);
    connect(m_mark, &Control::clicked, this, [this] {
        if (m_menu)
            m_menu->popup(m_mark->mapToGlobal(QPoint(0, m_mark->height() + 8)));
    });
    connect(m_images, &PushButton::clicked, this, &TopBar::importImagesRequested);
    connect(m_folder, &PushButton::clicked, this, &TopBar::importFolderRequested);
    connect(m_undo, &IconButton::clicked, this, &TopBar::undoRequested);
    connect(m_redo, &IconButton::clicked, this, &TopBar::redoRequested);
    connect(m_formats, &SegmentedControl::chosen, this, &TopBar::formatChosen);
    connect(m_publish, &PushButton::clicked, this, &TopBar::publishRequested);
    connect(m_exports, &ExportButtons::widthChanged, this, &TopBar::place);
    connect(m_account, &UserAccountButton::widthChanged, this, &TopBar::place);
}

void TopBar::setMenu(QMenu* menu)
{
    m_menu = menu;
}

void TopBar::setClass(WindowClass windowClass)
{
    m_class = windowClass;
    place();
}

void TopBar::setFormat(int index)
{
    m_formats->setCurrent(index);
}

void TopBar::setUndo(bool possible)
{
    m_undo->setEnabled(possible);
    m_undo->setToolTip(possible ? u"Deshacer"_qs : u"Nada que deshacer"_qs);
}

void TopBar::setRedo(bool possible)
{
    m_redo->setEnabled(possible);
    m_redo->setToolTip(possible ? u"Rehacer"_qs : u"Nada que rehacer"_qs);
}

// `refusal`: why nothing can be published; empty if something can. `key`: of the command.
void TopBar::setPublishing(const QString& refusal, const QString& key)
{
    m_publish->setEnabled(refusal.isEmpty());
    m_publishTip = refusal.isEmpty() ? u"Publicar · %1"_qs.arg(key) : refusal;
    m_publish->setToolTip(m_publishTip);
}

QList<QWidget*> TopBar::focusOrder() const
{
    return QList<QWidget*>{m_mark, m_images, m_folder, m_undo, m_redo, m_formats} +
           m_exports->focusOrder() + QList<QWidget*>{m_publish, m_account};
}

void TopBar::resizeEvent(QResizeEvent*)
{
    place();
}

void TopBar::place()
{
    const auto put = [](QWidget* widget, int left) {
        const QSize size = widget->sizeHint();
        widget->setGeometry(QRect(QPoint(left, (topBarHeight - size.height()) / 2), size));
        return left + size.width();
    };
    const bool isNarrow = width() < fullLabelsFrom;
    const bool isCompact = m_class == WindowClass::compact;
    m_import->setLabels(isNarrow ? Labels::hidden : Labels::shown);
    using Wording = ExportButtons::Wording;
    m_exports->setWording(isCompact ? Wording::number : isNarrow ? Wording::brief : Wording::whole);
    m_account->setNameForm(isCompact  ? NameForm::none
                           : isNarrow ? NameForm::first
                                      : NameForm::whole);
    const int side = isCompact ? compactSide : topBarSide;
    m_mark->move(side, (topBarHeight - m_mark->height()) / 2);
    int left = put(m_import, side + m_mark->width() + (isCompact ? Space::small : topBarGap));
    m_divider = isCompact ? 0 : left + topBarGap + 1;
    left = put(m_undo, isCompact ? left + Space::small : m_divider + topBarGap + 3);
    left = put(m_redo, left);

    const int account = width() - side + 6 - m_account->sizeHint().width();
    put(m_account, account);
    m_accountDivider = isCompact ? 0 : account - topBarGap;
    const int publishEnd = isCompact ? account - Space::hair : m_accountDivider - topBarGap;
    const int formats = m_formats->sizeHint().width();
    int right = 0;
    // Without its word the publish button leaves room for the formats.
    for (const Labels labels : {Labels::shown, Labels::hidden}) {
        if (isCompact && labels == Labels::shown)
            continue;
        m_publish->setLabels(labels);
        right = publishEnd - m_publish->sizeHint().width();
        put(m_publish, right);
        right -= Space::small + m_exports->sizeHint().width();
        put(m_exports, right);
        right -= Space::small;
        if (right - left >= formats + Space::small)
            break;
    }
    m_publish->setToolTip(m_publishTip);
    // Centres the formats in the bar if they fit there, otherwise between their neighbours.
    const int middle = (width() - formats) / 2;
    const bool alone = middle > left + topBarGap && middle + formats < right - topBarGap;
    put(m_formats, alone ? middle : left + (right - left - formats) / 2);
    update();
}

void TopBar::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.fillRect(rect(), theme.panel);
    painter.fillRect(0, height() - 1, width(), 1, theme.line);
    for (const int divider : {m_divider, m_accountDivider}) {
        if (divider > 0)
            painter.fillRect(divider, 16, 1, 24, theme.line2);
    }
}
