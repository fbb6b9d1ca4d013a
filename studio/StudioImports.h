#pragma once

#include "studio/PhotoImport.h"

#include <QObject>
#include <QPointer>

#include <chrono>

// Runs imports of photos, one at a time: starting one stops the one under way. Emits ended() for
// each import that was not stopped.
class StudioImports : public QObject {
    Q_OBJECT
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    StudioImports(std::shared_ptr<PhotoCache> photos, Clock clock)
        : m_photos(std::move(photos)), m_clock(std::move(clock))
    {
    }
    ~StudioImports() override;

    void start(const QList<QUrl>& filesAndFolders);
    void stop();
    bool isRunning() const { return m_control != nullptr; }

Q_SIGNALS:
    void progressed(const PhotoImport::Progress& progress);
    // `imported` is empty if the import failed; `failure` is then the system's reason.
    void ended(const std::optional<PhotoImport::Imported>& imported, const QString& failure);

private:
    static QCoro::Task<> run(QPointer<StudioImports> self, QList<QUrl> urls,
                             std::shared_ptr<PhotoCache> photos,
                             std::shared_ptr<PhotoImport::Control> control);
    void show(const PhotoImport::Progress& progress);

    std::shared_ptr<PhotoCache> m_photos;
    std::shared_ptr<PhotoImport::Control> m_control;    // null: no import is under way
    Clock m_clock;
    std::optional<std::chrono::steady_clock::time_point>
        m_shown;    // last emission of progressed()
};
