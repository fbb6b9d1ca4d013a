#pragma once

#include "platform/PreferencesStore.h"
#include "tests/support/ScriptedAccount.h"

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

// Runs the program as a command, with a scripted account and a home folder of its own.
class CommandTest : public ::testing::Test {
protected:
    struct Outcome {
        int status = -1;
        QString out, err;
    };

    QString photo(const QString& name)
    {
        QImage image(300, 200, QImage::Format_RGB32);
        image.fill(Qt::darkGreen);
        QDir().mkpath(QFileInfo(path(name)).path());
        EXPECT_TRUE(image.save(path(name)));
        return path(name);
    }
    QString textFile(const QString& name)
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write("hola") > 0);
        return path(name);
    }
    QString holding(const QString& name, const QByteArray& bytes)
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) > 0);
        return file.fileName();
    }
    QString path(const QString& name) const { return m_folder.filePath(name); }
    // Starts the program without a display, in a home folder of its own.
    std::unique_ptr<QProcess> started(const QStringList& arguments)
    {
        auto process = std::make_unique<QProcess>();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
            environment.remove(QString::fromLatin1(name));
        for (const char* name : {"XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME"})
            environment.insert(QString::fromLatin1(name), path(QStringLiteral("home")));
        environment.insert(QStringLiteral("MOLTIVA_SERVICE_URL"), m_service);
        // The leak checker of the child sometimes takes memory of exiting Qt threads for leaked.
        // Other tests check the same code for leaks in this process.
        environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("detect_leaks=0"));
        process->setProcessEnvironment(environment);
        process->start(QStringLiteral(MOLTIVA_PROGRAM), arguments);
        return process;
    }
    // Waits while running the event loop, because the service that answers the program is in this
    // process.
    static void wait(const std::function<bool()>& until)
    {
        QElapsedTimer watch;
        for (watch.start(); !until() && watch.elapsed() < 60000;) {
            QEventLoop turn;
            QTimer::singleShot(5, &turn, &QEventLoop::quit);
            turn.exec();
        }
        EXPECT_TRUE(until());
    }
    static Outcome ended(QProcess& process)
    {
        wait([&] { return process.state() == QProcess::NotRunning; });
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }
    Outcome run(const QStringList& arguments) { return ended(*started(arguments)); }
    static QList<QJsonObject> objectsIn(const Outcome& outcome)
    {
        QList<QJsonObject> objects;
        for (const QString& line : outcome.out.split(u'\n', Qt::SkipEmptyParts))
            objects.append(QJsonDocument::fromJson(line.toUtf8()).object());
        return objects;
    }
    QTemporaryDir m_folder;
    PreferencesStore m_preferences{path(QStringLiteral("scripted.sqlite"))};
    ScriptedAccount m_account{m_preferences, Scripted::signedIn};
    QString m_service = m_account.address();
};
