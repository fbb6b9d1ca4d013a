#include "tools/WindowPictures.h"

#include "app/theme/Theme.h"
#include "platform/Workers.h"
#include "tools/ContrastCheck.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPainter>
#include <QTimer>
#include <QWidget>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

constexpr int longestWait = 60000;    // ms

// Drops the events of repeating QTimers, which drive animations. Lets those of single-shot timers
// through, which start work that the window waits for.
class FrameFilter : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* receiver, QEvent* event) override
    {
        const auto* timer =
            event->type() == QEvent::Timer ? qobject_cast<QTimer*>(receiver) : nullptr;
        return timer && !timer->isSingleShot();
    }
};

void turnFor(int milliseconds)
{
    QElapsedTimer pause;
    for (pause.start(); pause.elapsed() < milliseconds;)
        QApplication::processEvents(QEventLoop::AllEvents, 20);
}

}    // namespace

void stopAnimations(QApplication& application)
{
    QApplication::setCursorFlashTime(0);
    application.installEventFilter(new FrameFilter(&application));
}

WindowPictures::WindowPictures(const QDir& out, QWidget& window, std::function<bool()> isIdle)
    : m_out(out), m_window(window), m_isIdle(std::move(isIdle))
{
}

bool WindowPictures::waitFor(const std::function<bool()>& reached)
{
    QElapsedTimer watch;
    for (watch.start(); !reached() && watch.elapsed() < longestWait;)
        QApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
    return reached();
}

// Waits until the window is idle several times in a row: panels request pictures a moment after a
// change, and the result of a worker may cause further requests.
bool WindowPictures::waitUntilCalm()
{
    constexpr int calmTurns = 3, turn = 60;    // `turn` in ms
    QElapsedTimer watch;
    watch.start();
    for (int calm = 0; calm < calmTurns;) {
        if (watch.elapsed() > longestWait)
            return false;
        turnFor(turn);
        const bool wasAtWork = workers().activeThreadCount() > 0;
        workers().waitForDone(longestWait);
        calm = !wasAtWork && m_isIdle() ? calm + 1 : 0;
    }
    return true;
}

void WindowPictures::grab(const QString& name, const QString& theme)
{
    const QString file = u"%1-%2-%3.png"_s.arg(name, theme, QString::number(m_window.width()));
    QPixmap picture = m_window.grab();
    if (QWidget* popup = QApplication::activePopupWidget())
        QPainter(&picture).drawPixmap(m_window.mapFromGlobal(popup->pos()), popup->grab());
    if (picture.save(m_out.filePath(file)))
        std::printf("%s\n", qPrintable(file));
    if (m_window.size() != contrastSize)
        return;
    for (const FaintInk& faint : faintInks(picture.toImage(), exceptedFromContrast(m_window))) {
        std::printf("%s: contrast %.2f of %.1f at %d,%d, %d x %d\n", qPrintable(file), faint.ratio,
                    faint.needed, faint.at.x(), faint.at.y(), faint.at.width(), faint.at.height());
    }
}

bool WindowPictures::take(const QString& name)
{
    bool reached = true;
    for (const QSize size : sizes) {
        m_window.resize(size);
        reached &= takeAtThisSize(name);
    }
    return reached;
}

bool WindowPictures::takeAtThisSize(const QString& name)
{
    bool reached = true;
    const std::array themes{std::pair(&darkTheme(), u"dark"_s),
                            std::pair(&lightTheme(), u"light"_s)};
    for (const auto& [theme, label] : themes) {
        applyTheme(*theme);
        reached &= waitUntilCalm();
        grab(name, label);
    }
    // The focus can select what it reaches, so this follows the pictures.
    for (const auto& [theme, label] : themes) {
        if (m_window.size() != contrastSize)
            break;
        applyTheme(*theme);
        reached &= waitUntilCalm();
        for (const FaintMark& faint : faintMarks(m_window))
            std::printf("%s-%s: contrast %.2f of 3.0 at %d,%d, %d x %d: %s\n", qPrintable(name),
                        qPrintable(label), faint.ratio, faint.at.x(), faint.at.y(),
                        faint.at.width(), faint.at.height(), qPrintable(faint.what));
    }
    if (!reached)
        std::fprintf(stderr, "%s: not reached after %d s\n", qPrintable(name), longestWait / 1000);
    return reached;
}

void WindowPictures::takeNow(const QString& name)
{
    grab(name, &themeOf(&m_window) == &lightTheme() ? u"light"_s : u"dark"_s);
}
