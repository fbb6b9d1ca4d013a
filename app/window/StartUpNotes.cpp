#include "app/window/StartUpNotes.h"

#include "app/account/AuthGateView.h"
#include "app/window/MainWindow.h"
#include "platform/Log.h"

#include <QEvent>

#include <utility>

StartUpNotes::StartUpNotes(MainWindow& window, const QElapsedTimer& sinceStart)
    : m_window(window), m_sinceStart(sinceStart)
{
    window.installEventFilter(this);
}

bool StartUpNotes::eventFilter(QObject* watched, QEvent* event)
{
    // The window receives one such event for each painting of itself or of any child.
    if (event->type() == QEvent::UpdateRequest && !std::exchange(m_isQueued, true))
        QMetaObject::invokeMethod(this, &StartUpNotes::notePainting, Qt::QueuedConnection);
    return QObject::eventFilter(watched, event);
}

void StartUpNotes::notePainting()
{
    m_isQueued = false;
    const qint64 now = m_sinceStart.elapsed();    // milliseconds
    if (!std::exchange(m_isPainted, true))
        qCInfo(logProgram) << "window painted after" << now << "ms";
    if (m_window.gate()->state() != Gate::open)
        return;
    if (!std::exchange(m_isStudioPainted, true))
        qCInfo(logProgram) << "studio painted after" << now << "ms";
    if (!m_window.isIdle())
        return;
    qCInfo(logProgram) << "at rest after" << now << "ms";
    m_window.removeEventFilter(this);
}
