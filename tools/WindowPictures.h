#pragma once

#include <QDir>
#include <QSize>

#include <functional>

class QApplication;
class QWidget;

// Nothing moves by itself any more: spinners, progress and carets stand still.
void stopAnimations(QApplication& application);

// Pictures of one window as PNG files, the same from run to run.
class WindowPictures {
public:
    // `isIdle`: whether the window shows all that it asked for.
    WindowPictures(const QDir& out, QWidget& window, std::function<bool()> isIdle);

    static constexpr QSize sizes[] = {{1200, 720}, {1440, 900}, {2560, 1440}};

    // Lets events pass until then; false after too long a time.
    static bool waitFor(const std::function<bool()>& reached);

    // Waits until the window has all that it asked for; false after too long a time.
    bool waitUntilCalm();

    // In both themes, of each of the sizes or of the one that the window has. False when the window
    // did not settle.
    bool take(const QString& name);
    bool takeAtThisSize(const QString& name);
    // In the theme that is on, without waiting.
    void takeNow(const QString& name);

private:
    void grab(const QString& name, const QString& theme);

    QDir m_out;
    QWidget& m_window;
    std::function<bool()> m_isIdle;
};
