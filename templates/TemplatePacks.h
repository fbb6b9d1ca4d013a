#pragma once

#include "templates/TemplatePack.h"

// The packs that the user has installed, each a .zip file in one folder. All functions wait for the
// disk.
class TemplatePacks {
public:
    struct Installed {
        QList<TemplatePack> packs;    // by name
        QStringList damaged;          // names of packs that cannot be read
    };

    explicit TemplatePacks(const QString& folder) : m_folder(folder) {}

    Installed read() const;
    // Replaces a pack with the same key. Returns why that failed, empty on success.
    QString write(const TemplatePack& pack) const;
    QString remove(const QString& key) const;

    // What identifies a pack among the installed ones: its name, as far as a file can have it.
    static QString keyOf(const TemplatePack& pack);

private:
    QString fileOf(const QString& key) const;

    QString m_folder;
};
