#pragma once
#include "app/controls/Button.h"

// Copies an address, and says so until it gets another one.
class CopyButton : public PushButton {
    Q_OBJECT
public:
    explicit CopyButton(const QString& text, QWidget* parent = nullptr);
    void setAddress(const QString& address);

private:
    QString m_address;
};
