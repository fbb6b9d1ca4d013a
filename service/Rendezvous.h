#pragma once

#include <QByteArray>
#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>

class QLocalServer;
class QLocalSocket;

// Tells who connects where the service is, and knows whether anybody is still there: a connection
// ends with its process, however that ends.
class Rendezvous : public QObject {
    Q_OBJECT
public:
    struct Patience {
        int first = 20'000;    // ms until somebody has to come
        int after = 3'000;     // ms after the last one went
    };

    Rendezvous(const QString& socketPath, const QByteArray& line, Patience patience,
               QObject* parent = nullptr);

    bool isListening() const;
    void close();

Q_SIGNALS:
    void unused();

private:
    void greet(QLocalSocket* socket);
    void leave(QLocalSocket* socket);

    QLocalServer* m_server;
    QByteArray m_line;
    int m_after;
    QSet<QLocalSocket*> m_present;
    QTimer m_alone;
};
