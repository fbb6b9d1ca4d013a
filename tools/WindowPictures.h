#pragma once

#include <QDir>
#include <QSize>

#include <functional>

class QApplication;
class QWidget;

// Stops spinners, progress bars and blinking carets, so that pictures do not differ.
void stopAnimations(QApplication& application);

// Pictures of one window as PNG files. Two runs give equal bytes.
class WindowPictures {
public:
    // `isIdle`: whether the window shows everything that it has requested.
    WindowPictures(const QDir& out, QWidget& window, std::function<bool()> isIdle);

    static constexpr QSize sizes[] = {{1200, 720}, {1440, 900}, {2560, 1440}};

    // Runs the event loop until `reached`; false after a minute.
    static bool waitFor(const std::function<bool()>& reached);

    // Waits until the window shows everything that it has requested; false after a minute.
    bool waitUntilCalm();

    // Takes pictures in both themes: take() in each of the sizes, takeAtThisSize() in the window's
    // own. False when the window still lacked pictures after a minute.
    bool take(const QString& name);
    bool takeAtThisSize(const QString& name);
    // Takes a picture in the current theme without waiting.
    void takeNow(const QString& name);

private:
    void grab(const QString& name, const QString& theme);

    QDir m_out;
    QWidget& m_window;
    std::function<bool()> m_isIdle;
};
