#pragma once

#include <QByteArray>
#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>

class QLocalServer;
class QLocalSocket;

// Tells each program that connects where the service is, and knows whether any is still connected:
// a connection ends with its process, however that ends.
class Rendezvous : public QObject {
    Q_OBJECT
public:
    struct Patience {
        int first = 20'000;    // ms until the first program has to connect
        int after = 3'000;     // ms after the last one has disconnected
    };

    Rendezvous(const QString& socketPath, const QByteArray& line, Patience patience,
               QObject* parent = nullptr);

    bool isListening() const;
    void close();

Q_SIGNALS:
    // No program has connected in time, or the last one has left.
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
