#pragma once

#include "copygen/EngineProfile.h"
#include "copygen/InstallChecks.h"
#include "copygen/InstallMessages.h"
#include "copygen/ProcessRunner.h"
#include "model/LocalAIEngineStatus.h"

#include <QCoroTask>
#include <QElapsedTimer>
#include <QFileSystemWatcher>
#include <QFuture>
#include <QMap>
#include <QObject>
#include <QTimer>
#include <QUrl>

#include <functional>
#include <memory>

class SystemLock;

// Whether the local engine is installed, and installing and removing it. Lives on the interface
// thread. An installation in another window or by a command is followed as well.
class LocalAIManager : public QObject {
    Q_OBJECT
public:
    // `machine`: looks at the machine and the disk of a folder.
    using LookAtMachine = std::function<Machine(const QString& folder)>;

    explicit LocalAIManager(const EngineProfile& profile, QObject* parent = nullptr,
                            LookAtMachine machine = &Machine::thisOne);
    // Ends an installation; the next one goes on where it stopped.
    ~LocalAIManager() override;

    const QMap<LocalAIEngine, LocalAIEngineStatus>& statuses() const { return m_statuses; }
    LocalAIEngineStatus status(LocalAIEngine engine) const;
    LocalAIEngineStatus gemmaStatus() const { return status(LocalAIEngine::gemma4E2B); }
    bool canGenerate() const;

    bool isInstallingGemma() const { return isFollowing(); }    // here or elsewhere
    // In another window or by a command: cannot be cancelled here.
    bool isInstallingElsewhere() const { return m_isElsewhere; }
    bool isUninstalling() const { return m_isUninstalling; }
    // No for an engine that already runs on this machine.
    bool needsInstallation() const { return m_profile.kind != EngineKind::configured; }
    bool hasFailed() const { return m_hasFailed; }                    // installMessage() says why
    bool isInstallationCancelled() const { return m_isCancelled; }    // the latest one, here
    bool canResume() const;    // an installation that was interrupted can go on

    // While installing, what is done; else how the last operation ended.
    QString installMessage() const;
    const InstallMessage& installMessageParts() const { return m_message; }    // while installing
    const QString& installStage() const { return m_stage; }    // one of installStages(), or empty
    const QStringList& installStages() const;                  // in their order
    std::optional<double> installProgress() const { return m_progress; }
    qint64 installDownloadedBytes() const { return m_downloadedBytes; }
    std::optional<qint64> installTotalBytes() const { return m_totalBytes; }

    const QString& engineTitle() const { return m_profile.modelName; }
    const QString& engineSubtitle() const { return m_profile.subtitle; }
    QString machineNote() const;              // a warning about the processor; mostly empty
    qint64 downloadSize() const;              // bytes of the model
    QFuture<qint64> installedSize() const;    // bytes that uninstalling frees
    qint64 freedBytes() const { return m_freedBytes; }    // by the last uninstallGemma()
    QUrl licenceURL() const { return QUrl(m_profile.licenceURL); }

    void refresh();
    QCoro::Task<> installGemma();    // goes on where an earlier installation stopped
    void cancelInstall();
    QCoro::Task<> uninstallGemma();

Q_SIGNALS:
    void changed();

private:
    bool isFollowing() const { return m_isInstallingHere || m_isElsewhere; }
    qint64 storedBytes() const;    // of the model
    QString lockFile() const;
    bool isLockedElsewhere() const;
    void watchRoot();
    LocalAIEngineStatus makeGemmaStatus() const;
    QString whatIsMissing() const;
    void beginFollowing();
    void endFollowing(const QString& sentence, bool hasFailed);
    void readProgress();
    std::optional<double> speed() const;    // bytes a second
    QString prepareInstallation();
    void finishInstallation(const QString& sentence, bool hasFailed);

    const EngineProfile m_profile;
    const LookAtMachine m_machine;
    QMap<LocalAIEngine, LocalAIEngineStatus> m_statuses;
    bool m_isInstallingHere = false, m_isElsewhere = false, m_isCancelled = false;
    bool m_isUninstalling = false, m_hasFailed = false;
    QString m_sentence;    // how the last operation ended
    InstallMessage m_message;
    QString m_stage;
    std::optional<double> m_progress;
    qint64 m_downloadedBytes = 0, m_freedBytes = 0;
    std::optional<qint64> m_totalBytes, m_firstBytes;    // m_firstBytes: as the monitor began
    QElapsedTimer m_sinceFirst;
    QTimer m_monitor;
    QFileSystemWatcher m_watcher;          // sees an installation that begins or ends elsewhere
    std::unique_ptr<SystemLock> m_lock;    // held while installing or removing
    ProcessRunner m_runner;
};
