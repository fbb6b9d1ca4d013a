#pragma once

#include <QCoroTask>
#include <QHash>
#include <QImage>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QUuid>

#include <functional>

// Draws the pictures of presets on worker threads, in the order in which want() was called. Of
// several calls for an id only the last counts.
class PresetPictures : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    // Runs on any thread; gives a null picture if it cannot draw.
    using Draw = std::function<QImage()>;

    void want(QUuid id, const Draw& draw);
    // Replaces the wishes whose drawing has not begun. `drawOf` is called for an id when its turn
    // comes; the pictures that are being drawn are not drawn again.
    void wantOnly(const QList<QUuid>& ids, const std::function<Draw(QUuid)>& drawOf);
    // Forgets all calls of want(). ready() is not even emitted for pictures that are being drawn.
    void dropWishes();
    bool isIdle() const { return m_drawing == 0; }

Q_SIGNALS:
    void ready(QUuid id, const QImage& picture);

private:
    struct Wish {
        QUuid id;
        std::function<Draw(QUuid)> drawOf;
        quint64 number = 0;
    };
    void startNext();
    static QCoro::Task<> run(QPointer<PresetPictures> self, QUuid id, quint64 number, Draw draw);

    QList<Wish> m_wishes;
    QHash<QUuid, quint64> m_latest;
    quint64 m_count = 0;
    QHash<QUuid, quint64> m_running;    // the last number that is being drawn of each id
    int m_drawing = 0;
};
