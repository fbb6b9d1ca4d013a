#include "app/desktop/ResourceCheck.h"

#include <QDir>

using namespace Qt::StringLiterals;

QStringList resourceFolders()
{
    return {u":/icons"_s, u":/pictures"_s, u":/templates/gallery"_s, u":/copygen"_s};
}

void requireResources(const QStringList& folders)
{
    QStringList missing = folders;
    missing.removeIf([](const QString& folder) { return !QDir(folder).isEmpty(); });
    if (!missing.isEmpty())
        qFatal("could not load resource bundle: from %s", qPrintable(missing.join(u" or "_s)));
}
