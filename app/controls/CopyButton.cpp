#include "app/controls/CopyButton.h"

#include <QClipboard>
#include <QGuiApplication>

using namespace Qt::StringLiterals;

CopyButton::CopyButton(const QString& text, QWidget* parent)
    : PushButton(Icon::none, text, ButtonKind::link, ButtonSize::small, parent)
{
    setAccessibleName(text);
    connect(this, &PushButton::clicked, this, [this] {
        QGuiApplication::clipboard()->setText(m_address);
        setAccessibleDescription(u"Copiada"_s);
        setText(u"Dirección copiada"_s);
        updateGeometry();
    });
}

void CopyButton::setAddress(const QString& address)
{
    if (address == m_address)
        return;
    m_address = address;
    setAccessibleDescription({});
    setText(accessibleName());
    updateGeometry();
}
