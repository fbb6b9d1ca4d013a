#include "templates/CatalogueCopy.h"

#include "model/GuardedJson.h"
#include "platform/AtomicFile.h"
#include "platform/PlainFile.h"
#include "platform/SystemLock.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QThread>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype mostEntries = 2000, mostWithdrawn = 20'000, longestVersion = 200;
// In all designs together: a layer takes several times as much memory as its text in a file.
constexpr qsizetype mostLayersInAll = 100'000;
constexpr qint64 largestCopy = qint64(64) << 20, largestEntry = qint64(16) << 20;
constexpr qint64 largestList = qint64(4) << 20;
constexpr auto ownerOnly = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
const QString lockName = u".lock"_s;

// The list as it is stored.
struct StoredCatalogue {
    QString version, copied;
    QList<CatalogueEntry> templates;
    QList<QUuid> deleted;
};

QString hexDigest(QByteArrayView bytes)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(bytes);
    return QString::fromLatin1(hash.result().toHex());
}

bool isDigest(const QString& text)
{
    constexpr qsizetype digits = 64;
    return text.size() == digits && std::ranges::all_of(text, [](QChar c) {
               return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f');
           });
}

bool isWhole(const CatalogueEntry& entry, QByteArrayView bytes)
{
    return bytes.size() == entry.bytes && hexDigest(bytes) == entry.sha256;
}

}    // namespace

namespace json {

template <>
struct JsonFields<CatalogueEntry> {
    using Entry = CatalogueEntry;
    static constexpr auto fields =
        std::tuple{required("fileName", &Entry::fileName), required("sha256", &Entry::sha256),
                   required("bytes", &Entry::bytes), lenient("versions", &Entry::versions)};
};

template <>
struct JsonFields<StoredCatalogue> {
    using List = StoredCatalogue;
    static constexpr auto fields =
        std::tuple{required("version", &List::version), required("copied", &List::copied),
                   required("templates", &List::templates), required("deleted", &List::deleted)};
};

}    // namespace json

namespace {

std::optional<CatalogueList> readList(QByteArrayView bytes)
{
    StoredCatalogue stored;
    if (!json::read(json::parsedWithCare(bytes), stored))
        return std::nullopt;
    CatalogueList list;
    list.version = stored.version;
    list.copied = QDateTime::fromString(stored.copied, Qt::ISODate);
    list.entries = std::move(stored.templates);
    list.withdrawn = QSet<QUuid>(stored.deleted.cbegin(), stored.deleted.cend());
    list.sanitize();
    return list;
}

QByteArray listBytes(const CatalogueList& list)
{
    QList<QUuid> withdrawn = list.withdrawn.values();
    std::ranges::sort(withdrawn);
    return json::written(StoredCatalogue{list.version, list.copied.toUTC().toString(Qt::ISODate),
                                         list.entries, withdrawn});
}

}    // namespace

QUuid catalogueId(const QString& fileName)
{
    constexpr qsizetype idLength = 36;
    const QString id = fileName.left(idLength);
    const QUuid read = QUuid::fromString(id);
    const bool isName = fileName.size() == idLength + 5 && fileName.endsWith(u".json") &&
                        read.toString(QUuid::WithoutBraces).compare(id, Qt::CaseInsensitive) == 0;
    return isName ? read : QUuid();
}

QString catalogueFileName(QUuid id)
{
    return id.toString(QUuid::WithoutBraces) + u".json"_s;
}

int CatalogueList::sanitize()
{
    version.truncate(longestVersion);
    QSet<QUuid> ids;
    QList<CatalogueEntry> taken;
    int dropped = 0;
    qint64 total = 0;
    for (CatalogueEntry& entry : entries) {
        entry.sha256 = std::move(entry.sha256).toLower();
        const QUuid id = catalogueId(entry.fileName);
        if (id.isNull() || ids.contains(id) || !isDigest(entry.sha256) || entry.bytes < 1)
            continue;
        const bool hasRoom = entry.bytes <= largestEntry && total + entry.bytes <= largestCopy &&
                             taken.size() < mostEntries;
        if (!hasRoom) {
            ++dropped;
            continue;
        }
        entry.versions = std::clamp(entry.versions, 0, 999);
        total += entry.bytes;
        ids.insert(id);
        taken.append(entry);
    }
    entries = std::move(taken);
    withdrawn.subtract(ids);
    withdrawn.remove(QUuid());
    while (withdrawn.size() > mostWithdrawn)
        withdrawn.erase(withdrawn.cbegin());
    return dropped;
}

CatalogueCopy::CatalogueCopy(const QString& folder, const QByteArray& origin)
    : m_place(folder), m_folder(folder + u'/' + hexDigest(origin).left(32))
{
}

QString CatalogueCopy::pathOf(const CatalogueEntry& entry) const
{
    return m_folder + u'/' + entry.sha256 + u".json"_s;
}

QString CatalogueCopy::listPath() const
{
    return m_folder + u"/list.json"_s;
}

CatalogueCopy::Contents CatalogueCopy::read() const
{
    // Another program may replace the copy and remove files while they are read here.
    constexpr int attempts = 5;
    Contents contents;
    QByteArray before;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (QFileInfo(m_place).isSymLink() || QFileInfo(m_folder).isSymLink())
            return {};
        const QByteArray bytes = plainFile(listPath(), largestList).value_or(QByteArray());
        if (attempt > 0 && bytes == before)
            break;
        before = bytes;
        contents = readOnce(bytes);
        if (contents.damaged == 0)
            break;
    }
    return contents;
}

CatalogueCopy::Contents CatalogueCopy::readOnce(const QByteArray& bytes) const
{
    Contents contents;
    std::optional<CatalogueList> list = readList(bytes);
    if (!list) {
        contents.damaged = QFileInfo::exists(listPath());
        return contents;
    }
    contents.isThere = true;
    qsizetype layers = 0;
    for (const CatalogueEntry& entry : list->entries) {
        const auto file = plainFile(pathOf(entry), entry.bytes);
        if (!file || !isWhole(entry, *file)) {
            ++contents.damaged;
            continue;
        }
        DefinitionFile read = readDefinition(*file);
        if (read.definition)
            layers += read.definition->textLayers.size() + read.definition->shapeLayers.size();
        if (!read.definition || layers > mostLayersInAll) {
            ++contents.unreadable;
            continue;
        }
        read.definition->id = catalogueId(entry.fileName);
        // A preview would show the photo of whoever has made the design.
        read.definition->previewPNGBase64.reset();
        read.definition->previewWebPBase64.reset();
        contents.designs.append({entry.fileName, *std::move(read.definition), entry.versions});
    }
    if (contents.damaged > 0)
        list->version.clear();
    std::ranges::stable_sort(contents.designs, {}, [](const SharedDesign& design) {
        return std::pair(design.definition.order, design.definition.name);
    });
    contents.list = *std::move(list);
    return contents;
}

bool CatalogueCopy::holds(const CatalogueEntry& entry) const
{
    const auto file = plainFile(pathOf(entry), entry.bytes);
    return file && isWhole(entry, *file);
}

// The folder and the one around it are the program's own: a link in their place is replaced.
QString CatalogueCopy::makeFolder() const
{
    for (const QString& folder : {m_place, m_folder}) {
        const QFileInfo found(folder);
        if (found.isSymLink() || (found.exists() && !found.isDir()))
            QFile::remove(folder);
        if (!QFileInfo(folder).isDir() && !QDir().mkdir(folder, ownerOnly))
            return qt_error_string();
    }
    return {};
}

// Runs `work` while no other program changes the copy.
template <typename Work>
QString CatalogueCopy::locked(Work work) const
{
    if (QString problem = makeFolder(); !problem.isEmpty())
        return problem;
    constexpr int attempts = 1000;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const SystemLock lock(m_folder + u'/' + lockName);
        if (lock.isOurs())
            return work();
        if (lock.state() == SystemLock::State::impossible)
            return qt_error_string();
        QThread::msleep(10);
    }
    return u"otro programa la está cambiando"_s;
}

CatalogueCopy::Stored CatalogueCopy::store(const CatalogueEntry& entry, QByteArrayView bytes) const
{
    if (!isWhole(entry, bytes))
        return {};
    return {true, locked([&] { return writeAtomically(pathOf(entry), bytes); })};
}

QString CatalogueCopy::replace(CatalogueList list) const
{
    return locked([&] {
        const auto isMissing = [this](const CatalogueEntry& entry) {
            const QFileInfo file(pathOf(entry));
            return file.isSymLink() || !file.isFile() || file.size() != entry.bytes;
        };
        // Another program may have removed a file that its own list does not contain.
        if (list.entries.removeIf(isMissing) > 0)
            list.version.clear();
        if (QString problem = writeAtomically(listPath(), listBytes(list)); !problem.isEmpty())
            return problem;
        QSet<QString> wanted{listPath(), m_folder + u'/' + lockName};
        for (const CatalogueEntry& entry : list.entries)
            wanted.insert(pathOf(entry));
        QDirIterator files(m_folder, QDir::Files | QDir::Hidden | QDir::System);
        while (files.hasNext()) {
            const QString path = files.next();
            if (!wanted.contains(path))
                QFile::remove(path);
        }
        return QString();
    });
}
