#include "app/publish/PostStrip.h"

#include "app/controls/AccessibleRole.h"
#include "app/controls/fields/Choices.h"
#include "app/theme/Icons.h"
#include "app/theme/KeyboardFocus.h"
#include "app/theme/Painting.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QToolTip>
#include <QWheelEvent>

using namespace Qt::StringLiterals;

namespace {
constexpr int stripEdge = 6, stripGap = 12, largestThumb = 64, highestThumb = 80;
constexpr double unsentOpacity = 0.4;
}    // namespace

PostStrip::PostStrip(QWidget* parent) : QWidget(parent)
{
    setAccessibleRole(this, QAccessible::List);
    setFocusPolicy(Qt::TabFocus);
    setProperty("focusRadius", Radius::field);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize PostStrip::thumb() const
{
    return exportSize(m_format).toSize().scaled(largestThumb, highestThumb, Qt::KeepAspectRatio);
}

QSize PostStrip::pictureSize() const
{
    return (QSizeF(thumb()) * devicePixelRatioF()).toSize();
}

QSize PostStrip::sizeHint() const
{
    return {308, thumb().height() + 2 * stripEdge};
}

QRect PostStrip::boxOf(qsizetype index) const
{
    const QSize size = thumb();
    return {QPoint(stripEdge + int(index) * (size.width() + stripGap) - m_offset, stripEdge), size};
}

qsizetype PostStrip::indexAt(QPoint position) const
{
    for (qsizetype i = 0; i < m_images.size(); ++i) {
        if (boxOf(i).contains(position))
            return i;
    }
    return -1;
}

void PostStrip::setImages(const QList<PublishImage>& images, SocialFormat format)
{
    if (images == m_images && format == m_format)
        return;
    const QUuid current = m_images.value(m_current).id;
    if (format != m_format)
        m_pictures.clear();
    m_images = images;
    m_format = format;
    updateGeometry();
    setCurrent(current);
    ask();
}

void PostStrip::setCurrent(QUuid image)
{
    const auto found = std::ranges::find(m_images, image, &PublishImage::id);
    m_current = found == m_images.end() ? 0 : found - m_images.begin();
    const QRect box = boxOf(m_current);
    if (box.left() < stripEdge)
        scrollTo(m_offset + box.left() - stripEdge);
    else if (box.right() > width() - stripEdge)
        scrollTo(m_offset + box.right() + 1 - width() + stripEdge);
    describe();
    update();
}

void PostStrip::describe()
{
    if (m_images.isEmpty())
        return setAccessibleName(u"Imágenes de la publicación"_s);
    const PublishImage& image = m_images[m_current];
    QStringList parts{u"Imagen %1 de %2"_s.arg(m_current + 1).arg(m_images.size()), image.name};
    if (!image.isSent)
        parts.append(u"no se envía"_s);
    if (image.isPaid)
        parts.append(u"pagada"_s);
    if (image.hasWarning)
        parts.append(u"con avisos"_s);
    setAccessibleName(parts.join(u", "_s));
}

void PostStrip::setPicture(QUuid image, const QImage& picture)
{
    m_pictures.insert(image, picture);
    update();
}

QList<QUuid> PostStrip::seen() const
{
    QList<QUuid> ids;
    for (qsizetype i = 0; i < m_images.size(); ++i) {
        if (boxOf(i).intersects(rect()))
            ids.append(m_images[i].id);
    }
    return ids;
}

void PostStrip::scrollTo(int offset)
{
    const int all = boxOf(m_images.size() - 1).right() + 1 + m_offset + stripEdge;
    m_offset = std::clamp(offset, 0, std::max(0, all - width()));
    ask();
    update();
}

void PostStrip::ask()
{
    const QSet<QUuid> known(m_pictures.keyBegin(), m_pictures.keyEnd());
    for (const QUuid id : seen()) {
        if (!known.contains(id))
            return Q_EMIT picturesWanted();
    }
}

bool PostStrip::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    auto* help = static_cast<QHelpEvent*>(event);
    const qsizetype at = indexAt(help->pos());
    if (at < 0)
        return true;
    QString text = m_images[at].name;
    if (!m_images[at].isSent)
        text += u"\nNo se envía: la red no admite tantas imágenes."_s;
    if (m_images[at].isPaid)
        text += u"\nYa está pagada."_s;
    if (m_images[at].hasWarning)
        text += u"\nTiene avisos."_s;
    QToolTip::showText(help->globalPos(), plainToolTip(text), this);
    return true;
}

void PostStrip::resizeEvent(QResizeEvent*)
{
    scrollTo(m_offset);
}

void PostStrip::mousePressEvent(QMouseEvent* event)
{
    if (const qsizetype at = indexAt(event->pos()); event->button() == Qt::LeftButton && at >= 0)
        Q_EMIT chosen(m_images[at].id);
}

void PostStrip::wheelEvent(QWheelEvent* event)
{
    const QPoint delta = event->angleDelta();
    scrollTo(m_offset - (std::abs(delta.x()) > std::abs(delta.y()) ? delta.x() : delta.y()) / 2);
    event->accept();
}

void PostStrip::keyPressEvent(QKeyEvent* event)
{
    const auto index = choiceByKey(event->key(), int(m_current), int(m_images.size()));
    if (!index)
        QWidget::keyPressEvent(event);
    else if (*index != m_current)
        Q_EMIT chosen(m_images[*index].id);
}

void PostStrip::focusInEvent(QFocusEvent* event)
{
    KeyboardFocus::entered(this, event);
}

void PostStrip::focusOutEvent(QFocusEvent*)
{
    KeyboardFocus::left(this);
}

void PostStrip::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    for (qsizetype i = 0; i < m_images.size(); ++i) {
        const QRect box = boxOf(i);
        if (!box.adjusted(-stripEdge, 0, stripEdge, 0).intersects(rect()))
            continue;
        const PublishImage& image = m_images[i];
        painter.setOpacity(image.isSent ? 1 : unsentOpacity);
        if (const QImage picture = m_pictures.value(image.id); picture.isNull()) {
            fillRounded(painter, box, Radius::thumbnail, theme.empty);
        } else {
            painter.setRenderHint(QPainter::SmoothPixmapTransform, picture.size() != pictureSize());
            painter.drawImage(box, picture);
        }
        painter.setOpacity(1);
        if (i == m_current)
            strokeRounded(painter, QRectF(box).adjusted(-4, -4, 4, 4), 9, theme.accentLine, 2);
        if (!image.hasWarning && !image.isPaid)
            continue;
        const QRectF sign(box.right() + 1 - 22, box.bottom() + 1 - 22, 19, 19);
        fillRounded(painter, sign, 9.5, QColor(12, 13, 15, 220));
        paintIcon(painter, image.hasWarning ? Icon::alert : Icon::check, sign, 14,
                  image.hasWarning ? darkTheme().warn : darkTheme().ok);
    }
}
