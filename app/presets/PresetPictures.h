#pragma once

#include <QCoroTask>
#include <QHash>
#include <QImage>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QUuid>

#include <functional>

// Small pictures drawn on the workers, one for each id. The last wish for an id is the one that
// counts; those that were wished for first are drawn first.
class PresetPictures : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    // Runs on any thread; a null picture when it cannot be drawn.
    using Draw = std::function<QImage()>;

    void want(QUuid id, const Draw& draw);
    // Whatever was wished for is not wished for any more, not even what is being drawn.
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
