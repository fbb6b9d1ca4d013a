#include "app/presets/StyleHeader.h"

#include "app/controls/Badge.h"
#include "app/controls/Button.h"
#include "app/controls/Caption.h"

#include <QHBoxLayout>

using namespace Qt::StringLiterals;

void setRefused(QWidget* widget, const QString& reason, const QString& usualToolTip)
{
    widget->setEnabled(reason.isEmpty());
    widget->setToolTip(reason.isEmpty() ? usualToolTip : reason);
}

StyleHeader::StyleHeader(QWidget* parent)
    : QWidget(parent), m_title(new Caption(Type::heading, &Theme::text, {}, this)),
      m_reached(new Badge(BadgeKind::accent, Icon::severalImages, this)),
      m_copy(new IconButton(Icon::copyStyle, u"Copiar estilo"_s, 28, this)),
      m_paste(new IconButton(Icon::pasteStyle, u"Pegar estilo"_s, 28, this))
{
    setFixedHeight(32);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(m_title, 1);
    layout->addWidget(m_reached);
    layout->addWidget(m_copy);
    layout->addWidget(m_paste);
    m_reached->hide();
    connect(m_copy, &IconButton::clicked, this, &StyleHeader::copyRequested);
    connect(m_paste, &IconButton::clicked, this, &StyleHeader::pasteRequested);
}

void StyleHeader::setTitle(const QString& title)
{
    m_title->setText(title);
    showReached();
}

void StyleHeader::setReached(int images, const QString& explanation)
{
    m_images = images;
    m_reached->setToolTip(explanation);
    m_reached->setVisible(images > 1);
    showReached();
}

// Shows the number without a word if the title and, for example, "4 imágenes" do not both fit.
void StyleHeader::showReached()
{
    if (m_images <= 1)
        return m_reached->setText({});
    m_reached->setText(u"%1 imágenes"_s.arg(m_images));
    const int wanted = m_title->sizeHint().width() + m_reached->sizeHint().width() +
                       m_copy->width() + m_paste->width() + 3 * layout()->spacing();
    if (wanted > width()) {
        m_reached->setText(QString::number(m_images));
        m_reached->setAccessibleName(u"%1 imágenes"_s.arg(m_images));
    }
}

void StyleHeader::resizeEvent(QResizeEvent*)
{
    showReached();
}

void StyleHeader::setCopyRefused(const QString& reason)
{
    setRefused(m_copy, reason, m_copy->accessibleName());
}

void StyleHeader::setPasteRefused(const QString& reason)
{
    setRefused(m_paste, reason, m_paste->accessibleName());
}

QList<QWidget*> StyleHeader::focusOrder() const
{
    return {m_copy, m_paste};
}
