#pragma once

#include "platform/PreferencesStore.h"
#include "studio/StudioSession.h"
#include "tests/support/ScriptedWriter.h"

#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// A session with a scripted writer and a clock that stands still.
class CopyStudio {
public:
    CopyStudio()
    {
        session.setLocalCopyWriter(writer.functions());
        session.restoreWorkspaceIfNeeded();
        EXPECT_TRUE(turnUntil([this] { return session.didRestoreWorkspace(); }));
    }

    template <typename Done>
    static bool turnUntil(Done done, int milliseconds = 30'000)
    {
        QElapsedTimer watch;
        for (watch.start(); !done() && watch.elapsed() < milliseconds;)
            QGuiApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents,
                                           5);
        return done();
    }

    QUrl photo(const QString& name) const
    {
        const QString file = folder.filePath(name + QStringLiteral(".png"));
        QImage image(8, 10, QImage::Format_RGB32);
        image.fill(QColor::fromHsv(int(qHash(name) % 360), 200, 200));
        EXPECT_TRUE(image.save(file));
        return QUrl::fromLocalFile(file);
    }
    void load(const QStringList& names)
    {
        QList<QUrl> photos;
        for (const QString& name : names)
            photos.append(photo(name));
        session.load(photos);
        EXPECT_TRUE(turnUntil([this] { return !session.isImporting(); }));
        rest();
    }
    // Lets the time pass in which changes join, and applies what waited for it.
    void rest()
    {
        now += std::chrono::seconds(2);
        session.copy().applyWaiting();
    }
    void answer(const QString& name) { answer(ScriptedWriter::copy(name)); }
    void answer(const GeneratedCopy& copy)
    {
        ASSERT_TRUE(turnUntil([this] { return writer.isWriting(); }));
        writer.answer(copy);
        EXPECT_TRUE(turnUntil([this] {
            return writer.isWriting() || !session.isAnalyzing() ||
                   session.copy().finished() == session.copy().total();
        }));
    }
    // Generates for all images and answers each with its place, from 1.
    void generateAll()
    {
        session.selectAll();
        session.copy().analyzeSelected();
        for (int i = 1; session.isAnalyzing(); ++i)
            answer(QString::number(i));
    }
    QString text(int index, CopySlot slot) const
    {
        for (const TextLayer& layer : session.batch().items[index].layers) {
            if (layer.slot == slot)
                return layer.text;
        }
        return {};
    }
    QString title(int index) const { return text(index, CopySlot::title); }
    QStringList titles() const
    {
        QStringList all;
        for (int i = 0; i < session.batch().items.size(); ++i)
            all.append(title(i));
        return all;
    }
    QString caption(int index) const
    {
        return session.batch().items[index].analysis.publicationCaption;
    }
    void write(int index, CopySlot slot, const QString& words)
    {
        session.selectSingleIndex(index);
        session.setText(slot, words);
        rest();
    }
    void undo()
    {
        session.undo();
        QGuiApplication::processEvents();    // until then changes belong to the undo
        rest();
    }
    QList<StatusAction> actions() const { return session.statusLog().current().link.actions; }

    QTemporaryDir folder;
    std::chrono::steady_clock::time_point now = std::chrono::steady_clock::now();
    PreferencesStore preferences{folder.filePath(QStringLiteral("p.sqlite"))};
    ScriptedWriter writer;
    StudioSession session{std::make_shared<PhotoCache>(folder.filePath(QStringLiteral("cache"))),
                          preferences, [this] { return now; }};
};
