#pragma once

#include <QList>
#include <QStringList>
#include <QUrl>

// "<name>-publicacion.png", for the folder that it is to lie in: the name is shortened at a
// character where it would be too long there.
QString exportName(const QUrl& photo, const QString& folder);

// That name in `folder` for each photo. Where it would be the file of another photo of the batch,
// or its output, also by their case, the later one gets "-publicacion-2.png" and so on.
QStringList exportPaths(const QList<QUrl>& photos, const QString& folder);

// The photos without those that carry the name of an output of another one of them, so that a
// folder exported into itself can be exported again.
QList<QUrl> withoutOwnOutputs(const QList<QUrl>& photos);
