#include "app/desktop/XdgLinkHandler.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

const QString linkType = u"x-scheme-handler/moltiva"_s;
const QString installedEntry = u"moltiva.desktop"_s, ownEntry = u"moltiva-user.desktop"_s;
const QString defaultsGroup = u"Default Applications"_s;
constexpr qint64 largestFile = 1 << 20;    // bytes; larger files are not read

// The lines of a file; nothing if it cannot be read as a whole.
std::optional<QList<QByteArray>> linesOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > largestFile)
        return std::nullopt;
    const qint64 size = file.size();
    const QByteArray text = file.read(largestFile + 1);
    if (file.error() != QFileDevice::NoError || text.size() != size)
        return std::nullopt;
    QList<QByteArray> lines;
    for (qsizetype start = 0; start < text.size();) {
        const qsizetype end = text.indexOf('\n', start);
        const qsizetype next = end < 0 ? text.size() : end + 1;
        lines.append(text.mid(start, next - start));
        start = next;
    }
    return lines;
}

// Group and key of each line of a desktop entry or of a list of chosen programs.
struct KeyLine {
    qsizetype index = 0;    // of the line
    QString group, key, value;
};

QList<KeyLine> keysIn(const QList<QByteArray>& lines)
{
    QList<KeyLine> keys;
    QString group;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QString line = QString::fromUtf8(lines[i]).trimmed();
        if (line.startsWith(u'[') && line.endsWith(u']'))
            group = line.mid(1, line.size() - 2);
        else if (const qsizetype equals = line.indexOf(u'='); equals > 0 && line[0] != u'#')
            keys.append({i, group, line.left(equals).trimmed(), line.mid(equals + 1).trimmed()});
    }
    return keys;
}

QString valueOf(const QList<KeyLine>& keys, const QString& group, const QString& key)
{
    for (const KeyLine& each : keys) {
        if (each.group == group && each.key == key)
            return each.value;
    }
    return {};
}

QStringList listIn(const QString& file, const QString& group)
{
    const auto lines = linesOf(file);
    return lines ? valueOf(keysIn(*lines), group, linkType).split(u';', Qt::SkipEmptyParts)
                 : QStringList();
}

// The first word of an Exec line, whose quotes are those of the specification.
QString programOf(const QString& command)
{
    if (!command.startsWith(u'"'))
        return command.section(u' ', 0, 0).replace(u"%%"_s, u"%"_s);
    QString program;
    for (qsizetype i = 1; i < command.size() && command[i] != u'"'; ++i) {
        if (command[i] == u'\\' && i + 1 < command.size())
            ++i;
        program += command[i];
    }
    return program.replace(u"%%"_s, u"%"_s);
}

// Quoted only if the specification asks for it: xdg-open by itself, without a desktop's own opener,
// does not understand quotes.
QString quotedForExec(const QString& program)
{
    static const QString reserved = u" \t\"'\\><~|&;$*?#()`"_s;
    const bool isPlain =
        std::ranges::none_of(program, [](QChar c) { return reserved.contains(c); });
    if (isPlain)
        return QString(program).replace(u'%', u"%%"_s);
    QString quoted;
    for (const QChar c : program) {
        if (u"\"`$\\"_s.contains(c))
            quoted += u'\\';
        quoted += c == u'%' ? u"%%"_s : QString(c);
    }
    return u'"' + quoted.replace(u"\\"_s, u"\\\\"_s) + u'"';
}

QString found(const XdgFolders& folders, const QString& program)
{
    if (program.startsWith(u'/'))
        return QFileInfo(program).isExecutable() && QFileInfo(program).isFile() ? program
                                                                                : QString();
    return program.isEmpty() ? QString() : QStandardPaths::findExecutable(program, folders.path);
}

QString entryFile(const XdgFolders& folders, const QString& entry)
{
    for (const QString& folder : folders.data) {
        const QString file = folder + u"/applications/"_s + entry;
        if (QFileInfo::exists(file))
            return file;
    }
    return {};
}

// The program that an entry starts; empty if the entry or the program does not exist.
QString programOfEntry(const XdgFolders& folders, const QString& entry)
{
    const QString file = entry.contains(u'/') ? QString() : entryFile(folders, entry);
    const auto lines = file.isEmpty() ? std::nullopt : linesOf(file);
    if (!lines)
        return {};
    const QList<KeyLine> keys = keysIn(*lines);
    const auto value = [&](const QString& key) {
        return valueOf(keys, u"Desktop Entry"_s, key).replace(u"\\\\"_s, u"\\"_s);
    };
    const QString tried = value(u"TryExec"_s);
    if (value(u"Hidden"_s) == u"true" || (!tried.isEmpty() && found(folders, tried).isEmpty()))
        return {};
    return found(folders, programOf(value(u"Exec"_s)));
}

// Whether `entry` starts this program or another copy of it.
bool serves(const XdgFolders& folders, const QString& entry, const QString& program)
{
    const QString started = programOfEntry(folders, entry);
    return !started.isEmpty() &&
           (QFileInfo(started).canonicalFilePath() == QFileInfo(program).canonicalFilePath() ||
            QFileInfo(started).fileName() == QFileInfo(program).fileName());
}

bool writeWhole(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);    // keeps the permissions, and the link if the file is one
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) &&
           file.write(bytes) == bytes.size() && file.commit();
}

bool writeOwnEntry(const XdgFolders& folders, const QString& program)
{
    QString tried = program;
    tried.replace(u"\\"_s, u"\\\\"_s);
    const QString text = u"[Desktop Entry]\n"
                         "Type=Application\n"
                         "Name=Moltiva\n"
                         "TryExec=%1\n"
                         "Exec=%2 %u\n"
                         "NoDisplay=true\n"
                         "StartupNotify=true\n"
                         "MimeType=%3;\n"_s.arg(tried, quotedForExec(program), linkType);
    return !program.contains(u'\n') &&
           writeWhole(folders.data.first() + u"/applications/"_s + ownEntry, text.toUtf8());
}

// Puts `entry` first among the programs that the user has chosen for the links, takes the user's
// own entry away if it is another, and leaves every other line of the file as it is.
void choose(const XdgFolders& folders, const QString& entry)
{
    const QString path = folders.config.first() + u"/mimeapps.list"_s;
    const auto lines = linesOf(path);
    if (!lines && QFileInfo::exists(path))
        return;    // never replaces what cannot be read
    QList<QByteArray> kept = lines.value_or(QList<QByteArray>());
    const QList<KeyLine> keys = keysIn(kept);
    QStringList entries = valueOf(keys, defaultsGroup, linkType).split(u';', Qt::SkipEmptyParts);
    entries.removeAll(entry);
    entries.removeAll(ownEntry);
    entries.prepend(entry);
    const QByteArray line = (linkType + u'=' + entries.join(u';') + u";\n"_s).toUtf8();
    const auto old = std::ranges::find_if(keys, [](const KeyLine& each) {
        return each.group == defaultsGroup && each.key == linkType;
    });
    const auto header = std::ranges::find_if(kept, [](const QByteArray& each) {
        return each.trimmed() == '[' + defaultsGroup.toUtf8() + ']';
    });
    if (!kept.isEmpty() && !kept.last().endsWith('\n'))
        kept.last() += '\n';
    if (old != keys.end())
        kept[old->index] = line;
    else if (header != kept.end())
        kept.insert(header - kept.begin() + 1, line);
    else
        kept += {'[' + defaultsGroup.toUtf8() + "]\n", line};
    if (const QByteArray bytes = kept.join(); !lines || bytes != lines->join())
        writeWhole(path, bytes);
}

}    // namespace

XdgFolders XdgFolders::ofEnvironment()
{
    using enum QStandardPaths::StandardLocation;
    XdgFolders folders{
        .data = QStandardPaths::standardLocations(GenericDataLocation),
        .config = QStandardPaths::standardLocations(GenericConfigLocation),
        .path = qEnvironmentVariable("PATH").split(u':', Qt::SkipEmptyParts),
        .desktops =
            qEnvironmentVariable("XDG_CURRENT_DESKTOP").toLower().split(u':', Qt::SkipEmptyParts)};
    return folders;
}

// Follows the specification of associations between types and applications: the first chosen
// program that exists, else the first one that says that it can open the type.
QString linkHandler(const XdgFolders& folders)
{
    QStringList places;
    for (const QString& folder : folders.config)
        places.append(folder + u'/');
    for (const QString& folder : folders.data)
        places.append(folder + u"/applications/"_s);
    const auto firstUsable = [&](const QStringList& entries) {
        const auto usable = std::ranges::find_if(entries, [&](const QString& entry) {
            return !programOfEntry(folders, entry).isEmpty();
        });
        return usable == entries.end() ? QString() : *usable;
    };
    for (const QString& place : places) {
        QStringList names;
        for (const QString& desktop : folders.desktops)
            names.append(desktop + u"-mimeapps.list"_s);
        for (const QString& name : names + QStringList{u"mimeapps.list"_s}) {
            if (const QString entry = firstUsable(listIn(place + name, defaultsGroup));
                !entry.isEmpty())
                return entry;
        }
    }
    for (const QString& place : places) {
        for (const auto& [name, group] : {std::pair(u"mimeapps.list"_s, u"Added Associations"_s),
                                          std::pair(u"mimeinfo.cache"_s, u"MIME Cache"_s)}) {
            if (const QString entry = firstUsable(listIn(place + name, group)); !entry.isEmpty())
                return entry;
        }
    }
    return {};
}

void registerLinkHandler(const XdgFolders& folders, const QString& program)
{
    const QString handler = linkHandler(folders);
    const bool isServed = !handler.isEmpty() && serves(folders, handler, program);
    if (serves(folders, installedEntry, program)) {
        if (!isServed || handler == ownEntry)
            choose(folders, installedEntry);
        QFile::remove(folders.data.value(0) + u"/applications/"_s + ownEntry);
    } else if (!isServed && !folders.data.isEmpty() && writeOwnEntry(folders, program)) {
        choose(folders, ownEntry);
    }
}
