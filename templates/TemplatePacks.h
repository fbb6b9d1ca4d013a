#pragma once

#include "templates/TemplatePack.h"

// The packs that the user has installed, each a .zip file in one folder. All functions wait for the
// disk.
class TemplatePacks {
public:
    struct Installed {
        QList<TemplatePack> packs;      // by name
        QStringList damaged;            // names of packs that cannot be read
        QList<TemplatePack> removed;    // removed and replaced ones, the newest last
    };
    static constexpr qsizetype mostRemoved = 5;

    explicit TemplatePacks(const QString& folder) : m_folder(folder) {}

    Installed read() const;
    // Installs a pack; one with the same key counts as removed. Returns why that failed, empty on
    // success.
    QString write(const TemplatePack& pack) const;
    // Keeps the pack aside, in place of an earlier one with the same key.
    QString remove(const QString& key) const;
    // Deletes what is kept aside for the key.
    void forgetRemoved(const QString& key) const;

    // What identifies a pack among the installed ones: its name, as far as a file can have it.
    static QString keyOf(const TemplatePack& pack);

private:
    QString fileOf(const QString& key) const;
    QString removedFileOf(const QString& key) const;

    QString m_folder;
};
