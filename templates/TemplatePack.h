#pragma once

#include "templates/TemplateDefinition.h"

#include <QStringList>

// A design of a pack.
struct PackDesign {
    QString fileName;                           // without folders; unique in the pack
    JSONVisualTemplateDefinition definition;    // without a preview
    QStringList tags;                           // in lower case, such as "oferta"
};

// Designs that are given away together: the definition files of a folder or of a .zip file. A
// manifest, `pack.json`, may name the pack, put the files in order and give them tags.
struct TemplatePack {
    static constexpr qsizetype mostFiles = 2000;
    static constexpr qint64 largest = qint64(64) << 20;    // bytes, unpacked

    QString name;    // of the manifest, else of the folder or file; never empty
    QString author, licence;
    QList<PackDesign> designs;    // in the order of the manifest; the rest by `order`, then by name

    struct UnreadFile {
        QString name;
        QString reason;    // the end of a Spanish sentence
    };
    QList<UnreadFile> unread;    // definition files without a design, and a manifest that is broken
};

// Either a pack, or the reason why there is none, as the end of a Spanish sentence.
struct PackFile {
    std::optional<TemplatePack> pack;
    QString error;
};

// Reads a folder or a .zip file of any content. Refuses it whole if it has no design that can be
// read, if it is larger than the limits of TemplatePack, and if it is damaged, encrypted, or has
// links or files outside its folder. Files other than definitions are ignored. Waits for the disk.
PackFile readPack(const QString& path);

// The designs of a pack with their manifest as a .zip file; empty if there is no memory.
QByteArray packBytes(const TemplatePack& pack);

// A name for the file of a design named `name`, which is not among `taken`: "Ladera azul 2.json".
QString packFileName(const QString& name, const QSet<QString>& taken);
