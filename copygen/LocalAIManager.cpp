#include "copygen/LocalAIManager.h"

#include "platform/SystemLock.h"
#include "platform/UserFolders.h"

#include <QCoroFuture>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QPointer>

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::milliseconds monitorInterval{700};
constexpr std::chrono::seconds longestInstallation{3600};
constexpr qint64 mlxModelBytes = 3'583'088'661;

// The sum of the sizes of all regular files below the folders.
qint64 directorySize(const QStringList& folders)
{
    qint64 sum = 0;
    for (const QString& folder : folders) {
        QDirIterator files(folder, QDir::Files | QDir::Hidden | QDir::NoSymLinks,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            files.next();
            sum += files.fileInfo().size();
        }
    }
    return sum;
}

// Removes the folder and all that is in it; if `path` is a symbolic link, also the folder that it
// leads to.
bool removeFolder(const QString& path)
{
    const QFileInfo folder(path);
    // Empty when it is gone; QDir takes that for the current folder.
    const QString target = folder.canonicalFilePath();
    const bool isRemoved = target.isEmpty() || QDir(target).removeRecursively();
    return isRemoved && (!folder.isSymLink() || QFile::remove(path));
}

// Takes the lock that allows one installation at a time. Removes a lock file that cannot be opened,
// such as another user's: it would keep this user from ever installing.
std::unique_ptr<SystemLock> takenLock(const QString& path)
{
    // isLockedElsewhere() of another window holds the lock for a moment.
    constexpr int attempts = 5;
    std::unique_ptr<SystemLock> lock;
    for (int i = 0; i < attempts && !(lock && lock->isOurs()); ++i) {
        if (lock && lock->state() == SystemLock::State::impossible)
            QFile::remove(path);
        if (lock)
            QThread::msleep(1);
        lock = std::make_unique<SystemLock>(path);
    }
    return lock;
}

}    // namespace

LocalAIManager::LocalAIManager(const EngineProfile& profile, QObject* parent, LookAtMachine machine)
    : QObject(parent), m_profile(profile), m_machine(std::move(machine))
{
    m_monitor.setInterval(monitorInterval);
    m_monitor.callOnTimeout(this, [this] {
        readProgress();
        refresh();
    });
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &LocalAIManager::refresh);
    refresh();
}

LocalAIManager::~LocalAIManager() = default;

LocalAIEngineStatus LocalAIManager::status(LocalAIEngine engine) const
{
    const auto found = m_statuses.constFind(engine);
    return found == m_statuses.cend()
               ? LocalAIEngineStatus::unavailable(engine, u"Comprobando disponibilidad..."_s)
               : *found;
}

bool LocalAIManager::canGenerate() const
{
    const LocalAIEngineStatus gemma = gemmaStatus();
    return gemma.isAvailable && gemma.isInstalled;
}

bool LocalAIManager::canResume() const
{
    const LocalAIEngineStatus gemma = gemmaStatus();
    return needsInstallation() && !gemma.isInstalled && !gemma.isInstalling &&
           (QFile::exists(m_profile.installation.gemmaProgressFile()) || storedBytes() > 0);
}

QString LocalAIManager::installMessage() const
{
    return isFollowing() ? m_message.text() : m_sentence;
}

const QStringList& LocalAIManager::installStages() const
{
    static const QStringList mlx{
        u"Preparando entorno local"_s,   u"Instalando dependencias de Gemma"_s,
        u"Ajustando runtime de Gemma"_s, u"Calculando tamaño del modelo"_s,
        u"Descargando Gemma"_s,          u"Finalizando instalación"_s};
    static const QStringList llama{u"Preparando entorno local"_s, u"Instalando motor local"_s,
                                   u"Calculando tamaño del modelo"_s, u"Descargando Gemma"_s,
                                   u"Finalizando instalación"_s};
    return m_profile.kind == EngineKind::mlx ? mlx : llama;
}

QString LocalAIManager::machineNote() const
{
    return needsInstallation() ? processorWarning(m_machine(QString())) : QString();
}

qint64 LocalAIManager::downloadSize() const
{
    switch (m_profile.kind) {
    case EngineKind::mlx:
        return mlxModelBytes;
    case EngineKind::llama:
        return m_profile.pins.model.bytes + m_profile.pins.projector.bytes;
    case EngineKind::configured:
        return 0;
    }
    return 0;
}

QFuture<qint64> LocalAIManager::installedSize() const
{
    if (!needsInstallation())
        return QtFuture::makeReadyFuture(qint64(0));
    return tryOnWorker(
        [folder = m_profile.installation.gemmaDirectory()] { return directorySize({folder}); });
}

qint64 LocalAIManager::storedBytes() const
{
    const LocalAIInstallation& installation = m_profile.installation;
    if (m_profile.kind != EngineKind::llama) {
        return directorySize(
            {installation.gemmaModelDirectory(), installation.gemmaCacheDirectory()});
    }
    const QDir folder(installation.gemmaModelDirectory());
    qint64 sum = 0;
    for (const PinnedFile& pin : {m_profile.pins.model, m_profile.pins.projector}) {
        const QString path = folder.filePath(pin.fileName());
        // The part first: it may become the file between the two looks.
        const qint64 part = QFileInfo(path + u".part"_s).size();
        sum += std::max(part, QFileInfo(path).size());
    }
    return sum;
}

QString LocalAIManager::lockFile() const
{
    return m_profile.installation.rootDirectory + u"/install.lock"_s;
}

bool LocalAIManager::isLockedElsewhere() const
{
    if (m_lock)
        return false;
    return SystemLock(lockFile(), SystemLock::Open::existing).state() == SystemLock::State::others;
}

// Watches the root folder; while it does not exist, the innermost folder above it that does.
void LocalAIManager::watchRoot()
{
    QDir folder(m_profile.installation.rootDirectory);
    while (!folder.exists() && !folder.isRoot())
        folder.setPath(QDir::cleanPath(folder.absoluteFilePath(u".."_s)));
    const QStringList wanted{folder.absolutePath()};
    if (m_watcher.directories() == wanted)
        return;
    if (!m_watcher.directories().isEmpty())
        m_watcher.removePaths(m_watcher.directories());
    m_watcher.addPaths(wanted);
}

void LocalAIManager::refresh()
{
    if (needsInstallation()) {
        watchRoot();
        const bool wasElsewhere = std::exchange(m_isElsewhere, isLockedElsewhere());
        if (m_isElsewhere && !wasElsewhere) {
            beginFollowing();
            readProgress();
        }
        if (!m_isElsewhere && wasElsewhere && !m_isInstallingHere)
            endFollowing({}, false);
    }
    m_statuses = {{LocalAIEngine::gemma4E2B, makeGemmaStatus()}};
    Q_EMIT changed();
}

LocalAIEngineStatus LocalAIManager::makeGemmaStatus() const
{
    LocalAIEngineStatus status;
    if (isInstallingGemma()) {
        status.isInstalling = true;
        const QString message = installMessage();
        status.detail = message.isEmpty() ? u"Instalando Gemma 4 E2B..."_s : message;
        status.progress = m_progress;
        return status;
    }
    if (m_profile.isInstalled()) {
        status.isAvailable = status.isInstalled = true;
        status.detail = m_profile.readyDetail;
        return status;
    }
    if (m_profile.endpoint)
        return LocalAIEngineStatus::unavailable(status.engine, m_profile.endpoint->problem);
    return LocalAIEngineStatus::unavailable(status.engine, whatIsMissing());
}

QString LocalAIManager::whatIsMissing() const
{
    const bool isLlama = m_profile.kind == EngineKind::llama;
    if (!m_profile.isRuntimeInstalled()) {
        return isLlama && m_profile.isModelInstalled()
                   ? u"Falta el motor llama.cpp. Instala el paquete llama.cpp-tools-extra o pulsa "
                     "Instalar para descargarlo."_s
                   : u"No instalado. Descarga el motor local antes de usarlo."_s;
    }
    const qint64 size = storedBytes();
    if (size < 1)
        return u"Runtime instalado, falta descargar el modelo. Pulsa Instalar para continuar."_s;
    if (isLlama && size >= downloadSize())    // enough bytes, but not of the pinned sizes
        return u"El motor local está incompleto. Pulsa Instalar para repararlo."_s;
    return u"Modelo incompleto: %1 descargados. Pulsa Instalar para continuar."_s.arg(
        formatBytes(size));
}

void LocalAIManager::beginFollowing()
{
    m_hasFailed = false;
    m_isCancelled = false;
    m_sentence.clear();
    m_stage.clear();
    m_message = {u"Preparando instalación de Gemma..."_s, {}};
    m_progress = std::nullopt;
    m_downloadedBytes = 0;
    m_totalBytes = std::nullopt;
    m_firstBytes = std::nullopt;
    m_monitor.start();
}

void LocalAIManager::endFollowing(const QString& sentence, bool hasFailed)
{
    m_monitor.stop();
    m_sentence = sentence;
    m_hasFailed = hasFailed;
    m_progress = std::nullopt;
}

void LocalAIManager::readProgress()
{
    QFile file(m_profile.installation.gemmaProgressFile());
    constexpr qint64 largest = 64 * 1024;    // bytes
    const auto snapshot =
        file.open(QIODevice::ReadOnly) ? readProgressSnapshot(file.read(largest)) : std::nullopt;
    m_totalBytes = snapshot ? snapshot->totalBytes : std::nullopt;
    m_downloadedBytes = storedBytes();
    if (m_totalBytes)
        m_downloadedBytes = std::min(m_downloadedBytes, *m_totalBytes);
    if (!m_firstBytes) {
        m_firstBytes = m_downloadedBytes;
        m_sinceFirst.start();
    }
    m_stage = snapshot ? snapshot->stage : QString();
    m_progress = makeInstallProgress(snapshot, m_downloadedBytes, m_totalBytes);
    m_message = makeInstallMessage(snapshot, m_downloadedBytes, m_totalBytes, speed());
}

std::optional<double> LocalAIManager::speed() const
{
    const double seconds = double(m_sinceFirst.elapsed()) / 1000;
    if (seconds < 1)
        return std::nullopt;
    return std::max(0.0, double(m_downloadedBytes - *m_firstBytes) / seconds);
}

QCoro::Task<> LocalAIManager::installGemma()
{
    if (!needsInstallation() || m_isUninstalling || isInstallingGemma())
        co_return;
    m_isInstallingHere = true;
    beginFollowing();
    refresh();
    QString failure = prepareInstallation();
    if (failure.isEmpty() && m_lock->state() == SystemLock::State::others) {
        // Another program began to install at the same time: refresh() follows it from now on.
        m_isElsewhere = false;
        finishInstallation({}, false);
        co_return;
    }
    if (failure.isEmpty()) {
        const QPointer<LocalAIManager> self(this);
        try {
            const QStringList arguments{u"-lc"_s, m_profile.installScript()};
            co_await m_runner.run(u"/bin/bash"_s, arguments, longestInstallation);
        } catch (const LocalAIProcessError& error) {
            failure = error.message;
        } catch (const std::exception& error) {
            failure = QString::fromLocal8Bit(error.what());
        }
        if (!self)
            co_return;
        if (failure.isEmpty() && !m_profile.isInstalled())
            failure = u"el motor local ha quedado incompleto."_s;
    }
    if (m_isCancelled && !failure.isEmpty())
        finishInstallation(u"Instalación cancelada."_s, false);
    else if (!failure.isEmpty())
        finishInstallation(u"No se ha podido instalar Gemma: "_s + failure, true);
    else
        finishInstallation(u"Gemma 4 E2B instalado."_s, false);
}

// Takes the lock, makes the folder and looks at the machine. Returns why nothing can be installed.
QString LocalAIManager::prepareInstallation()
{
    const LocalAIInstallation& installation = m_profile.installation;
    const QString root = installation.rootDirectory;
    if (!QDir().mkpath(root))
        return u"no se ha podido crear la carpeta «%1»."_s.arg(root);
    m_lock = takenLock(lockFile());
    if (m_lock->state() == SystemLock::State::others)
        return {};
    if (!m_lock->isOurs() || !QDir().mkpath(installation.gemmaDirectory()))
        return u"%1 («%2»)."_s.arg(whyNotWritable(root), root);
    QFile::remove(installation.gemmaProgressFile());    // of an earlier installation
    return whyNotInstallable(m_machine(root), downloadSize() - storedBytes());
}

void LocalAIManager::finishInstallation(const QString& sentence, bool hasFailed)
{
    m_lock.reset();
    m_isInstallingHere = false;
    endFollowing(sentence, hasFailed);
    refresh();
}

void LocalAIManager::cancelInstall()
{
    m_isCancelled = m_isInstallingHere;
    if (m_isInstallingHere)
        m_runner.stop();
}

QCoro::Task<> LocalAIManager::uninstallGemma()
{
    if (!needsInstallation() || m_isUninstalling || isInstallingGemma())
        co_return;
    m_isUninstalling = true;
    m_freedBytes = 0;
    QString failure;
    const QString folder = m_profile.installation.gemmaDirectory();
    if (QDir(folder).exists()) {
        m_lock = takenLock(lockFile());
        if (m_lock->state() == SystemLock::State::others) {
            failure = u"se está instalando en otra ventana."_s;
        } else if (QDir(folder).exists()) {    // not removed by another window meanwhile
            Q_EMIT changed();
            const QPointer<LocalAIManager> self(this);
            const auto remove = [folder] {
                const qint64 size = directorySize({folder});
                const bool isRemoved = removeFolder(folder);
                return std::pair(isRemoved, size - directorySize({folder}));
            };
            auto removed = tryOnWorker(remove);
            const auto [isRemoved, freed] = co_await removed;
            if (!self)
                co_return;
            m_freedBytes = freed;
            if (!isRemoved)
                failure = u"%1 («%2»)."_s.arg(whyNotWritable(folder), folder);
        }
        m_lock.reset();
    }
    m_isUninstalling = false;
    m_hasFailed = !failure.isEmpty();
    m_sentence = failure.isEmpty() ? u"Gemma 4 E2B desinstalado."_s
                                   : u"No se ha podido desinstalar Gemma: "_s + failure;
    refresh();
}
