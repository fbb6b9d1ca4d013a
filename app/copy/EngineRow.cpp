#include "app/copy/EngineRow.h"

#include "app/controls/AccessibleRole.h"
#include "app/controls/Button.h"
#include "app/controls/Paragraph.h"
#include "app/controls/ProgressBar.h"
#include "app/controls/Spinner.h"
#include "app/theme/Icons.h"
#include "app/theme/Painting.h"

#include <QHelpEvent>
#include <QPainterPath>
#include <QToolTip>

using namespace Qt::StringLiterals;

namespace {

constexpr int narrowRow = 280;    // pixels
constexpr int rowHeight = 44, settingsSide = 32, engineRadius = 10, barHeight = 3;
constexpr int installMiddle = 88, lowInstallMiddle = 92, belowInstall = 28;
constexpr int enginePadding = 12, engineIcon = 20, engineSpinner = 18, nameLeft = 42, wideGap = 16,
              asideGap = 8;
constexpr int mostFailureRows = 6;    // the tooltip tells the rest of a longer message
constexpr int failureTop = 27, failureBottom = 10;
constexpr int engineLine = row(Type::caption).lineHeight,
              nameHeight = row(Type::heading).lineHeight;

struct LookRow {
    EngineLook look;
    Icon icon;
    QColor Theme::*iconInk;
    QColor Theme::*ink;    // of the sentence
};
constexpr std::array looks{
    LookRow{EngineLook::idle, Icon::localEngine, &Theme::text2, &Theme::text2},
    LookRow{EngineLook::absent, Icon::localEngine, &Theme::text2, &Theme::text2},
    LookRow{EngineLook::ready, Icon::localEngine, &Theme::ok, &Theme::text2},
    LookRow{EngineLook::installing, Icon::none, &Theme::text2, &Theme::text2},
    LookRow{EngineLook::failed, Icon::alert, &Theme::err, &Theme::err},
    LookRow{EngineLook::cloud, Icon::modeCloud, &Theme::accentText, &Theme::text2},
};
constexpr const LookRow& row(EngineLook look)
{
    return looks[std::size_t(look)];
}
static_assert(std::ranges::all_of(looks, [](const auto& r) { return &row(r.look) == &r; }));

// The bar along the bottom of the row, inside its round corners.
class RowBar : public ProgressBar {
public:
    explicit RowBar(QWidget* parent) : ProgressBar(parent)
    {
        setFixedHeight(barHeight);
        setAccessibleName(u"Instalación"_s);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        const Theme& theme = themeOf(this);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath outline;
        outline.addRoundedRect(QRectF(0, height() - rowHeight, width(), rowHeight), engineRadius,
                               engineRadius);
        painter.setClipPath(outline);
        painter.fillRect(rect(), theme.line2);
        painter.fillRect(filled(), theme.accentLine);
    }
};

// In a narrow row the button is the whole row, which paints itself.
class SettingsButton : public IconButton {
public:
    using IconButton::IconButton;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        if (width() < parentWidget()->width())
            IconButton::paintEvent(event);
    }
};

}    // namespace

EngineRow::EngineRow(QWidget* parent)
    : QWidget(parent), m_licence(new PushButton(Icon::none, u"Licencia"_s, ButtonKind::link,
                                                ButtonSize::small, this)),
      m_install(
          new PushButton(Icon::updates, u"Instalar"_s, ButtonKind::soft, ButtonSize::small, this)),
      m_again(
          new PushButton(Icon::none, u"Instalar"_s, ButtonKind::neutral, ButtonSize::small, this)),
      m_cancel(new IconButton(Icon::close, u"Cancelar instalación"_s, 28, this)),
      m_settings(new SettingsButton(Icon::preferences, u"Ajustes de la IA local"_s, 32, this)),
      m_spinner(new Spinner(engineSpinner, this)), m_bar(new RowBar(this))
{
    setAccessibleRole(this, QAccessible::Grouping);
    m_cancel->setFixedSize(28, 32);
    m_cancel->setIconSize(18);
    m_settings->setIconSize(18);
    m_licence->setToolTip(u"Leer la licencia del modelo en el navegador"_s);
    connect(m_licence, &PushButton::clicked, this, &EngineRow::licenceRequested);
    connect(m_install, &PushButton::clicked, this, &EngineRow::installRequested);
    connect(m_again, &PushButton::clicked, this, &EngineRow::installRequested);
    connect(m_cancel, &IconButton::clicked, this, &EngineRow::cancelRequested);
    connect(m_settings, &IconButton::clicked, this, &EngineRow::settingsRequested);
    showButtons();
    place();
}

void EngineRow::setShown(const EngineShown& shown)
{
    if (shown == m_shown)
        return;
    m_shown = shown;
    setAccessibleName(shown.name);
    QStringList told{shown.sentence, shown.aside, shown.about};
    told.removeAll(QString());
    setAccessibleDescription(told.join(u' '));
    m_bar->setValue(shown.progress);
    showButtons();
    place();
    update();
}

QList<QWidget*> EngineRow::focusOrder() const
{
    return {m_licence, m_install, m_again, m_cancel, m_settings};
}

void EngineRow::showButtons()
{
    const EngineLook look = m_shown.look;
    const QWidget* focused = window()->focusWidget();
    const bool hadFocus = focused && focused->parentWidget() == this;
    m_licence->setVisible(look == EngineLook::absent && m_shown.hasLicence);
    m_install->setVisible(look == EngineLook::absent);
    m_again->setVisible(look == EngineLook::failed);
    m_cancel->setVisible(look == EngineLook::installing && m_shown.canCancel);
    m_settings->setVisible(look == EngineLook::ready);
    m_spinner->setVisible(look == EngineLook::installing);
    m_bar->setVisible(look == EngineLook::installing);
    if (!hadFocus || !focused->isHidden())
        return;
    // Whoever pressed "Instalar" by key can press what came in its place.
    for (QWidget* button : {static_cast<QWidget*>(m_again), static_cast<QWidget*>(m_install),
                            static_cast<QWidget*>(m_cancel), static_cast<QWidget*>(m_settings)}) {
        if (!button->isHidden())
            return button->setFocus(Qt::OtherFocusReason);
    }
}

double EngineRow::textEnd() const
{
    switch (m_shown.look) {
    case EngineLook::ready:
        return isNarrow() ? width() - enginePadding : m_settings->x() - Space::hair;
    case EngineLook::failed:
        return m_again->x() - wideGap;
    case EngineLook::installing:
        return m_shown.canCancel ? m_cancel->x() - Space::hair : width() - enginePadding;
    case EngineLook::absent:
        return m_shown.hasLicence ? m_licence->x() - Space::hair : width() - enginePadding;
    case EngineLook::idle:
    case EngineLook::cloud:
        return width() - enginePadding;
    }
    Q_UNREACHABLE();
}

bool EngineRow::isNarrow() const
{
    return width() < narrowRow;
}

// A narrow row of an engine that is ready tells this in the tooltip alone.
QString EngineRow::shownAside() const
{
    return isNarrow() && m_shown.look == EngineLook::ready ? QString() : m_shown.aside;
}

QRectF EngineRow::nameBox() const
{
    const double end = shownAside().isEmpty() ? textEnd() : asideBox().left() - double(asideGap);
    double top = 6;
    if (m_shown.look == EngineLook::absent)
        top = 11;
    else if (m_shown.look == EngineLook::failed)
        top = 9;
    return {nameLeft, top, std::max(0.0, end - nameLeft), nameHeight};
}

QRectF EngineRow::iconBox() const
{
    const bool isLow = m_shown.look != EngineLook::absent && m_shown.look != EngineLook::failed;
    const double middle = isLow ? rowHeight / 2.0 : nameBox().center().y();
    return {enginePadding, middle - engineIcon / 2.0, engineIcon, engineIcon};
}

QRectF EngineRow::asideBox() const
{
    const double text = std::ceil(textWidth(Type::caption, shownAside()));
    const double widest = (textEnd() - nameLeft) * 0.6;
    const double width = std::min(text, widest);
    return {textEnd() - width, 6, width, nameHeight};
}

QRectF EngineRow::sentenceBox() const
{
    if (m_shown.look == EngineLook::absent)
        return {enginePadding, 0, std::max(0.0, m_install->x() - asideGap - double(enginePadding)),
                engineLine};
    const double top = m_shown.look == EngineLook::failed ? failureTop : 23;
    return {nameLeft, top, std::max(0.0, textEnd() - nameLeft), engineLine};
}

QStringList EngineRow::sentenceRows() const
{
    int most = 1;
    if (m_shown.look == EngineLook::failed)
        most = mostFailureRows;
    else if (m_shown.look == EngineLook::absent)
        most = 3;
    return wrappedRows(m_shown.sentence, Type::caption, sentenceBox().width(), most);
}

QList<EngineRow::Line> EngineRow::lines() const
{
    QList<Line> lines;
    const QStringList rows = sentenceRows();
    QRectF box = sentenceBox();
    if (m_shown.look == EngineLook::absent)    // in the middle beside the button
        box.moveTop(m_install->geometry().center().y() + 1 - double(rows.size()) * engineLine / 2);
    for (const QString& text : rows) {
        lines.append({box, text});
        box.translate(0, engineLine);
    }
    if (m_shown.look != EngineLook::absent)
        return lines;
    QRectF about(enginePadding, 36, width() - 2 * enginePadding, engineLine);
    for (const QString& text : wrappedRows(m_shown.about, Type::caption, about.width(), 2)) {
        lines.append({about, text});
        about.translate(0, engineLine);
    }
    return lines;
}

void EngineRow::place()
{
    const auto put = [this](QWidget* button, int fromRight, double middle) {
        const QSize size =
            button->sizeHint().expandedTo(button->minimumSize()).boundedTo(button->maximumSize());
        button->setGeometry(
            QRect(QPoint(width() - fromRight - size.width(), qRound(middle - size.height() / 2.0)),
                  size));
    };
    // The widths of these buttons decide how the sentence breaks.
    put(m_again, enginePadding, 0);
    put(m_install, enginePadding, installMiddle);
    const auto sentences = int(sentenceRows().size());
    if (sentences > 2)    // room between the three rows and those above
        put(m_install, enginePadding, lowInstallMiddle);
    int height = rowHeight;
    if (m_shown.look == EngineLook::absent)
        height = m_install->geometry().center().y() + 1 + belowInstall;
    else if (m_shown.look == EngineLook::failed)
        height = std::max(rowHeight, failureTop + sentences * engineLine + failureBottom);
    if (height != this->height() || height != maximumHeight())
        setFixedHeight(height);
    put(m_licence, enginePadding - 6, 20);    // a link has a padding of its own
    put(m_again, enginePadding, height / 2.0);
    put(m_cancel, Space::hair, rowHeight / 2.0);
    if (isNarrow())
        m_settings->setFixedSize(size());
    else
        m_settings->setFixedSize(settingsSide, settingsSide);
    put(m_settings, isNarrow() ? 0 : Space::hair, rowHeight / 2.0);
    QStringList told{isNarrow() ? m_shown.aside : QString(), m_settings->accessibleName()};
    told.removeAll(QString());
    m_settings->setToolTip(plainToolTip(told.join(u'\n')));
    m_spinner->move(enginePadding + (engineIcon - engineSpinner) / 2,
                    (rowHeight - engineSpinner) / 2);
    m_bar->setGeometry(0, height - barHeight, width(), barHeight);
}

void EngineRow::resizeEvent(QResizeEvent*)
{
    place();
}

// Tells in a tooltip what is elided.
bool EngineRow::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const bool isElided = textWidth(Type::heading, m_shown.name) > nameBox().width() ||
                          std::ranges::any_of(lines(), [](const Line& line) {
                              return textWidth(Type::caption, line.text) > line.box.width();
                          });
    if (!isElided) {
        QToolTip::hideText();
        return true;
    }
    QStringList told{m_shown.name, m_shown.about, m_shown.sentence, m_shown.aside};
    told.removeAll(QString());
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), plainToolTip(told.join(u'\n')),
                       this);
    return true;
}

void EngineRow::paintEvent(QPaintEvent*)
{
    const LookRow& look = row(m_shown.look);
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), engineRadius, theme.card);
    strokeRounded(painter, rect(), engineRadius, theme.line);
    paintIcon(painter, look.icon, iconBox(), engineIcon, theme.*look.iconInk);
    paintText(painter, nameBox(), Qt::AlignLeft, Type::heading, theme.text, m_shown.name);
    paintText(painter, asideBox(), Qt::AlignRight, Type::caption, theme.text3, shownAside());
    for (const Line& line : lines())
        paintText(painter, line.box, Qt::AlignLeft, Type::caption, theme.*look.ink, line.text);
}
