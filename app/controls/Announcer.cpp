#include "app/controls/Announcer.h"

namespace {
constexpr int announcePause = 3000;    // ms
}

Announcer::Announcer(std::function<void()> tell, QObject* parent)
    : QObject(parent), m_tell(std::move(tell))
{
    m_later.setSingleShot(true);
    connect(&m_later, &QTimer::timeout, this, &Announcer::tellNow);
}

void Announcer::tellStep()
{
    const qint64 since = m_told.isValid() ? m_told.elapsed() : announcePause;
    if (since >= announcePause)
        tellNow();
    else if (!m_later.isActive())
        m_later.start(int(announcePause - since));
}

void Announcer::tellNow()
{
    m_later.stop();
    m_told.start();
    m_tell();
}
