#pragma once

#include <QString>
#include <QStringList>

// The folders in which desktops following the XDG specifications look for desktop entries and for
// the programs chosen for a type of link. The folder of the user comes first in each list.
struct XdgFolders {
    QStringList data, config, path;
    QStringList desktops;    // names of the running desktop, in lower case

    static XdgFolders ofEnvironment();
};

// Sees to it that links of the scheme "moltiva" are opened with `program`, the path of this
// program, or with another copy of it, which hands them over to the window that is open. Writes to
// the folders of the user only if links would go elsewhere: the choice of the installed entry
// "moltiva.desktop" or, where none leads to the program, an entry of the user's own.
void registerLinkHandler(const XdgFolders& folders, const QString& program);

// The name of the entry that opens links of the scheme; empty if there is none.
QString linkHandler(const XdgFolders& folders);
