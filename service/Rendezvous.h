#pragma once

#include <QByteArray>
#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>

class QLocalServer;
class QLocalSocket;

// Sends `line`, which holds the service's address, to each program that connects, and notices when
// none is connected any more. The system closes the connection of a program even if it crashes.
class Rendezvous : public QObject {
    Q_OBJECT
public:
    struct Patience {
        int first = 20'000;    // ms to wait for the first program
        int after = 3'000;     // ms to wait after the last program has disconnected
    };

    Rendezvous(const QString& socketPath, const QByteArray& line, Patience patience,
               QObject* parent = nullptr);

    bool isListening() const;
    void close();

Q_SIGNALS:
    // Emitted when the time of `Patience` has passed without a connected program.
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
