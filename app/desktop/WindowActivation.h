#pragma once

#include <QByteArray>

class QWidget;

// The token with which the desktop that started this program allows it to bring a window to the
// front. Empty if there is none. Ask before a QGuiApplication exists, which uses it up.
QByteArray activationToken();

// Shows the window in front of all others and gives it the keyboard focus, as far as the desktop
// allows. `token`: what activationToken() is in the program that asks for it; may be empty.
void comeForward(QWidget& window, const QByteArray& token);
