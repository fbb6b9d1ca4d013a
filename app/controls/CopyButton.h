#pragma once
#include "app/controls/Button.h"

// A button that copies an address to the clipboard. After a click its text says that the address
// was copied, until setAddress() sets another.
class CopyButton : public PushButton {
    Q_OBJECT
public:
    explicit CopyButton(const QString& text, QWidget* parent = nullptr);
    void setAddress(const QString& address);

private:
    QString m_address;
};
