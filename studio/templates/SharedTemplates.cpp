#include "studio/templates/SharedTemplates.h"

#include "account/AccountError.h"
#include "account/AccountSession.h"
#include "platform/Workers.h"
#include "templates/TemplateName.h"

#include <QCoroFuture>
#include <QCryptographicHash>

#include <array>
#include <chrono>

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::minutes watchedInterval{10};
constexpr std::size_t mostDownloads = 4;    // at a time
constexpr int mostRounds = 3;               // in which a catalogue is copied that changes meanwhile

const QString lost = u"No se ha podido completar la operación."_s;

CatalogueList listOf(const TemplateManifest& manifest)
{
    CatalogueList list;
    list.version = manifest.version;
    list.copied = QDateTime::currentDateTimeUtc();
    for (const SharedTemplateFile& file : manifest.templates.value_or(QList<SharedTemplateFile>()))
        list.entries.append({file.fileName, file.sha256, file.bytes, file.versions.value_or(0)});
    for (const QString& name : manifest.deleted.value_or(QStringList()))
        list.withdrawn.insert(catalogueId(name));
    return list;
}

struct Plan {
    CatalogueList list;
    QList<CatalogueEntry> missing;    // of its entries
    int tooMany = 0;                  // entries for which the copy has no room
};

Plan planOf(const CatalogueCopy& disk, const TemplateManifest& manifest)
{
    Plan plan{listOf(manifest), {}, 0};
    plan.tooMany = plan.list.sanitize();
    std::ranges::copy_if(plan.list.entries, std::back_inserter(plan.missing),
                         [&](const CatalogueEntry& entry) { return !disk.holds(entry); });
    return plan;
}

struct Written {
    QString problem;
    CatalogueCopy::Contents contents;
};

// Makes `list` the copy. An entry that is not stored is replaced by the one of `before`.
Written written(const CatalogueCopy& disk, CatalogueList list, const CatalogueList& before,
                const QSet<QString>& failed)
{
    if (!failed.isEmpty())
        list.version.clear();
    for (CatalogueEntry& entry : list.entries) {
        if (!failed.contains(entry.fileName))
            continue;
        const QUuid id = catalogueId(entry.fileName);
        const auto earlier = std::ranges::find_if(before.entries, [&](const CatalogueEntry& old) {
            return catalogueId(old.fileName) == id;
        });
        if (earlier != before.entries.end())
            entry = *earlier;
    }
    Written result;
    result.problem = disk.replace(std::move(list));
    result.contents = disk.read();
    return result;
}

// The sentence for a number of designs: `one` with one, else `many`, in which %1 is the number.
QString oneOrMany(qsizetype number, const QString& one, const QString& many)
{
    return number == 1 ? one : many.arg(number);
}

QString sentenceAbout(const CatalogueCopy::Contents& contents)
{
    if (contents.damaged > 0) {
        return contents.isThere
                   ? oneOrMany(contents.damaged,
                               u"Una plantilla de la copia del catálogo estaba dañada."_s,
                               u"%1 plantillas de la copia del catálogo estaban dañadas."_s)
                   : u"La copia del catálogo del equipo estaba dañada."_s;
    }
    return contents.unreadable > 0
               ? oneOrMany(contents.unreadable, u"Una plantilla del equipo no se puede leer."_s,
                           u"%1 plantillas del equipo no se pueden leer."_s)
               : QString();
}

}    // namespace

// The files that are being downloaded, four at a time.
struct SharedTemplates::Download {
    QList<CatalogueEntry> wanted;
    std::stop_token stop;
    qsizetype next = 0;
    QSet<QString> failed = {};    // their file names
    bool isWrong = false;         // whether a file was not what the list says
    bool isUnreachable = false;
    QString problem = {};    // why a file could not be stored or fetched
};

SharedTemplates::SharedTemplates(AccountAPI& api, AccountSession& account,
                                 const QString& dataFolder, QObject* parent)
    : QObject(parent), m_api(api), m_account(account),
      m_disk(dataFolder + u"/catalogue"_s, api.origin())
{
    m_timer.setInterval(watchedInterval);
    connect(&m_timer, &QTimer::timeout, this, &SharedTemplates::refresh);
    connect(&m_account, &AccountSession::changed, this, &SharedTemplates::followAccount);
    if (m_account.isAuthenticated())
        followAccount();
    else
        load(this);
}

SharedTemplates::~SharedTemplates()
{
    // Whoever listens has nothing to do with what ends here.
    blockSignals(true);
    m_asksAgain = false;
    m_stop.request_stop();
    m_asked.complete();
}

CatalogueState SharedTemplates::state() const
{
    return m_copy.isThere ? m_state : CatalogueState::none;
}

bool SharedTemplates::isAdministrator() const
{
    return m_account.isAdministrator();
}

void SharedTemplates::followAccount()
{
    const QString key = m_account.accountKey();
    if (key == m_accountKey)
        return;
    m_accountKey = key;
    m_stop.request_stop();
    m_stop = std::stop_source();
    if (!key.isEmpty())
        refresh();
    else
        settle(CatalogueState::refused, AccountError::unauthorized().text());
}

void SharedTemplates::setWatched(bool isWatched)
{
    if (isWatched == m_timer.isActive())
        return;
    if (!isWatched)
        return m_timer.stop();
    m_timer.start();
    refresh();
}

void SharedTemplates::settle(CatalogueState state, const QString& problem)
{
    m_state = state;
    m_problem = problem;
    m_isUnreachable = state == CatalogueState::offline;
    Q_EMIT changed();
}

void SharedTemplates::fail(const std::exception& error)
{
    const auto* transport = dynamic_cast<const TransportError*>(&error);
    if (transport && transport->kind() == TransportError::Kind::stopped)
        settle(CatalogueState::offline, m_problem);
    else
        settle(::isUnreachable(error) ? CatalogueState::offline : CatalogueState::refused,
               readable(error));
}

void SharedTemplates::show(const CatalogueCopy::Contents& contents)
{
    m_copy = contents;
    m_isLoaded = true;
}

void SharedTemplates::refresh()
{
    m_asksAgain = true;
    if (!m_isAsking)
        run(this);
}

QCoro::Task<> SharedTemplates::refreshed()
{
    refresh();
    if (m_isAsking)
        co_await m_asked.wait();
}

QCoro::Task<> SharedTemplates::run(Self self)
{
    self->m_isAsking = true;
    self->m_asked.reset();
    while (self && std::exchange(self->m_asksAgain, false)) {
        QCoro::Task<> asking = ask(self);
        co_await std::move(asking);
    }
    if (!self)
        co_return;
    self->m_isAsking = false;
    self->m_asked.complete();
}

QCoro::Task<> SharedTemplates::load(Self self)
{
    const auto read = [disk = self->m_disk] { return disk.read(); };
    QFuture<CatalogueCopy::Contents> reading = tryOnWorker(read);
    const CatalogueCopy::Contents contents = co_await reading;
    if (!self || self->m_isLoaded)
        co_return;
    self->show(contents);
    self->m_problem = sentenceAbout(contents);
    Q_EMIT self->changed();
}

QCoro::Task<> SharedTemplates::ask(Self self)
{
    if (!self->m_isLoaded) {
        QCoro::Task<> loading = load(self);
        co_await std::move(loading);
        if (!self)
            co_return;
    }
    if (!self->m_api.holdsSession()) {
        self->settle(CatalogueState::refused, AccountError::unauthorized().text());
        co_return;
    }
    self->m_state = CatalogueState::asking;
    Q_EMIT self->changed();
    const std::stop_token stop = self->m_stop.get_token();
    bool isChanging = true;
    for (int round = 0; isChanging && round < mostRounds; ++round) {
        QCoro::Task<bool> updating = update(self, stop);
        isChanging = co_await std::move(updating);
        if (!self)
            co_return;
    }
}

QCoro::Task<bool> SharedTemplates::update(Self self, std::stop_token stop)
{
    TemplateManifest manifest;
    QCoro::Task<TemplateManifest> asking =
        self->m_api.templateManifest(self->m_copy.list.version, stop);
    try {
        manifest = co_await std::move(asking);
    } catch (const std::exception& error) {
        if (self)
            self->fail(error);
        co_return false;
    }
    if (!self)
        co_return false;
    if (!manifest.templates) {
        // Without a version of its own, the program has asked for everything.
        if (self->m_copy.list.version.isEmpty()) {
            self->fail(AccountError::invalidResponse());
            co_return false;
        }
        CatalogueList list = self->m_copy.list;
        const QDateTime now = QDateTime::currentDateTimeUtc();
        // The day is shown, the time is not.
        if (list.copied.toLocalTime().date() != now.toLocalTime().date()) {
            list.copied = now;
            const auto write = [disk = self->m_disk, list] { return disk.replace(list); };
            QFuture<QString> writing = tryOnWorker(write);
            co_await writing;
            if (!self)
                co_return false;
        }
        self->m_copy.list.copied = now;
        self->settle(CatalogueState::upToDate, sentenceAbout(self->m_copy));
        co_return false;
    }
    QCoro::Task<bool> copying = copyAll(self, manifest, stop);
    co_return co_await std::move(copying);
}

QCoro::Task<bool> SharedTemplates::copyAll(Self self, TemplateManifest manifest,
                                           std::stop_token stop)
{
    const auto planning = [disk = self->m_disk, manifest] {
        return std::optional(planOf(disk, manifest));
    };
    QFuture<std::optional<Plan>> planned = tryOnWorker(planning);
    const std::optional<Plan> found = co_await planned;
    if (!self)
        co_return false;
    if (!found) {
        self->settle(CatalogueState::refused, lost);
        co_return false;
    }
    const Plan& plan = *found;
    const auto download = std::make_shared<Download>();
    download->wanted = plan.missing;
    download->stop = stop;
    std::vector<QCoro::Task<>> lanes;
    for (std::size_t lane = 0; lane < mostDownloads; ++lane)
        lanes.push_back(downloadNext(self, download));
    for (QCoro::Task<>& lane : lanes)
        co_await lane;
    if (!self)
        co_return false;
    if (stop.stop_requested()) {
        self->settle(CatalogueState::offline, {});
        co_return false;
    }
    const auto write = [disk = self->m_disk, list = plan.list, before = self->m_copy.list,
                        failed = download->failed] {
        return std::optional(written(disk, list, before, failed));
    };
    QFuture<std::optional<Written>> writing = tryOnWorker(write);
    const std::optional<Written> ended = co_await writing;
    if (!self)
        co_return false;
    if (!ended) {
        self->settle(CatalogueState::refused, lost);
        co_return false;
    }
    const Written& result = *ended;
    const bool isComplete = result.contents.list.version == plan.list.version;
    self->show(result.contents);
    if (!result.problem.isEmpty()) {
        self->settle(
            CatalogueState::refused,
            u"La copia del catálogo del equipo no se ha podido guardar: %1."_s.arg(result.problem));
    } else if (!download->failed.isEmpty()) {
        const QString failures = oneOrMany(
            download->failed.size(),
            u"Una plantilla del equipo no se ha podido descargar y queda como estaba."_s,
            u"%1 plantillas del equipo no se han podido descargar y quedan como estaban."_s);
        self->settle(download->isUnreachable ? CatalogueState::offline : CatalogueState::refused,
                     download->problem.isEmpty() ? failures : failures + u' ' + download->problem);
    } else if (plan.tooMany > 0) {
        self->settle(
            CatalogueState::refused,
            oneOrMany(plan.tooMany,
                      u"El catálogo del equipo es demasiado grande: falta una plantilla."_s,
                      u"El catálogo del equipo es demasiado grande: faltan %1 plantillas."_s));
    } else {
        self->settle(CatalogueState::upToDate, sentenceAbout(result.contents));
    }
    const bool isRaced = !isComplete && download->failed.isEmpty();
    co_return result.problem.isEmpty() && (download->isWrong || isRaced);
}

QCoro::Task<> SharedTemplates::downloadNext(Self self, std::shared_ptr<Download> download)
{
    while (self && download->next < download->wanted.size()) {
        const CatalogueEntry entry = download->wanted[download->next++];
        if (download->stop.stop_requested() || download->isUnreachable) {
            download->failed.insert(entry.fileName);
            continue;
        }
        TemplateFileResponse file;
        QCoro::Task<TemplateFileResponse> asking = self->m_api.templateFile(
            entry.fileName, AccountAPI::SharedVersion::current, download->stop);
        try {
            file = co_await std::move(asking);
        } catch (const std::exception& error) {
            download->failed.insert(entry.fileName);
            download->problem = readable(error);
            download->isUnreachable = download->isUnreachable || ::isUnreachable(error);
            continue;
        }
        if (!self)
            co_return;
        const auto store = [disk = self->m_disk, entry, bytes = file.jsonBase64] {
            return disk.store(entry, bytes);
        };
        QFuture<CatalogueCopy::Stored> storing = tryOnWorker(store);
        const CatalogueCopy::Stored stored = co_await storing;
        if (stored.isRight && stored.problem.isEmpty())
            continue;
        download->failed.insert(entry.fileName);
        download->isWrong = download->isWrong || !stored.isRight;
        download->problem = stored.isRight
                                ? stored.problem
                                : u"El servidor ha enviado otra cosa que la anunciada."_s;
    }
}

QString SharedTemplates::failed(const std::exception& error)
{
    m_isUnreachable = ::isUnreachable(error);
    return readable(error);
}

QCoro::Task<SharedTemplates::Fetched> SharedTemplates::fetch(Self self, QString fileName,
                                                             AccountAPI::SharedVersion version)
{
    Fetched fetched;
    QCoro::Task<TemplateFileResponse> asking = self->m_api.templateFile(fileName, version);
    try {
        const TemplateFileResponse file = co_await std::move(asking);
        const QByteArray digest =
            QCryptographicHash::hash(file.jsonBase64, QCryptographicHash::Sha256).toHex();
        if (file.sha256.compare(QLatin1StringView(digest), Qt::CaseInsensitive) == 0)
            fetched.bytes = file.jsonBase64;
        else
            fetched.problem = AccountError::invalidResponse().text();
    } catch (const std::exception& error) {
        fetched.problem = self ? self->failed(error) : lost;
    }
    if (!self && fetched.problem.isEmpty())
        fetched.problem = lost;
    co_return fetched;
}

// Awaits a request that changes the catalogue.
QCoro::Task<QString> SharedTemplates::ended(Self self, QCoro::Task<> changing)
{
    QString problem;
    try {
        co_await std::move(changing);
    } catch (const std::exception& error) {
        problem = self ? self->failed(error) : lost;
    }
    if (self)
        self->refresh();
    co_return std::move(problem);
}

QCoro::Task<QString> SharedTemplates::upload(const QString& fileName, const QByteArray& bytes)
{
    return ended(this, m_api.uploadTemplate(fileName, bytes, std::nullopt));
}

QCoro::Task<QString> SharedTemplates::share(JSONVisualTemplateDefinition definition)
{
    QString fileName = catalogueFileName(definition.id);
    const auto same =
        std::ranges::find(m_copy.list.entries, definition.id,
                          [](const CatalogueEntry& entry) { return catalogueId(entry.fileName); });
    if (same != m_copy.list.entries.end())
        fileName = same->fileName;
    definition.previewPNGBase64.reset();
    definition.previewWebPBase64.reset();
    return upload(fileName, definitionBytes(definition));
}

QCoro::Task<QString> SharedTemplates::rename(const QString& fileName, const QString& name)
{
    return renameFor(this, fileName, templateName(name));
}

// Changes what the service has now, not the copy, so that what another administrator has changed
// meanwhile remains.
QCoro::Task<QString> SharedTemplates::renameFor(Self self, QString fileName, QString name)
{
    if (name.isEmpty())
        co_return u"Escribe un nombre para la plantilla."_s;
    QCoro::Task<Fetched> fetching = fetch(self, fileName, AccountAPI::SharedVersion::current);
    const Fetched fetched = co_await std::move(fetching);
    if (!fetched.problem.isEmpty())
        co_return QString(fetched.problem);
    DefinitionFile read = readDefinition(fetched.bytes);
    if (!read.definition)
        co_return u"La plantilla «%1» %2."_s.arg(fileName, read.error);
    read.definition->name = name;
    QCoro::Task<QString> uploading = self->upload(fileName, definitionBytes(*read.definition));
    co_return co_await std::move(uploading);
}

QCoro::Task<QString> SharedTemplates::replaceWith(const QString& fileName,
                                                  const JSONVisualTemplateDefinition& definition)
{
    return replaceFor(this, fileName, definition);
}

QCoro::Task<QString> SharedTemplates::replaceFor(Self self, QString fileName,
                                                 JSONVisualTemplateDefinition definition)
{
    QCoro::Task<Fetched> fetching = fetch(self, fileName, AccountAPI::SharedVersion::current);
    const Fetched fetched = co_await std::move(fetching);
    if (!fetched.problem.isEmpty())
        co_return QString(fetched.problem);
    if (const DefinitionFile read = readDefinition(fetched.bytes); read.definition) {
        definition.name = read.definition->name;
        definition.order = read.definition->order;
    }
    definition.id = catalogueId(fileName);
    definition.previewPNGBase64.reset();
    definition.previewWebPBase64.reset();
    QCoro::Task<QString> uploading = self->upload(fileName, definitionBytes(definition));
    co_return co_await std::move(uploading);
}

QCoro::Task<QString> SharedTemplates::withdraw(const QString& fileName)
{
    return ended(this, m_api.deleteTemplate(fileName));
}

QCoro::Task<QString> SharedTemplates::restore(const QString& fileName)
{
    return restoreFor(this, fileName);
}

QCoro::Task<QString> SharedTemplates::restoreFor(Self self, QString fileName)
{
    QCoro::Task<Fetched> fetching = fetch(self, fileName, AccountAPI::SharedVersion::previous);
    const Fetched fetched = co_await std::move(fetching);
    if (!fetched.problem.isEmpty())
        co_return QString(fetched.problem);
    const QList<SharedDesign>& designs = self->m_copy.designs;
    const auto shown = std::ranges::find(designs, fileName, &SharedDesign::fileName);
    if (shown != designs.end() && shown->keptVersions == 0)
        co_return u"No hay ninguna versión anterior guardada."_s;
    QCoro::Task<QString> uploading = self->upload(fileName, fetched.bytes);
    co_return co_await std::move(uploading);
}
