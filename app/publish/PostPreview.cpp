#include "app/publish/PostPreview.h"

#include "account/AccountTexts.h"
#include "app/controls/AccessibleRole.h"
#include "app/controls/Button.h"
#include "app/controls/Grounds.h"
#include "canvas/SafeZone.h"
#include "canvas/interaction/CanvasOverlay.h"

#include <QTextLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int postHead = 40, avatarSide = 26, postSide = 12, captionLine = 16, postRows = 3;
constexpr int captionRoom = postRows * captionLine + 20, dotsRoom = 20, mostDots = 10;
constexpr int arrowSide = 28, arrowInset = 8;
constexpr qsizetype mostSeen = 600;    // characters that three lines may need

// A light disc with a chevron, to be seen on any picture.
class ArrowButton : public Control {
public:
    ArrowButton(Icon icon, const QString& name, QWidget* parent) : Control(parent), m_icon(icon)
    {
        setAccessibleName(name);
        setToolTip(name);
        setFixedSize(arrowSide, arrowSide);
        setProperty("focusRadius", arrowSide / 2);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(255, 255, 255, isDown() ? 255 : 200 + int(40 * hovered())));
        painter.drawEllipse(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
        paintIcon(painter, m_icon, rect(), 16, QColor(0x16181C));
    }

private:
    Icon m_icon;
};

}    // namespace

PostPreview::PostPreview(QWidget* parent)
    : QWidget(parent), m_previous(new ArrowButton(Icon::previous, u"Imagen anterior"_s, this)),
      m_next(new ArrowButton(Icon::next, u"Imagen siguiente"_s, this))
{
    setAccessibleRole(this, QAccessible::Graphic);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    m_previous->hide();
    m_next->hide();
    connect(m_previous, &Control::clicked, this, [this] { Q_EMIT stepRequested(-1); });
    connect(m_next, &Control::clicked, this, [this] { Q_EMIT stepRequested(1); });
}

void PostPreview::setPost(const PostShown& post)
{
    if (post == m_post)
        return;
    m_post = post;
    const QString position =
        post.position < 0
            ? u"no se envía"_s
            : u"imagen %1 de %2"_s.arg(post.position + 1).arg(std::max<qsizetype>(post.count, 1));
    setAccessibleName(u"Vista previa, %1, %2"_s.arg(position, post.name));
    setAccessibleDescription(post.isStory ? QString() : post.caption.left(mostSeen));
    updateGeometry();
    fit();
}

void PostPreview::setPicture(const QImage& picture)
{
    m_picture = picture;
    update();
}

QSize PostPreview::pictureSize() const
{
    return (QSizeF(m_canvas.size()) * devicePixelRatioF()).toSize();
}

QList<QWidget*> PostPreview::focusOrder() const
{
    return {m_previous, m_next};
}

void PostPreview::resizeEvent(QResizeEvent*)
{
    fit();
}

int PostPreview::above() const
{
    return m_post.isStory ? 0 : postHead;
}

int PostPreview::below() const
{
    return m_post.isStory ? 0 : captionRoom + (m_post.count > 1 ? dotsRoom : 8);
}

QSize PostPreview::shape() const
{
    return exportSize(m_post.isStory ? SocialFormat::storyReel : m_post.format).toSize();
}

int PostPreview::heightForWidth(int width) const
{
    const QSize frame = shape();
    return above() + width * frame.height() / std::max(1, frame.width()) + below();
}

void PostPreview::fit()
{
    const QSize before = m_canvas.size();
    const QSize room(width(), std::max(40, height() - above() - below()));
    const QSize frame = shape().scaled(room, Qt::KeepAspectRatio);
    m_frame = QRect(QPoint((width() - frame.width()) / 2, above()), frame);
    m_canvas = QRect({}, exportSize(m_post.format).toSize().scaled(frame, Qt::KeepAspectRatio));
    m_canvas.moveCenter(m_frame.center());
    m_card = QRect(0, 0, width(), above() + frame.height() + below());
    const bool canStep = m_post.count > 1;
    const int middle = m_canvas.center().y() - arrowSide / 2;
    m_previous->move(m_canvas.left() + arrowInset, middle);
    m_next->move(m_canvas.right() + 1 - arrowInset - arrowSide, middle);
    const QWidget* focused = window()->focusWidget();
    const bool hasPrevious = canStep && m_post.position != 0;
    const bool hasNext = canStep && m_post.position < m_post.count - 1;
    m_previous->setVisible(hasPrevious);
    m_next->setVisible(hasNext);
    if (focused == m_previous && !hasPrevious && hasNext)
        m_next->setFocus(Qt::TabFocusReason);
    else if (focused == m_next && !hasNext && hasPrevious)
        m_previous->setFocus(Qt::TabFocusReason);
    update();
    if (m_canvas.size() != before)
        Q_EMIT pictureSizeChanged();
}

void PostPreview::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!m_post.isStory) {
        fillRounded(painter, m_card, Radius::field, theme.card);
        painter.fillRect(QRect(0, m_canvas.top(), width(), m_canvas.height()), theme.empty);
    } else {
        painter.fillRect(m_frame, Qt::black);
    }
    if (m_picture.isNull()) {
        painter.fillRect(m_canvas, theme.empty);
    } else {
        SavedPainter saved(painter);
        painter.setRenderHint(QPainter::SmoothPixmapTransform, m_picture.size() != pictureSize());
        painter.setOpacity(m_post.position < 0 ? 0.4 : 1);
        painter.drawImage(m_canvas, m_picture);
    }
    if (m_post.isStory) {
        const QSize pixels = (QSizeF(m_frame.size()) * devicePixelRatioF()).toSize();
        CanvasOverlay(painter, m_frame, pixels).drawSafeZone(safeZoneTop, safeZoneBottom);
        return;
    }
    const QRectF head(postSide, 0, width() - 2 * postSide, postHead);
    paintAvatar(painter, QRectF(head.left(), (postHead - avatarSide) / 2.0, avatarSide, avatarSide),
                theme, initialsOf(m_post.account));
    paintText(painter, head.adjusted(avatarSide + 8, 0, 0, 0), Qt::AlignLeft, Type::captionSemibold,
              theme.text, m_post.account);
    QRectF foot(postSide, m_canvas.bottom() + 1, width() - 2 * postSide, dotsRoom);
    if (m_post.count > 1)
        paintDots(painter, foot);
    foot.setTop(m_canvas.bottom() + 1 + (m_post.count > 1 ? dotsRoom : 8));
    foot.setHeight(captionRoom - 12);
    paintCaption(painter, foot);
}

void PostPreview::paintDots(QPainter& painter, const QRectF& box) const
{
    const Theme& theme = themeOf(this);
    constexpr double side = 5, pitch = 10;
    const qsizetype dots = std::min<qsizetype>(m_post.count, mostDots);
    double left = box.center().x() - (double(dots - 1) * pitch + side) / 2;
    painter.setPen(Qt::NoPen);
    for (qsizetype i = 0; i < dots; ++i, left += pitch) {
        painter.setBrush(i == m_post.position ? theme.accentLine : theme.line2);
        painter.drawEllipse(QRectF(left, box.center().y() - side / 2, side, side));
    }
}

void PostPreview::paintCaption(QPainter& painter, const QRectF& box) const
{
    const Theme& theme = themeOf(this);
    const QString more = u"… más"_s;
    QString text = m_post.account + u' ' + m_post.caption.trimmed().left(mostSeen);
    text.replace(u'\n', QChar::LineSeparator);
    QTextLayout layout(text, fontOf(Type::small));
    QTextOption option(Qt::AlignLeft);
    option.setTextDirection(Qt::LayoutDirectionAuto);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    QTextLayout::FormatRange name{0, int(m_post.account.size()), {}};
    name.format.setFont(fontOf(Type::smallMedium));
    name.format.setFontWeight(QFont::DemiBold);
    layout.setFormats({name});
    layout.beginLayout();
    std::optional<QPointF> cut;
    for (int i = 0; i < postRows; ++i) {
        QTextLine line = layout.createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(box.width());
        const bool isCut = i == postRows - 1 && line.textStart() + line.textLength() < text.size();
        if (isCut)
            line.setLineWidth(box.width() - textWidth(Type::small, more) - 2);
        line.setPosition(QPointF(0, i * captionLine));
        if (isCut)
            cut = box.topLeft() + QPointF(line.naturalTextRect().right(), i * captionLine);
    }
    layout.endLayout();
    painter.setPen(theme.text);
    layout.draw(&painter, box.topLeft());
    if (cut)
        paintText(painter, QRectF(*cut, QSizeF(60, captionLine)), Qt::AlignLeft, Type::small,
                  theme.text3, more, Qt::ElideNone);
}
