#pragma once

#include <QList>
#include <QStringList>
#include <QUrl>

#include <functional>

// The photos that a command is given as arguments.
struct PhotoArguments {
    QList<QUrl> photos;         // files
    QStringList unreachable;    // names of photos that no URL can hold
    QString problem;            // why the arguments are wrong, as the end of a sentence
};

// Reads files and folders. A folder stands for its photos without the posts that an earlier export
// left there, of which `tell` hears.
PhotoArguments photoArguments(const QStringList& paths,
                              const std::function<void(const QString& sentence)>& tell);

// The keys of all formats, for help and errors.
QString formatKeys();
