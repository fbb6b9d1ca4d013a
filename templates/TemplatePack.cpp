#include "templates/TemplatePack.h"

#include "model/GuardedJson.h"
#include "templates/TemplateName.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QScopeGuard>
#include <QtEndian>

#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <zip.h>

using namespace Qt::StringLiterals;

namespace {

const QString manifestName = u"pack.json"_s;
constexpr qint64 largestManifest = qint64(512) << 10, largestDefinition = qint64(16) << 20;
// The directory of a .zip file of mostFiles files takes far less; libzip needs some memory for each
// entry that it may contain.
constexpr qint64 largestDirectory = qint64(4) << 20;
// Of all designs together, so that the memory of a pack is bounded: 2,000 designs of 20 layers.
constexpr qsizetype mostLayersOfPack = 40'000;
constexpr int mostTags = 12, longestTag = 30;

// Why a pack is refused, as the end of a Spanish sentence.
struct Refusal {
    QString reason;
};

QString damaged()
{
    return u"está incompleto o dañado"_s;
}

Refusal tooManyFiles()
{
    return {u"tiene más de %1 archivos"_s.arg(TemplatePack::mostFiles)};
}

Refusal tooLarge()
{
    return {u"ocupa más de %1 MB"_s.arg(TemplatePack::largest >> 20)};
}

Refusal hasLink(const QString& name)
{
    return {u"contiene un enlace («%1»)"_s.arg(templateName(name))};
}

struct Manifest {
    QString name, author, licence;
    QStringList order;
    QHash<QString, QStringList> tags;    // by file name
};

QStringList tagsFrom(const json::Value& value)
{
    QStringList tags;
    for (const json::Value& each : value) {
        QString text;
        if (!json::read(each, text))
            continue;
        const QString tag = templateName(text).left(longestTag).trimmed().toLower();
        if (!tag.isEmpty() && !tags.contains(tag) && tags.size() < mostTags)
            tags.append(tag);
    }
    return tags;
}

std::optional<Manifest> readManifest(const QByteArray& bytes)
{
    const json::Value value = json::parsedWithCare(bytes, TemplatePack::mostFiles);
    if (!value.is_object())
        return std::nullopt;
    Manifest manifest;
    for (const auto& [key, text] :
         {std::pair("name", &manifest.name), std::pair("author", &manifest.author),
          std::pair("licence", &manifest.licence)}) {
        QString read;
        if (value.contains(key) && json::read(value[key], read))
            *text = templateName(read);
    }
    if (value.contains("order") && value["order"].is_array())
        json::read(value["order"], manifest.order);
    if (value.contains("tags") && value["tags"].is_object()) {
        for (const auto& entry : value["tags"].items())
            manifest.tags[QString::fromStdString(entry.key())] = tagsFrom(entry.value());
    }
    return manifest;
}

// A pack that is being read, file by file.
class PackReader {
public:
    // Reads the definition or the manifest in the file `name`.
    void add(const QString& name, const QByteArray& bytes)
    {
        if (name == manifestName) {
            if (const auto read = readManifest(bytes))
                m_manifest = *read;
            else
                leaveOut(name, u"no se entiende"_s);
            return;
        }
        DefinitionFile read = readDefinition(bytes);
        if (!read.definition) {
            leaveOut(name, read.error);
            return;
        }
        m_layers += read.definition->textLayers.size() + read.definition->shapeLayers.size();
        if (m_layers > mostLayersOfPack)
            throw Refusal{u"tiene demasiadas capas"_s};
        read.definition->previewPNGBase64.reset();
        read.definition->previewWebPBase64.reset();
        m_pack.designs.append({name, std::move(*read.definition), {}});
    }

    void leaveOut(const QString& name, const QString& reason)
    {
        m_pack.unread.append({templateName(name), reason});
    }

    void setSource(const QString& folder)
    {
        for (PackDesign& design : m_pack.designs)
            design.definition.sourceURL = QUrl::fromLocalFile(folder + u'/' + design.fileName);
    }

    // The pack; `name` is that of its folder or file.
    TemplatePack finish(const QString& name)
    {
        if (m_pack.designs.isEmpty() && m_pack.unread.isEmpty())
            throw Refusal{u"no contiene ninguna plantilla"_s};
        if (m_pack.designs.isEmpty()) {
            const TemplatePack::UnreadFile& first = m_pack.unread.first();
            throw Refusal{u"no contiene ninguna plantilla que se pueda leer («%1» %2)"_s.arg(
                first.name, first.reason)};
        }
        m_pack.name = m_manifest.name.isEmpty() ? templateName(name) : m_manifest.name;
        if (m_pack.name.isEmpty())
            m_pack.name = u"Paquete sin nombre"_s;
        m_pack.author = m_manifest.author;
        m_pack.licence = m_manifest.licence;
        for (PackDesign& design : m_pack.designs)
            design.tags = m_manifest.tags.value(design.fileName);
        sort();
        return std::move(m_pack);
    }

private:
    void sort()
    {
        QHash<QString, qsizetype> places;
        for (const QString& name : m_manifest.order)
            places.insert(name, places.size());
        const auto place = [&](const PackDesign& design) {
            return std::tuple(places.value(design.fileName, places.size()), design.definition.order,
                              design.fileName);
        };
        std::ranges::stable_sort(m_pack.designs, {}, place);
    }

    TemplatePack m_pack;
    Manifest m_manifest;
    qsizetype m_layers = 0;
};

bool isDefinitionName(const QString& name)
{
    return name.endsWith(u".json"_s, Qt::CaseInsensitive) && !name.startsWith(u'.');
}

qint64 largestOf(const QString& name)
{
    return name == manifestName ? largestManifest : largestDefinition;
}

TemplatePack packFromFolder(const QString& path)
{
    QDirIterator files(path, QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    qsizetype count = 0;
    qint64 bytes = 0;
    QStringList names;
    while (files.hasNext()) {
        files.next();
        const QFileInfo file = files.fileInfo();
        if (file.isSymLink())
            throw hasLink(file.fileName());
        if (file.isDir())
            continue;
        if (++count > TemplatePack::mostFiles)
            throw tooManyFiles();
        if (isDefinitionName(file.fileName()))
            names.append(file.fileName());
    }
    names.sort();
    PackReader reader;
    for (const QString& name : std::as_const(names)) {
        QFile file(path + u'/' + name);
        // Opening a named pipe could block without end.
        if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly)) {
            reader.leaveOut(name, u"no se puede abrir"_s);
            continue;
        }
        const QByteArray read = file.read(largestOf(name) + 1);
        bytes += read.size();
        if (bytes > TemplatePack::largest)
            throw tooLarge();
        if (read.size() > largestOf(name))
            reader.leaveOut(name, u"es demasiado grande"_s);
        else
            reader.add(name, read);
    }
    reader.setSource(path);
    return reader.finish(QDir(path).dirName());
}

// Throws a Refusal unless the end of a .zip file announces a directory that libzip can read in
// little memory.
void checkDirectory(QFile& file)
{
    constexpr qint64 endSize = 22, longestComment = 0xffff, locatorSize = 20;
    const auto begins = [](const char* at, QByteArrayView magic) {
        return QByteArrayView(at, magic.size()) == magic;
    };
    const bool isZip = file.read(2) == "PK";
    file.seek(std::max<qint64>(0, file.size() - endSize - longestComment - locatorSize));
    const QByteArray tail = file.readAll();
    bool hasEnd = false;
    for (qsizetype at = tail.size() - endSize; isZip && at >= 0; --at) {
        const char* end = tail.constData() + at;
        if (!begins(end, "PK\5\6"))
            continue;
        hasEnd = true;
        if (at >= locatorSize && begins(end - locatorSize, "PK\6\7"))
            throw Refusal{u"usa la variante Zip64, que Moltiva no lee"_s};
        if (qFromLittleEndian<quint16>(end + 10) > TemplatePack::mostFiles)
            throw tooManyFiles();
        if (qFromLittleEndian<quint32>(end + 12) > largestDirectory)
            throw Refusal{damaged()};
    }
    if (!isZip)
        throw Refusal{u"no es una carpeta ni un archivo .zip"_s};
    if (!hasEnd)
        throw Refusal{damaged()};
}

using ZipArchive = std::unique_ptr<zip_t, decltype(&zip_discard)>;

ZipArchive openedArchive(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw Refusal{u"no se puede abrir"_s};
    checkDirectory(file);
    int error = 0;
    const int own = ::dup(file.handle());
    zip_t* archive = own < 0 ? nullptr : zip_fdopen(own, 0, &error);
    if (!archive && own >= 0)
        ::close(own);
    if (!archive)
        throw Refusal{error == ZIP_ER_MEMORY ? u"no hay memoria"_s : damaged()};
    return {archive, &zip_discard};
}

// The contents of the file at `index`, at most `most` bytes and the first one beyond them. Null if
// it is damaged.
QByteArray unpacked(zip_t* archive, zip_uint64_t index, qint64 most)
{
    const std::unique_ptr<zip_file_t, decltype(&zip_fclose)> file(
        zip_fopen_index(archive, index, 0), &zip_fclose);
    if (!file)
        return {};
    QByteArray bytes("");    // not null
    std::array<char, 65536> block;
    while (bytes.size() <= most) {
        const auto wanted = std::min<qint64>(block.size(), most + 1 - bytes.size());
        const zip_int64_t read = zip_fread(file.get(), block.data(), zip_uint64_t(wanted));
        if (read < 0)
            return {};
        if (read == 0)
            break;
        bytes.append(block.data(), read);
    }
    return bytes;
}

struct ZipEntry {
    zip_uint64_t index = 0;
    QString folder, name;
};

// Whether the name leads out of the folder into which the .zip file would be unpacked.
bool isOutside(const QString& name)
{
    QString path = name;
    path.replace(u'\\', u'/');
    return path.startsWith(u'/') || path.mid(1, 1) == u':' || path.split(u'/').contains(u".."_s);
}

// The definition files of the archive, and its manifest. Throws a Refusal for an archive that is
// not safe to unpack.
QList<ZipEntry> checkedEntries(zip_t* archive)
{
    const zip_int64_t count = zip_get_num_entries(archive, 0);
    if (count > TemplatePack::mostFiles)
        throw tooManyFiles();
    QList<ZipEntry> entries;
    for (zip_uint64_t i = 0; i < zip_uint64_t(count); ++i) {
        zip_stat_t stat;
        zip_uint8_t system = 0;
        zip_uint32_t attributes = 0;
        if (zip_stat_index(archive, i, 0, &stat) != 0 ||
            zip_file_get_external_attributes(archive, i, 0, &system, &attributes) != 0)
            throw Refusal{damaged()};
        const QString path = QString::fromUtf8(stat.name);
        if (isOutside(path)) {
            throw Refusal{
                u"contiene un archivo fuera de su carpeta («%1»)"_s.arg(templateName(path))};
        }
        // The upper half is the mode of a file that was packed on a Unix system.
        if (const auto kind = (attributes >> 16) & S_IFMT;
            kind && kind != S_IFREG && kind != S_IFDIR)
            throw hasLink(path);
        if (stat.encryption_method != ZIP_EM_NONE)
            throw Refusal{u"está protegido con contraseña"_s};
        const auto slash = path.lastIndexOf(u'/');
        const ZipEntry entry{i, path.left(slash + 1), path.mid(slash + 1)};
        if (!isDefinitionName(entry.name) || entry.folder.startsWith(u"__MACOSX/"_s))
            continue;
        // Other decoders may need far more memory than they give bytes.
        if (stat.comp_method != ZIP_CM_STORE && stat.comp_method != ZIP_CM_DEFLATE)
            throw Refusal{u"usa una compresión que Moltiva no lee"_s};
        entries.append(entry);
    }
    return entries;
}

TemplatePack packFromZip(const QString& path)
{
    if (QFileInfo(path).size() > TemplatePack::largest + largestDirectory)
        throw tooLarge();
    const ZipArchive archive = openedArchive(path);
    QList<ZipEntry> entries = checkedEntries(archive.get());
    // Many archives consist of one folder. The definitions are those of the outermost folder that
    // has any.
    const auto depth = [](const ZipEntry& entry) { return entry.folder.count(u'/'); };
    const auto outermost = std::ranges::min_element(entries, {}, depth);
    const QString folder = outermost == entries.end() ? QString() : outermost->folder;
    entries.removeIf([&](const ZipEntry& entry) { return entry.folder != folder; });

    PackReader reader;
    QSet<QString> names;
    qint64 left = TemplatePack::largest;
    for (const ZipEntry& entry : std::as_const(entries)) {
        if (names.contains(entry.name)) {
            reader.leaveOut(entry.name, u"aparece dos veces"_s);
            continue;
        }
        names.insert(entry.name);
        const qint64 most = largestOf(entry.name);
        const QByteArray bytes = unpacked(archive.get(), entry.index, std::min(left, most));
        if (bytes.size() > left)
            throw tooLarge();
        left -= bytes.size();
        if (bytes.isNull())
            reader.leaveOut(entry.name, u"está dañado"_s);
        else if (bytes.size() > most)
            reader.leaveOut(entry.name, u"es demasiado grande"_s);
        else
            reader.add(entry.name, bytes);
    }
    return reader.finish(QFileInfo(path).completeBaseName());
}

// What is written into a .zip file in memory. libzip reads `contents` when the file is closed.
bool addFile(zip_t* archive, const QString& name, const QByteArray& contents)
{
    zip_source_t* source =
        zip_source_buffer(archive, contents.constData(), zip_uint64_t(contents.size()), 0);
    if (!source)
        return false;
    const zip_int64_t index =
        zip_file_add(archive, name.toUtf8().constData(), source, ZIP_FL_ENC_UTF_8);
    if (index < 0)
        zip_source_free(source);
    return index >= 0;
}

QByteArray manifestBytes(const TemplatePack& pack)
{
    json::Value order = json::Value::array(), tags = json::Value::object();
    for (const PackDesign& design : pack.designs) {
        const std::string name = design.fileName.toStdString();
        order.push_back(name);
        if (design.tags.isEmpty())
            continue;
        json::Value& own = tags[name] = json::Value::array();
        for (const QString& tag : design.tags)
            own.push_back(tag.toStdString());
    }
    const json::Value manifest{{"name", pack.name.toStdString()},
                               {"author", pack.author.toStdString()},
                               {"licence", pack.licence.toStdString()},
                               {"order", order},
                               {"tags", tags}};
    return QByteArray::fromStdString(
        manifest.dump(2, ' ', false, json::Value::error_handler_t::replace));
}

QByteArray contentsOf(zip_source_t* source)
{
    zip_stat_t stat;
    if (zip_source_stat(source, &stat) != 0 || zip_source_open(source) != 0)
        return {};
    const auto close = qScopeGuard([source] { zip_source_close(source); });
    QByteArray bytes(qsizetype(stat.size), Qt::Uninitialized);
    return zip_source_read(source, bytes.data(), stat.size) == zip_int64_t(stat.size)
               ? bytes
               : QByteArray();
}

}    // namespace

PackFile readPack(const QString& path)
{
    try {
        const QFileInfo file(path);
        if (file.isDir())
            return {packFromFolder(path), {}};
        if (!file.exists())
            return {std::nullopt, u"no existe"_s};
        if (!file.isFile())
            return {std::nullopt, u"no es una carpeta ni un archivo .zip"_s};
        return {packFromZip(path), {}};
    } catch (const Refusal& refusal) {
        return {std::nullopt, refusal.reason};
    } catch (const std::exception&) {
        return {std::nullopt, u"no hay memoria"_s};
    }
}

QByteArray packBytes(const TemplatePack& pack)
{
    zip_source_t* target = zip_source_buffer_create(nullptr, 0, 0, nullptr);
    if (!target)
        return {};
    zip_source_keep(target);    // for contentsOf(), after the archive is closed
    const auto free = qScopeGuard([target] { zip_source_free(target); });
    ZipArchive archive(zip_open_from_source(target, ZIP_TRUNCATE, nullptr), &zip_discard);
    if (!archive) {
        zip_source_free(target);
        return {};
    }
    QList<QByteArray> contents{manifestBytes(pack)};
    bool isWhole = addFile(archive.get(), manifestName, contents.last());
    for (const PackDesign& design : pack.designs) {
        contents.append(definitionBytes(design.definition));
        isWhole = isWhole && addFile(archive.get(), design.fileName, contents.last());
    }
    if (!isWhole || zip_close(archive.get()) != 0)
        return {};
    archive.release();
    return contentsOf(target);
}

QString packFileName(const QString& name, const QSet<QString>& taken)
{
    QString base = name;
    for (QChar& c : base) {
        if (QStringView(u"/\\:*?\"<>|").contains(c))
            c = u'-';
    }
    while (base.startsWith(u'.'))
        base.remove(0, 1);
    QString file = base + u".json"_s;
    for (int number = 2; taken.contains(file) || file == manifestName; ++number)
        file = u"%1 %2.json"_s.arg(base).arg(number);
    return file;
}
