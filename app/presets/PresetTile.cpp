#include "app/presets/PresetTile.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>

using namespace Qt::StringLiterals;

namespace {
constexpr int presetCaptionGap = 4, presetCaptionHeight = 20, moreSide = 20, tickSide = 16,
              narrowTile = 88, roomForMore = 80;
constexpr double ringWidth = 2;
}    // namespace

PresetTile::PresetTile(QWidget* parent)
    : Control(parent), m_more(new IconButton(Icon::more, u"Más acciones"_s, moreSide, this))
{
    // The grid takes the keyboard focus, and shows the focus ring on one of its tiles.
    setFocusPolicy(Qt::NoFocus);
    setProperty("focusRadius", Radius::thumbnail);
    m_more->setIconSize(16);
    m_more->setFocusPolicy(Qt::NoFocus);
    connect(m_more, &IconButton::clicked, this, &PresetTile::showMenu);
}

int PresetTile::heightFor(int width, double ratio)
{
    return qRound(width / ratio) + presetCaptionGap + presetCaptionHeight;
}

void PresetTile::setPreset(const Preset& preset)
{
    if (preset == m_preset)
        return;
    m_preset = preset;
    nameParts();
    update();
}

void PresetTile::setRefusal(const QString& reason)
{
    if (reason == m_refusal)
        return;
    m_refusal = reason;
    nameParts();
    update();
}

void PresetTile::nameParts()
{
    QString name = m_preset.name;
    if (m_preset.chosen)
        name += u", aplicada"_s;
    setAccessibleName(name);
    setAccessibleDescription(m_refusal);
    // Escapes the name: it may come from a file and look like markup.
    setToolTip(
        u"<qt>%1</qt>"_s.arg((m_refusal.isEmpty() ? m_preset.name : m_refusal).toHtmlEscaped()));
    m_more->setAccessibleName(u"Más acciones de %1"_s.arg(m_preset.name));
}

QRect PresetTile::pictureRect() const
{
    return {0, 0, width(), std::max(1, height() - presetCaptionGap - presetCaptionHeight)};
}

QSize PresetTile::picturePixels() const
{
    return (QSizeF(pictureRect().size()) * devicePixelRatioF()).toSize();
}

void PresetTile::setPicture(const QImage& picture)
{
    // A null picture could not be drawn: the old one stays. m_isAwaited stays true, so that
    // pictureWanted() is not emitted again before outdatePicture().
    if (picture.isNull())
        return;
    m_isAwaited = false;
    m_isOutdated = false;
    m_picture = picture;
    update();
}

void PresetTile::outdatePicture()
{
    m_isOutdated = true;
    m_isAwaited = false;
    update();
}

// In a narrow tile the name needs the width: the menu button is visible only while the pointer is
// on the tile.
void PresetTile::showMore()
{
    m_more->setVisible(width() >= roomForMore || underMouse());
    update();
}

void PresetTile::enterEvent(QEnterEvent* event)
{
    Control::enterEvent(event);
    showMore();
}

void PresetTile::leaveEvent(QEvent* event)
{
    Control::leaveEvent(event);
    showMore();
}

QRect PresetTile::captionRect() const
{
    return {0, height() - presetCaptionHeight, width(), presetCaptionHeight};
}

// In a narrow tile the name needs the width: the chosen preset is marked only by the ring around
// its picture.
bool PresetTile::hasTick() const
{
    return m_preset.chosen && width() >= narrowTile;
}

double PresetTile::captionRoom() const
{
    return width() - (m_more->isVisible() ? moreSide + 2 : 0) - (hasTick() ? tickSide + 2 : 0);
}

void PresetTile::showMenu()
{
    askForMenu(mapToGlobal(m_more->geometry().bottomLeft()));
}

void PresetTile::askForMenu(QPoint globalPosition)
{
    Q_EMIT menuRequested(globalPosition);
    if (QWidget* menu = QApplication::activePopupWidget()) {
        connect(menu, &QObject::destroyed, m_more, &Control::lookForPointer);
        connect(menu, &QObject::destroyed, this, &PresetTile::showMore);
        connect(menu, &QObject::destroyed, this, &Control::lookForPointer);
    }
}

bool PresetTile::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip && m_refusal.isEmpty() &&
        textWidth(Type::small, m_preset.name) <= captionRoom())
        return true;    // no tooltip: the whole name can be read below the picture
    return Control::event(event);
}

void PresetTile::resizeEvent(QResizeEvent*)
{
    m_more->move(width() - moreSide, height() - presetCaptionHeight);
    showMore();
}

// Leaves all keys to PresetGrid.
void PresetTile::keyPressEvent(QKeyEvent* event)
{
    event->ignore();
}

void PresetTile::contextMenuEvent(QContextMenuEvent* event)
{
    askForMenu(event->globalPos());
}

void PresetTile::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    if (!m_isAwaited && (m_isOutdated || m_picture.size() != picturePixels())) {
        m_isAwaited = true;
        QMetaObject::invokeMethod(this, &PresetTile::pictureWanted, Qt::QueuedConnection);
    }
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const QRectF box = pictureRect();
    if (m_picture.isNull()) {
        fillRounded(painter, box, Radius::thumbnail, theme.empty);
    } else {
        QBrush brush(m_picture);
        brush.setTransform(
            QTransform::fromTranslate(box.left(), box.top())
                .scale(box.width() / m_picture.width(), box.height() / m_picture.height()));
        painter.setPen(Qt::NoPen);
        painter.setBrush(brush);
        painter.drawRoundedRect(box, Radius::thumbnail, Radius::thumbnail);
    }
    strokeRounded(painter, box, Radius::thumbnail, theme.line);
    if (hovered() > 0 && m_refusal.isEmpty())
        strokeRounded(painter, box, Radius::thumbnail,
                      QColor(255, 255, 255, qRound(61 * hovered())));
    if (!m_refusal.isEmpty())
        fillRounded(painter, box, Radius::thumbnail, withOpacity(theme.panel, 0.6));
    if (m_preset.chosen) {
        strokeRounded(painter, box, Radius::thumbnail, theme.accentLine, ringWidth);
        strokeRounded(painter, box.adjusted(ringWidth, ringWidth, -ringWidth, -ringWidth),
                      Radius::thumbnail - ringWidth, theme.panel, 1);
    }
    QRectF caption = captionRect();
    caption.setWidth(captionRoom());
    paintText(painter, caption, Qt::AlignLeft, Type::small,
              m_refusal.isEmpty() ? theme.text : theme.text3, m_preset.name);
    if (hasTick()) {
        paintIcon(painter, Icon::check,
                  QRectF(caption.right() + 2, caption.top(), tickSide, presetCaptionHeight),
                  tickSide, theme.accentText);
    }
}
