#pragma once

#include "copygen/LocalAIInstallation.h"
#include "tests/copygen/FileServer.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

inline QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline void writeFile(const QString& path, const QByteArray& content, bool isExecutable = false)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(content);
    if (isExecutable)
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

// Bytes that repeat nowhere, so that a wrong range shows in the digest.
inline QByteArray someBytes(qsizetype count, const QByteArray& seed)
{
    QByteArray bytes;
    for (int block = 0; bytes.size() < count; ++block) {
        bytes +=
            QCryptographicHash::hash(seed + QByteArray::number(block), QCryptographicHash::Sha256);
    }
    return bytes.first(count);
}

inline PinnedFile pinOf(const FileServer& server, const QByteArray& name)
{
    const QByteArray file = server.files[name];
    return {
        server.address(QString::fromLatin1(name)), file.size(),
        QString::fromLatin1(QCryptographicHash::hash(file, QCryptographicHash::Sha256).toHex())};
}

// Runs the event loop until the condition holds; false when that does not come within half a
// minute.
template <typename Condition>
bool happens(const Condition& condition)
{
    constexpr int most = 6000;
    QTimer tick;
    tick.start(std::chrono::milliseconds(5));
    for (int turn = 0; turn < most && !condition(); ++turn)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return condition();
}
