#pragma once

#include <QList>
#include <QStringList>
#include <QUrl>

// "<name>-publicacion.png". A name too long for `folder` is shortened at a whole character.
QString exportName(const QUrl& photo, const QString& folder);

// A path in `folder` for each photo, by exportName(). A path taken, in any case of letters, by a
// photo of the batch or by an output higher in the list becomes "-publicacion-2.png" and so on.
QStringList exportPaths(const QList<QUrl>& photos, const QString& folder);

// Drops photos whose name is that of another one's output, so that a folder that was exported into
// itself can be exported again.
QList<QUrl> withoutOwnOutputs(const QList<QUrl>& photos);
