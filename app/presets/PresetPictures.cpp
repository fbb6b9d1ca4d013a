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
    m_wishes.append({id, draw, m_count});
    startNext();
}

void PresetPictures::dropWishes()
{
    m_wishes.clear();
    m_latest.clear();
}

void PresetPictures::startNext()
{
    while (m_running < atOnce && !m_wishes.isEmpty()) {
        ++m_running;
        const Wish wish = m_wishes.takeFirst();
        run(this, wish);
    }
}

QCoro::Task<> PresetPictures::run(QPointer<PresetPictures> self, Wish wish)
{
    QFuture<QImage> drawing = runOnWorker([draw = wish.draw] {
        try {
            return draw();
        } catch (const std::exception&) {
            return QImage();    // out of memory: the tile keeps its old picture
        }
    });
    const QImage picture = co_await drawing;
    if (!self)
        co_return;
    --self->m_running;
    if (self->m_latest.value(wish.id) == wish.number)
        Q_EMIT self->ready(wish.id, picture);
    if (self)
        self->startNext();
}
