#pragma once
#include "app/controls/Button.h"

// Copies an address to the clipboard. Its text says so until the button gets another address.
class CopyButton : public PushButton {
    Q_OBJECT
public:
    explicit CopyButton(const QString& text, QWidget* parent = nullptr);
    void setAddress(const QString& address);

private:
    QString m_address;
};
