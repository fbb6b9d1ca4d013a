#pragma once

#include <QStringList>

// The folders of the files that are built into the program.
QStringList resourceFolders();

// Ends the program with a message if one of the folders is empty, because the program was linked
// wrongly: without its icons, designs and scripts it cannot be used.
void requireResources(const QStringList& folders = resourceFolders());
