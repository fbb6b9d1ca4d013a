#include "app/account/SignInWall.h"

#include "app/controls/AccessibleRole.h"
#include "app/controls/Paragraph.h"
#include "app/theme/Painting.h"

using namespace Qt::StringLiterals;

namespace {
constexpr int wallSide = 56, wallBottom = 44;
constexpr double clearance = 24;      // pixels between the posts and the claim
constexpr double leastShare = 0.8;    // of the wall's height; the picture covers at least this much
}    // namespace

SignInWall::SignInWall(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleRole(this, QAccessible::Graphic);
    setAccessibleName(u"De una carpeta de fotos a una campaña lista para publicar."_s);
}

void SignInWall::hideEvent(QHideEvent*)
{
    m_picture = {};
}

void SignInWall::paintEvent(QPaintEvent*)
{
    const QColor ground = darkTheme().bg;
    QPainter painter(this);
    painter.fillRect(rect(), ground);
    if (m_picture.isNull())
        m_picture = QPixmap(u":/pictures/sign-in-wall.jpg"_s);
    if (m_picture.isNull() || rect().isEmpty())
        return;
    // Scales the picture to cover the full width and leastShare of the height. Below the picture
    // only the dark ground is visible.
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QSizeF shown =
        QSizeF(m_picture.size())
            .scaled(QSizeF(width(), height() * leastShare), Qt::KeepAspectRatioByExpanding);
    painter.drawPixmap(QRectF(QPointF((width() - shown.width()) / 2, 0), shown), m_picture,
                       m_picture.rect());
    const QStringList rows =
        wrappedRows(u"De una carpeta de fotos\na una campaña lista para publicar."_s, Type::claim,
                    width() - 2 * wallSide, 3);
    const double rowHeight = row(Type::claim).lineHeight;
    QRectF line(wallSide, height() - wallBottom - rowHeight * double(rows.size()),
                width() - 2 * wallSide, rowHeight);
    // Makes the gradient opaque behind the claim, so that the texts in the posts do not show
    // through.
    const double dark = std::clamp((line.top() - clearance) / height(), 0.1, 1.0);
    QLinearGradient night(0, 0, 0, height());
    night.setColorAt(0, withOpacity(ground, 0.06));
    night.setColorAt(dark * 0.5, withOpacity(ground, 0.14));
    night.setColorAt(dark * 0.9, withOpacity(ground, 0.86));
    night.setColorAt(dark, ground);
    painter.fillRect(rect(), night);

    for (const QString& text : rows) {
        paintText(painter, line, Qt::AlignLeft, Type::claim, Qt::white, text);
        line.translate(0, rowHeight);
    }
}
