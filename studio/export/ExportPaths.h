#pragma once

#include <QList>
#include <QStringList>
#include <QUrl>

// The file name "<name>-publicacion.png" for a photo. If `folder` does not allow a name that long,
// shortens <name> at the end of a character.
QString exportName(const QUrl& photo, const QString& folder);

// A path in `folder` for each photo, with the name from exportName(). If a photo or an earlier path
// in the list already has that path, ignoring upper and lower case, the name ends in
// "-publicacion-2.png" and so on.
QStringList exportPaths(const QList<QUrl>& photos, const QString& folder);

// Drops photos that are named like the exported picture of another photo in the list, so that a
// folder with its own exports in it can be exported again.
QList<QUrl> withoutOwnOutputs(const QList<QUrl>& photos);
