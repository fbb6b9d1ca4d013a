#include "platform/StagingFolder.h"

#include <QDir>
#include <QUuid>

#include <utility>

using namespace Qt::StringLiterals;

void StagingFolder::removeLeftovers(const QString& place)
{
    const ProgramRun run(place);
    const QDir folder(place);
    for (const QString& name :
         folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks)) {
        if (!QUuid::fromString(name).isNull() && !run.isGoingOn(name))
            QDir(folder.filePath(name)).removeRecursively();
    }
}

StagingFolder::StagingFolder(const QString& place) : m_run(place)
{
    removeLeftovers(place);
    const QString name = m_run.name();
    if (name.isEmpty())
        return;
    const QString path = QDir(place).filePath(name);
    if (QDir().mkdir(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
        m_path = path;
}

StagingFolder::~StagingFolder()
{
    remove();
}

void StagingFolder::remove()
{
    if (isUsable())
        QDir(std::exchange(m_path, {})).removeRecursively();
}
