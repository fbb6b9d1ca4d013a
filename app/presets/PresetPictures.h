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
    // Forgets all calls of want(). ready() is not even emitted for pictures that are being drawn.
    void dropWishes();
    bool isIdle() const { return m_running == 0; }

Q_SIGNALS:
    void ready(QUuid id, const QImage& picture);

private:
    struct Wish {
        QUuid id;
        Draw draw;
        quint64 number = 0;
    };
    void startNext();
    static QCoro::Task<> run(QPointer<PresetPictures> self, Wish wish);

    QList<Wish> m_wishes;
    QHash<QUuid, quint64> m_latest;
    quint64 m_count = 0;
    int m_running = 0;
};
