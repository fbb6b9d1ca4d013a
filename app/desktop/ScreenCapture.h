#pragma once

class QWidget;

// Keeps the window out of screenshots and recordings of the screen. macOS and Windows have an
// interface for that; X11 and Wayland have none, so there it does nothing.
void protectFromScreenCapture(QWidget& window);
