#include "app/presets/LargePreview.h"

#include "app/controls/AccessibleRole.h"
#include "app/theme/Painting.h"

#include <QApplication>
#include <QKeyEvent>

namespace {
constexpr int largeShadow = 28, largePadding = 12, largeName = 32, besidePanel = 8,
              windowMargin = 12;
constexpr QSize largestPicture(640, 640);
}    // namespace

LargePreview::LargePreview(QWidget* panel) : QWidget(panel->window()), m_panel(panel)
{
    setAccessibleRole(this, QAccessible::Graphic);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void LargePreview::open(const QString& name, double ratio, const QImage& picture)
{
    if (!m_panel || m_panel->window() != parentWidget())
        setParent(m_panel ? m_panel->window() : nullptr);
    if (!m_panel)
        return;
    m_name = name;
    m_picture = picture;
    setAccessibleName(QStringLiteral("Vista previa grande: %1").arg(name));
    const QWidget* frame = parentWidget();
    const int right = m_panel->mapTo(frame, QPoint()).x() - besidePanel;
    const QSize around(2 * largePadding, 2 * largePadding + largeName);
    const QSizeF room =
        QSizeF(QSize(right - windowMargin, frame->height() - 2 * windowMargin) - around)
            .boundedTo(largestPicture);
    const QSize shown = QSizeF(ratio, 1).scaled(room, Qt::KeepAspectRatio).toSize();
    const QSize box = shown + around;
    setGeometry(QRect(QPoint(right - box.width(), (frame->height() - box.height()) / 2), box)
                    .adjusted(-largeShadow, -largeShadow, largeShadow, largeShadow));
    show();
    raise();
    update();
}

void LargePreview::setPicture(const QImage& picture)
{
    if (picture.isNull())
        return;
    m_picture = picture;
    update();
}

QRect LargePreview::pictureRect() const
{
    const int margin = largeShadow + largePadding;
    return rect().adjusted(margin, margin, -margin, -margin - largeName);
}

QSize LargePreview::picturePixels() const
{
    return (QSizeF(pictureRect().size()) * devicePixelRatioF()).toSize();
}

bool LargePreview::eventFilter(QObject* object, QEvent* event)
{
    const QEvent::Type type = event->type();
    const bool isKey = type == QEvent::ShortcutOverride || type == QEvent::KeyPress;
    const bool isEscape = isKey && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape;
    if (isEscape && qobject_cast<QWidget*>(object)) {
        event->accept();
        if (type == QEvent::KeyPress)
            Q_EMIT closed();
        return true;
    }
    if (type == QEvent::MouseButtonPress || (type == QEvent::Resize && object == parentWidget()))
        Q_EMIT closed();
    return false;
}

void LargePreview::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const QRect box = rect().adjusted(largeShadow, largeShadow, -largeShadow, -largeShadow);
    paintShadow(painter, box, {.offset = 8, .blur = largeShadow - 8, .color = theme.shadow});
    fillRounded(painter, box, Radius::popover, theme.elev);
    strokeRounded(painter, box, Radius::popover, theme.line2);
    const QRect picture = pictureRect();
    if (m_picture.isNull())
        painter.fillRect(picture, theme.empty);
    else
        painter.drawImage(picture, m_picture);
    paintText(
        painter,
        QRectF(picture.left(), picture.bottom() + 1, picture.width(), largeName + largePadding / 2),
        Qt::AlignLeft, Type::heading, theme.text, m_name);
}

void LargePreview::showEvent(QShowEvent*)
{
    qApp->installEventFilter(this);
}

void LargePreview::hideEvent(QHideEvent*)
{
    qApp->removeEventFilter(this);
}
