#include "studio/templates/TemplateLibrary.h"

#include "model/PlainText.h"
#include "platform/AtomicFile.h"
#include "platform/Workers.h"
#include "templates/MissingFonts.h"
#include "templates/TemplateName.h"
#include "templates/TemplateSearch.h"

#include <QCoroFuture>
#include <QFileInfo>
#include <QRandomGenerator>

using namespace Qt::StringLiterals;

namespace {

const QString ownKey = u"own"_s, teamKey = u"team"_s, programKey = u"moltiva"_s;
const QString packPrefix = u"pack:"_s;
constexpr qsizetype mostRecent = 5, mostTags = 60;

QString countedTemplates(qsizetype count)
{
    return counted(count, u"plantilla", u"plantillas");
}

// A sentence about the files of a pack that could not be read, with a space before it; empty if
// there are none.
QString tellUnread(const QList<TemplatePack::UnreadFile>& unread)
{
    constexpr qsizetype mostNamed = 3;
    if (unread.isEmpty())
        return {};
    QStringList named;
    for (const auto& file : unread.first(std::min(unread.size(), mostNamed)))
        named.append(u"«%1» (%2)"_s.arg(file.name, file.reason));
    QString list = named.join(u", "_s);
    if (const auto others = unread.size() - named.size(); others > 0)
        list += u" y %1 más"_s.arg(others);
    return (unread.size() == 1 ? u" No se pudo leer %1."_s : u" No se pudieron leer %1."_s)
        .arg(list);
}

std::optional<SocialFormat> suitedFormat(const VisualTemplate& design)
{
    for (const SocialFormat format : allCases<SocialFormat>()) {
        if (design.aspectRatio && design.suits(format))
            return format;
    }
    return std::nullopt;
}

// An own template for other proportions than those of the formats suits none of them.
bool suitsNone(const VisualTemplate& design)
{
    return design.aspectRatio && !suitedFormat(design);
}

bool suits(const LibraryDesign& design, SocialFormat format)
{
    return design.format.value_or(format) == format;
}

QString noMemory()
{
    return u"no hay memoria"_s;
}

// What `path` ends in, as a name in a sentence.
QString fileName(const QString& path)
{
    return templateName(QFileInfo(path).fileName());
}

}    // namespace

// What load() reads.
struct TemplateLibrary::Contents {
    BuiltInTemplateLibrary gallery;
    Shelf program;
    QList<Pack> packs;
    QList<TemplatePack> removed;
    QStringList damaged;
};

// How installing a pack ended.
struct TemplateLibrary::Installation {
    std::optional<Pack> pack;
    QString problem = noMemory();    // why there is no pack
};

TemplateLibrary::TemplateLibrary(SavedTemplates& saved, SharedTemplates* shared,
                                 PreferencesStore& preferences, const QString& dataFolder,
                                 QObject* parent)
    : QObject(parent), m_saved(saved), m_shared(shared), m_marks(preferences),
      m_disk(dataFolder + u"/packs"_s), m_program{
                                            programKey, DesignOrigin::program, u"De Moltiva"_s, {}}
{
    connect(&saved, &SavedTemplates::templatesChanged, this, [this] {
        readOwn();
        arrange();
        Q_EMIT changed();
    });
    if (shared)
        connect(shared, &SharedTemplates::changed, this, &TemplateLibrary::readTeam);
    readOwn();
    arrange();
}

void TemplateLibrary::load()
{
    if (std::exchange(m_isLoading, true))
        return;
    runLoading(this);
    readTeam();
}

QCoro::Task<> TemplateLibrary::runLoading(Self self)
{
    QFuture<std::optional<Contents>> reading =
        tryOnWorker([disk = self->m_disk]() -> std::optional<Contents> {
            Contents read;
            read.program = shelfOf(programKey, DesignOrigin::program, u"De Moltiva"_s,
                                   read.gallery.pack().designs);
            TemplatePacks::Installed installed = disk.read();
            for (const TemplatePack& pack : std::as_const(installed.packs))
                read.packs.append(packOf(pack));
            read.removed = installed.removed;
            read.damaged = installed.damaged;
            return read;
        });
    const std::optional<Contents> read = co_await reading;
    if (!self)
        co_return;
    self->m_isLoaded = true;
    if (read) {
        self->m_gallery = read->gallery;
        self->m_program = read->program;
        self->m_removed = read->removed;
        // A pack that was installed meanwhile is newer than what was read.
        const QList<Pack> installed = std::exchange(self->m_packs, read->packs);
        for (const Pack& pack : installed)
            self->put(pack);
        self->arrange();
    }
    Q_EMIT self->changed();
    if (!read) {
        Q_EMIT self->told(u"No se pueden leer las plantillas: %1."_s.arg(noMemory()), true);
        co_return;
    }
    for (const QString& name : read->damaged) {
        Q_EMIT self->told(
            u"El paquete «%1» está dañado y no se puede leer. Instálalo otra vez."_s.arg(name),
            true);
    }
}

// Reads the team's catalogue on a worker, because looking up its fonts takes time.
void TemplateLibrary::readTeam()
{
    if (!m_shared)
        return;
    // Most changes are those of the state: the catalogue is being asked, or is up to date.
    const bool hasTeam = m_shared->state() != CatalogueState::none;
    if (m_teamNumber > 0 && m_teamRead.isSharedWith(m_shared->designs()) &&
        m_withdrawn == m_shared->withdrawn() && m_hasTeam == hasTeam)
        return;
    m_teamRead = m_shared->designs();
    m_withdrawn = m_shared->withdrawn();
    m_hasTeam = hasTeam;
    QList<PackDesign> designs;
    for (const SharedDesign& shared : std::as_const(m_teamRead))
        designs.append({shared.fileName, shared.definition, {}});
    runReadingTeam(this, ++m_teamNumber, designs);
}

QCoro::Task<> TemplateLibrary::runReadingTeam(Self self, int number, QList<PackDesign> designs)
{
    QFuture<Shelf> reading = tryOnWorker(
        [designs] { return shelfOf(teamKey, DesignOrigin::team, u"Del equipo"_s, designs); });
    const Shelf team = co_await reading;
    if (!self || number != self->m_teamNumber)
        co_return;
    self->m_team = team;
    self->arrange();
    Q_EMIT self->changed();
}

TemplateLibrary::Entry TemplateLibrary::entryOf(const VisualTemplate& own)
{
    LibraryDesign design;
    design.name = own.name;
    design.format = suitedFormat(own);
    design.missingFont = missingFont(own);
    return {design, own.id, foldedForSearch(own.name), own};
}

TemplateLibrary::Shelf TemplateLibrary::shelfOf(const QString& key, DesignOrigin origin,
                                                const QString& title,
                                                const QList<PackDesign>& designs)
{
    Shelf shelf{key, origin, title, {}};
    for (const PackDesign& each : designs) {
        LibraryDesign design;
        design.name = each.definition.name;
        design.origin = origin;
        design.format = each.definition.socialFormat();
        design.tags = each.tags;
        design.missingFont = missingFont(each.definition);
        if (origin == DesignOrigin::team)
            design.fileName = each.fileName;
        QString searched = design.name + u' ' + design.tags.join(u' ');
        if (origin == DesignOrigin::pack)
            searched += u' ' + title;
        shelf.entries.append(
            {design, each.definition.id, foldedForSearch(searched), each.definition});
    }
    return shelf;
}

TemplateLibrary::Pack TemplateLibrary::packOf(const TemplatePack& pack)
{
    return {pack, shelfOf(packPrefix + TemplatePacks::keyOf(pack), DesignOrigin::pack, pack.name,
                          pack.designs)};
}

void TemplateLibrary::readOwn()
{
    m_own = {ownKey, DesignOrigin::user, u"Mis plantillas"_s, {}};
    for (const VisualTemplate& own : m_saved.templates().entries()) {
        if (!suitsNone(own))
            m_own.entries.append(entryOf(own));
    }
}

// Puts all designs together and gives each an id of its own: the catalogue has the same id as the
// template that was shared.
void TemplateLibrary::arrange()
{
    m_shelves = {m_own};
    if (m_shared && m_shared->state() != CatalogueState::none)
        m_shelves.append({teamKey, DesignOrigin::team, u"Del equipo"_s, m_team.entries});
    m_shelves.append(m_program);
    if (m_shared) {
        m_shelves.last().entries.removeIf([this](const Entry& entry) {
            return m_shared->withdrawn().contains(entry.definitionId);
        });
    }
    for (const Pack& pack : std::as_const(m_packs))
        m_shelves.append(pack.shelf);

    m_places.clear();
    QHash<QUuid, int> repeated;    // how often an id was found again
    for (qsizetype i = 0; i < m_shelves.size(); ++i) {
        QList<Entry>& entries = m_shelves[i].entries;
        for (qsizetype k = 0; k < entries.size(); ++k) {
            const QUuid own = entries[k].definitionId;
            QUuid id = own;
            while (m_places.contains(id)) {
                id =
                    QUuid::createUuidV5(own, u"%1 %2"_s.arg(m_shelves[i].key).arg(++repeated[own]));
            }
            entries[k].design.id = id;
            m_places.insert(id, {i, k});
        }
    }
}

// Adds an installed pack in its place by name, or replaces that with the same key.
void TemplateLibrary::put(const Pack& pack)
{
    m_packs.removeIf([&](const Pack& other) { return other.shelf.key == pack.shelf.key; });
    const auto name = [](const Pack& each) { return each.pack.name.toCaseFolded(); };
    m_packs.insert(std::ranges::upper_bound(m_packs, name(pack), {}, name) - m_packs.begin(), pack);
}

const BuiltInTemplateLibrary& TemplateLibrary::gallery() const
{
    if (!m_gallery)
        m_gallery.emplace();
    return *m_gallery;
}

// Calls `visit` for each design that suits the format.
template <typename Visit>
void TemplateLibrary::visit(SocialFormat format, Visit visit) const
{
    for (const Shelf& shelf : m_shelves) {
        for (const Entry& entry : shelf.entries) {
            if (suits(entry.design, format))
                visit(entry);
        }
    }
}

const TemplateLibrary::Entry* TemplateLibrary::entry(QUuid id) const
{
    const auto place = m_places.constFind(id);
    return place == m_places.cend() ? nullptr : &m_shelves[place->first].entries[place->second];
}

QList<LibrarySection> TemplateLibrary::sections(SocialFormat format) const
{
    QList<LibrarySection> sections;
    for (const Shelf& shelf : m_shelves) {
        LibrarySection section{shelf.key, shelf.origin, shelf.title, {}};
        for (const Entry& entry : shelf.entries) {
            if (suits(entry.design, format))
                section.designs.append(entry.design);
        }
        if (shelf.origin != DesignOrigin::pack || !section.designs.isEmpty())
            sections.append(section);
    }
    return sections;
}

const LibraryDesign* TemplateLibrary::find(QUuid id) const
{
    const Entry* found = entry(id);
    return found ? &found->design : nullptr;
}

TemplateApplication TemplateLibrary::application(QUuid id) const
{
    const Entry* found = entry(id);
    if (!found)
        return {};
    if (const auto* own = std::get_if<VisualTemplate>(&found->source))
        return [own = *own](PublicationItem& item) { own.apply(item); };
    return std::get<JSONVisualTemplateDefinition>(found->source).application();
}

std::optional<JSONVisualTemplateDefinition>
TemplateLibrary::definition(QUuid id, SocialFormat otherwise) const
{
    const Entry* found = entry(id);
    if (!found)
        return std::nullopt;
    if (const auto* own = std::get_if<VisualTemplate>(&found->source))
        return definitionOf(*own, otherwise);
    return std::get<JSONVisualTemplateDefinition>(found->source);
}

JSONVisualTemplateDefinition TemplateLibrary::definitionOf(const VisualTemplate& own,
                                                           SocialFormat otherwise) const
{
    return gallery().templateDefinition(own, own.name, suitedFormat(own).value_or(otherwise));
}

QList<QUuid> TemplateLibrary::found(const QString& search, const QString& tag, bool onlyFavourites,
                                    SocialFormat format) const
{
    const TemplateSearch words(search);
    QList<QUuid> found;
    visit(format, [&](const Entry& entry) {
        const LibraryDesign& design = entry.design;
        if ((tag.isEmpty() || design.tags.contains(tag)) &&
            (!onlyFavourites || isFavourite(design.id)) && words.matches(entry.folded))
            found.append(design.id);
    });
    return found;
}

QStringList TemplateLibrary::tags(SocialFormat format) const
{
    QHash<QString, int> uses;
    visit(format, [&](const Entry& entry) {
        for (const QString& tag : entry.design.tags)
            ++uses[tag];
    });
    QList<std::tuple<int, QString, QString>> sorted;
    for (auto use = uses.cbegin(); use != uses.cend(); ++use)
        sorted.append({-use.value(), foldedForSearch(use.key()), use.key()});
    std::ranges::sort(sorted);
    QStringList tags;
    for (const auto& [negativeUses, folded, tag] : sorted.first(std::min(sorted.size(), mostTags)))
        tags.append(tag);
    return tags;
}

QList<QUuid> TemplateLibrary::recent(SocialFormat format) const
{
    QList<QUuid> recent;
    for (const QUuid id : m_marks.used()) {
        const LibraryDesign* design = find(id);
        if (design && suits(*design, format) && recent.size() < mostRecent)
            recent.append(id);
    }
    return recent;
}

std::optional<QUuid> TemplateLibrary::anyOther(QUuid notThis, SocialFormat format,
                                               const QList<QUuid>& among) const
{
    QList<QUuid> others;
    visit(format, [&](const Entry& entry) {
        const QUuid id = entry.design.id;
        if (id != notThis && (among.isEmpty() || among.contains(id)))
            others.append(id);
    });
    if (others.isEmpty())
        return std::nullopt;
    return others[QRandomGenerator::global()->bounded(others.size())];
}

void TemplateLibrary::setFavourite(QUuid id, bool favourite)
{
    m_marks.setFavourite(id, favourite);
    Q_EMIT marksChanged();
}

void TemplateLibrary::noteUsed(QUuid id)
{
    m_marks.noteUsed(id);
    Q_EMIT marksChanged();
}

void TemplateLibrary::keepRemoved(const TemplatePack& pack)
{
    m_removed.append(pack);
    if (m_removed.size() > TemplatePacks::mostRemoved)
        m_removed.removeFirst();
}

QString TemplateLibrary::lastRemovedPack() const
{
    return m_removed.isEmpty() ? QString() : m_removed.last().name;
}

QCoro::Task<> TemplateLibrary::installPack(QString path)
{
    return runInstalling(this, path);
}

QCoro::Task<> TemplateLibrary::runInstalling(Self self, QString path)
{
    QFuture<Installation> installing = tryOnWorker([disk = self->m_disk, path]() -> Installation {
        PackFile read = readPack(path);
        if (!read.pack)
            return {std::nullopt, read.error};
        if (const QString failure = disk.write(*read.pack); !failure.isEmpty())
            return {std::nullopt, u"no se puede guardar (%1)"_s.arg(failure)};
        return {packOf(*read.pack), {}};
    });
    const Installation installed = co_await installing;
    if (!self)
        co_return;
    if (!installed.pack) {
        Q_EMIT self->told(
            u"No se puede instalar «%1»: %2."_s.arg(fileName(path), installed.problem), true);
        co_return;
    }
    const TemplatePack& pack = installed.pack->pack;
    const auto earlier = std::ranges::find(self->m_packs, installed.pack->shelf.key,
                                           [](const Pack& each) { return each.shelf.key; });
    const bool isNew = earlier == self->m_packs.end();
    if (!isNew)
        self->keepRemoved(earlier->pack);
    self->put(*installed.pack);
    self->arrange();
    Q_EMIT self->changed();
    const QString sentence = isNew
                                 ? u"Paquete «%1» instalado: %2."_s
                                 : u"Paquete «%1» sustituido: %2. Puedes recuperar el anterior."_s;
    Q_EMIT self->told(sentence.arg(pack.name, countedTemplates(pack.designs.size())) +
                          tellUnread(pack.unread),
                      !pack.unread.isEmpty());
}

QCoro::Task<> TemplateLibrary::removePack(QString sectionKey)
{
    return runRemoving(this, sectionKey);
}

QCoro::Task<> TemplateLibrary::runRemoving(Self self, QString sectionKey)
{
    const QString key = sectionKey.mid(packPrefix.size());
    QFuture<QString> removing =
        runOnWorker([disk = self->m_disk, key] { return disk.remove(key); });
    const QString failure = co_await removing;
    if (!self)
        co_return;
    const auto removed = std::ranges::find(self->m_packs, sectionKey,
                                           [](const Pack& each) { return each.shelf.key; });
    if (removed == self->m_packs.end())
        co_return;
    const QString name = removed->pack.name;
    if (!failure.isEmpty()) {
        Q_EMIT self->told(u"No se pudo quitar el paquete «%1»: %2."_s.arg(name, failure), true);
        co_return;
    }
    self->keepRemoved(removed->pack);
    self->m_packs.erase(removed);
    self->arrange();
    Q_EMIT self->changed();
    Q_EMIT self->told(u"Paquete «%1» quitado. Puedes recuperarlo."_s.arg(name), false);
}

QCoro::Task<> TemplateLibrary::callBackPack()
{
    return runCallingBack(this);
}

QCoro::Task<> TemplateLibrary::runCallingBack(Self self)
{
    if (self->m_removed.isEmpty())
        co_return;
    const TemplatePack pack = self->m_removed.takeLast();
    const QString shelf = packPrefix + TemplatePacks::keyOf(pack);
    const bool isReplacing = std::ranges::any_of(
        self->m_packs, [&](const Pack& each) { return each.shelf.key == shelf; });
    const auto write = [disk = self->m_disk, pack, isReplacing]() -> Installation {
        const QString failure = disk.write(pack);
        if (failure.isEmpty() && !isReplacing)
            disk.forgetRemoved(TemplatePacks::keyOf(pack));
        return failure.isEmpty() ? Installation{packOf(pack), {}}
                                 : Installation{std::nullopt, failure};
    };
    QFuture<Installation> writing = tryOnWorker(write);
    const Installation written = co_await writing;
    if (!self)
        co_return;
    if (!written.pack) {
        self->m_removed.append(pack);
        Q_EMIT self->told(
            u"No se pudo recuperar el paquete «%1»: %2."_s.arg(pack.name, written.problem), true);
        co_return;
    }
    // The version that this one replaces can be called back in turn.
    const auto newer = std::ranges::find(self->m_packs, written.pack->shelf.key,
                                         [](const Pack& each) { return each.shelf.key; });
    if (newer != self->m_packs.end())
        self->keepRemoved(newer->pack);
    self->put(*written.pack);
    self->arrange();
    Q_EMIT self->changed();
    Q_EMIT self->told(u"Paquete «%1» recuperado."_s.arg(pack.name), false);
}

QCoro::Task<> TemplateLibrary::exportOwn(QString path)
{
    return runExporting(this, path);
}

QCoro::Task<> TemplateLibrary::runExporting(Self self, QString path)
{
    TemplatePack pack;
    pack.name = QFileInfo(path).completeBaseName();
    QSet<QString> taken;
    for (const VisualTemplate& own : self->m_saved.templates().entries()) {
        const SocialFormat format = suitedFormat(own).value_or(allCases<SocialFormat>().front());
        const QString name = packFileName(own.name, taken);
        taken.insert(name);
        pack.designs.append({name, self->gallery().templateDefinition(own, own.name, format), {}});
    }
    const qsizetype count = pack.designs.size();
    if (count == 0 || count >= TemplatePack::mostFiles) {
        Q_EMIT self->told(count == 0 ? u"No hay plantillas tuyas que exportar."_s
                                     : u"No se pueden exportar tus plantillas: son demasiadas para "
                                       "un paquete."_s,
                          true);
        co_return;
    }
    QFuture<std::optional<QString>> writing = tryOnWorker([path, pack]() -> std::optional<QString> {
        const QByteArray bytes = packBytes(pack);
        return bytes.isEmpty() ? std::nullopt : std::optional(writeAtomically(path, bytes));
    });
    const std::optional<QString> written = co_await writing;
    const QString failure = written.value_or(noMemory());
    if (!self)
        co_return;
    if (failure.isEmpty()) {
        Q_EMIT self->told(
            u"%1 en el paquete %2."_s.arg(
                counted(count, u"plantilla exportada", u"plantillas exportadas"), fileName(path)),
            false);
    } else {
        Q_EMIT self->told(u"No se pudieron exportar tus plantillas: %1."_s.arg(failure), true);
    }
}
