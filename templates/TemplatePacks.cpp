#include "templates/TemplatePacks.h"

#include "platform/AtomicFile.h"

#include <QDateTime>
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
    const QFileInfoList removed =
        QDir(m_folder).entryInfoList({u"*.quitado"_s}, QDir::Files, QDir::Time);
    for (const QFileInfo& file : removed) {
        if (installed.removed.size() == mostRemoved)
            QFile::remove(file.filePath());
        else if (PackFile read = readPack(file.filePath()); read.pack)
            installed.removed.prepend(std::move(*read.pack));
    }
    return installed;
}

QString TemplatePacks::write(const TemplatePack& pack) const
{
    const QByteArray bytes = packBytes(pack);
    if (bytes.isEmpty())
        return u"no hay memoria"_s;
    const QString key = keyOf(pack);
    if (!QDir().mkpath(m_folder))
        return qt_error_string();
    const bool isReplacing = QFile::exists(fileOf(key));
    if (const QString failure = isReplacing ? remove(key) : QString(); !failure.isEmpty())
        return failure;
    const QString failure = writeAtomically(fileOf(key), bytes);
    if (isReplacing && !failure.isEmpty())
        QFile::rename(removedFileOf(key), fileOf(key));
    return failure;
}

QString TemplatePacks::remove(const QString& key) const
{
    QFile file(fileOf(key));
    if (!file.exists())
        return {};
    forgetRemoved(key);
    if (!file.rename(removedFileOf(key)))
        return file.errorString();
    // read() sorts by this time.
    if (file.open(QIODevice::ReadWrite))
        file.setFileTime(QDateTime::currentDateTime(), QFileDevice::FileModificationTime);
    return {};
}

void TemplatePacks::forgetRemoved(const QString& key) const
{
    QFile::remove(removedFileOf(key));
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

QString TemplatePacks::removedFileOf(const QString& key) const
{
    return fileOf(key) + u".quitado"_s;
}
