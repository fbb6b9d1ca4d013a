#include "templates/TemplatePacks.h"

#include "platform/AtomicFile.h"

#include <QDir>

using namespace Qt::StringLiterals;

TemplatePacks::Installed TemplatePacks::read() const
{
    Installed installed;
    for (const QFileInfo& file : QDir(m_folder).entryInfoList({u"*.zip"_s}, QDir::Files)) {
        if (PackFile read = readPack(file.filePath()); read.pack)
            installed.packs.append(std::move(*read.pack));
        else
            installed.damaged.append(file.completeBaseName());
    }
    const auto name = [](const TemplatePack& pack) { return pack.name.toCaseFolded(); };
    std::ranges::stable_sort(installed.packs, {}, name);
    return installed;
}

QString TemplatePacks::write(const TemplatePack& pack) const
{
    const QByteArray bytes = packBytes(pack);
    if (bytes.isEmpty())
        return u"no hay memoria"_s;
    QDir().mkpath(m_folder);
    return writeAtomically(fileOf(keyOf(pack)), bytes);
}

QString TemplatePacks::remove(const QString& key) const
{
    QFile file(fileOf(key));
    return file.remove() || !file.exists() ? QString() : file.errorString();
}

QString TemplatePacks::keyOf(const TemplatePack& pack)
{
    QString key = pack.name;
    key.replace(u'/', u'-');
    if (key.startsWith(u'.'))
        key[0] = u'-';
    return key;
}

QString TemplatePacks::fileOf(const QString& key) const
{
    return m_folder + u'/' + key + u".zip"_s;
}
