#pragma once

#include "templates/TemplateDefinition.h"

#include <QDateTime>
#include <QSet>

// A design of the team, as the copy of the catalogue has it. The id of the definition is that of
// the file name.
struct SharedDesign {
    QString fileName;
    JSONVisualTemplateDefinition definition;
    int keptVersions = 0;    // how many others than this one the service stores
};

// The id that a file name of the catalogue stands for: "<uuid>.json". Null for any other name.
QUuid catalogueId(const QString& fileName);
QString catalogueFileName(QUuid id);

struct CatalogueEntry {
    QString fileName;
    QString sha256;    // hexadecimal, in lower case
    qint64 bytes = 0;
    int versions = 0;    // SharedDesign::keptVersions
    bool operator==(const CatalogueEntry&) const = default;
};

// What the catalogue of a service consists of.
struct CatalogueList {
    // The service's name for this state of the catalogue. Empty if the copy is not all of it.
    QString version;
    QDateTime copied;    // when the service confirmed it
    QList<CatalogueEntry> entries;
    QSet<QUuid> withdrawn;

    // Drops what a copy does not take: entries with other names than "<uuid>.json", repeated ones
    // and wrong digests. Returns how many more it dropped because the copy would grow larger than
    // 2,000 files or 64 MB.
    int sanitize();
};

// The copy of the catalogue of one service, in a folder of its own. Files are stored under their
// digests and never change; replacing the list of them, which is written last, replaces the whole
// copy at once. Several programs may use the same folder. All functions wait for the disk.
class CatalogueCopy {
public:
    // `folder`: the copies of all services; `origin` identifies the service.
    CatalogueCopy(const QString& folder, const QByteArray& origin);

    struct Contents {
        bool isThere = false;
        CatalogueList list;
        QList<SharedDesign> designs;    // in their `order`
        int damaged = 0;                // files that are missing or not what the list says
        int unreadable = 0;    // whole files that are no definitions, or have too many layers
    };
    Contents read() const;

    // Whether the whole file is stored.
    bool holds(const CatalogueEntry& entry) const;
    // Why storing failed, as the system says it; empty on success.
    struct Stored {
        bool isRight = false;    // whether the bytes are what the entry says
        QString problem;
    };
    Stored store(const CatalogueEntry& entry, QByteArrayView bytes) const;
    // Makes `list` the copy, without the entries whose files are not stored, and removes all other
    // files. Returns why that failed, as the system says it; empty on success.
    QString replace(CatalogueList list) const;

private:
    Contents readOnce(const QByteArray& listBytes) const;
    QString makeFolder() const;
    template <typename Work>
    QString locked(Work work) const;
    QString pathOf(const CatalogueEntry& entry) const;
    QString listPath() const;

    QString m_place, m_folder;
};
