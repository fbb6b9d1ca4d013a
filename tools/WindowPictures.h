#pragma once

#include <QDir>
#include <QSize>

#include <functional>

class QApplication;
class QWidget;

// Stops spinners, progress bars and blinking carets, so that pictures of the same state are equal.
void stopAnimations(QApplication& application);

// Saves pictures of one window as PNG files in `out`. Two runs give equal bytes.
class WindowPictures {
public:
    // `isIdle` returns whether the window shows everything that it has requested.
    WindowPictures(const QDir& out, QWidget& window, std::function<bool()> isIdle);

    static constexpr QSize sizes[] = {{1093, 614}, {1200, 720}, {1440, 900}, {2560, 1440}};

    // The contrast is computed in one size, because the colours are the same in all of them. In the
    // largest, most controls are seen whole.
    static constexpr QSize contrastSize = sizes[3];

    // Runs the event loop until `reached` returns true. Returns false after a minute.
    static bool waitFor(const std::function<bool()>& reached);

    // Waits until the window shows everything that it has requested. Returns false after a minute.
    bool waitUntilCalm();

    // Take pictures in both themes: take() in each of the sizes, takeAtThisSize() only in the
    // window's current size. Return false if the window was not calm within a minute.
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
