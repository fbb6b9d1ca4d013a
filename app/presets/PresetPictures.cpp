#include "app/presets/PresetPictures.h"

#include "platform/Workers.h"

#include <QCoroFuture>

namespace {
// Number of pictures drawn at the same time. Few, so that a new wish soon has its turn.
constexpr int atOnce = 2;
}    // namespace

void PresetPictures::want(QUuid id, const Draw& draw)
{
    m_wishes.removeIf([id](const Wish& wish) { return wish.id == id; });
    m_latest.insert(id, ++m_count);
    m_wishes.append({id, [draw](QUuid) { return draw; }, m_count});
    startNext();
}

void PresetPictures::wantOnly(const QList<QUuid>& ids, const std::function<Draw(QUuid)>& drawOf)
{
    m_wishes.clear();
    for (const QUuid& id : ids) {
        if (m_running.contains(id) && m_running.value(id) == m_latest.value(id))
            continue;
        m_latest.insert(id, ++m_count);
        m_wishes.append({id, drawOf, m_count});
    }
    startNext();
}

void PresetPictures::dropWishes()
{
    m_wishes.clear();
    m_latest.clear();
}

void PresetPictures::startNext()
{
    while (m_drawing < atOnce && !m_wishes.isEmpty()) {
        const Wish wish = m_wishes.takeFirst();
        const Draw draw = wish.drawOf(wish.id);
        if (!draw)
            continue;
        ++m_drawing;
        m_running.insert(wish.id, wish.number);
        run(this, wish.id, wish.number, draw);
    }
}

QCoro::Task<> PresetPictures::run(QPointer<PresetPictures> self, QUuid id, quint64 number,
                                  Draw draw)
{
    QFuture<QImage> drawing = runOnWorker([draw] {
        try {
            return draw();
        } catch (const std::exception&) {
            return QImage();    // out of memory: the tile keeps its old picture
        }
    });
    const QImage picture = co_await drawing;
    if (!self)
        co_return;
    --self->m_drawing;
    if (self->m_running.value(id) == number)
        self->m_running.remove(id);
    if (self->m_latest.value(id) == number)
        Q_EMIT self->ready(id, picture);
    if (self)
        self->startNext();
}
