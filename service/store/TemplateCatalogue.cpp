#include "service/store/TemplateCatalogue.h"

#include "model/GuardedJson.h"
#include "service/store/Database.h"
#include "service/store/Refusal.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype largestTemplate = 16 << 20, longestFileName = 120;
// What a program copies of a catalogue at most.
constexpr qint64 mostTemplates = 2000, largestCatalogue = 64 << 20;

void checkName(const QString& name)
{
    const auto isSafe = [](QChar c) {
        return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
               QStringView(u"._-").contains(c);
    };
    if (name.size() > longestFileName || name.startsWith(u'.') || !name.endsWith(u".json") ||
        !std::ranges::all_of(name, isSafe))
        throw Refusal(400, "invalid_template", u"the file name"_s);
}

QString digestOf(QByteArrayView content)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(content);
    return QString::fromLatin1(hash.result().toHex());
}

void markWithdrawn(Transaction& transaction, const QString& name, qint64 now)
{
    transaction.run("INSERT INTO template (name, is_withdrawn, updated) VALUES (?, 1, ?)"
                    " ON CONFLICT (name) DO UPDATE SET is_withdrawn = 1, updated = excluded.updated"
                    " WHERE NOT is_withdrawn",
                    {name, now});
}

void needRoom(Transaction& transaction)
{
    Rows all = transaction.rows(
        "SELECT count(*), sum(length(content)) FROM template"
        " JOIN template_version ON number = template.current WHERE NOT is_withdrawn");
    if (all.next() && (all.number(0) > mostTemplates || all.number(1) > largestCatalogue))
        throw Refusal(409, "template_catalogue_full");
}

}    // namespace

void storeTemplate(Database& database, const TemplateUploadRequest& upload, qint64 now)
{
    const QString& name = upload.fileName;
    checkName(name);
    if (upload.oldFileName)
        checkName(*upload.oldFileName);
    const QByteArray& content = upload.templateJSONBase64;
    if (content.size() > largestTemplate || !json::parsedWithCare(content).is_object())
        throw Refusal(400, "invalid_template", u"not a JSON object"_s);
    const QString digest = digestOf(content);

    Transaction transaction(database);
    transaction.run("INSERT INTO template (name, is_withdrawn, updated) VALUES (?, 0, ?)"
                    " ON CONFLICT (name) DO UPDATE"
                    " SET is_withdrawn = 0, updated = excluded.updated",
                    {name, now});
    transaction.run("INSERT INTO template_version (name, sha256, content) VALUES (?, ?, ?)"
                    " ON CONFLICT DO NOTHING",
                    {name, digest, content});
    transaction.run("UPDATE template SET current ="
                    " (SELECT number FROM template_version WHERE name = ? AND sha256 = ?)"
                    " WHERE name = ?",
                    {name, digest, name});
    transaction.run("DELETE FROM template_version WHERE name = ? AND number NOT IN"
                    " (SELECT number FROM template_version WHERE name = ?"
                    "  ORDER BY number DESC LIMIT 10)",
                    {name, name});
    if (upload.oldFileName && *upload.oldFileName != name)
        markWithdrawn(transaction, *upload.oldFileName, now);
    needRoom(transaction);
    transaction.commit();
}

void withdrawTemplate(Database& database, const QString& fileName, qint64 now)
{
    checkName(fileName);
    Transaction transaction(database);
    markWithdrawn(transaction, fileName, now);
    transaction.commit();
}

TemplateManifest templateManifest(Transaction& transaction, const QString& since)
{
    QList<SharedTemplateFile> templates;
    QStringList deleted;
    QCryptographicHash version(QCryptographicHash::Sha256);
    Rows rows = transaction.rows(
        "SELECT template.name, is_withdrawn, updated, sha256, length(content),"
        " (SELECT count(*) FROM template_version AS other WHERE other.name = template.name)"
        " FROM template LEFT JOIN template_version ON number = template.current"
        " ORDER BY template.name");
    while (rows.next()) {
        const QString name = rows.text(0);
        if (rows.number(1)) {
            deleted.append(name);
            version.addData('-' + name.toUtf8() + '\n');
            continue;
        }
        const auto updated = QDateTime::fromMSecsSinceEpoch(rows.number(2), Qt::UTC);
        SharedTemplateFile file{name, rows.text(3), rows.number(4),
                                updated.toString(Qt::ISODateWithMs), int(rows.number(5) - 1)};
        version.addData(u"%1 %2 %3 %4\n"_s.arg(file.fileName, file.sha256, file.updatedAt)
                            .arg(file.versions.value_or(0))
                            .toUtf8());
        templates.append(std::move(file));
    }
    TemplateManifest manifest;
    manifest.version = QString::fromLatin1(version.result().toHex().first(32));
    if (manifest.version != since) {
        manifest.templates = templates;
        manifest.deleted = deleted;
    }
    return manifest;
}

TemplateFileResponse templateFile(Transaction& transaction, const QString& fileName,
                                  TemplateVersion version)
{
    Rows found = transaction.rows(
        "SELECT coalesce(current, 0), is_withdrawn FROM template WHERE name = ?", {fileName});
    if (!found.next() || (found.number(1) && version == TemplateVersion::current))
        throw Refusal(404, "template_not_found");
    const qint64 current = found.number(0);
    const bool wantsEarlier = version == TemplateVersion::previous && !found.number(1);
    Rows stored = transaction.rows("SELECT sha256, content FROM template_version WHERE name = ?"
                                   " ORDER BY number < ? DESC, number DESC LIMIT 1",
                                   {fileName, wantsEarlier ? current : current + 1});
    if (!stored.next())
        throw Refusal(404, "template_not_found");
    return {fileName, stored.text(0), stored.bytes(1)};
}

void takeInTemplateFiles(Database& database, const QDir& folder, qint64 now)
{
    for (const QString& name : folder.entryList({u"*.json"_s}, QDir::Files | QDir::NoSymLinks)) {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        try {
            storeTemplate(database, {name, std::nullopt, file.read(largestTemplate + 1)}, now);
        } catch (const Refusal&) {
            continue;
        }
        file.remove();
    }
}
