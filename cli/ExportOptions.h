#pragma once

#include "cli/shared/BatchOptions.h"

#include <QTemporaryDir>

#include <memory>
#include <variant>

// The parsed arguments of `moltiva export`.
struct ExportOptions : BatchOptions {
    QString folder;
    int jobs = 0;    // images rendered at once, at most one per core; 0: one per core
    bool isJson = false;
    bool isDryRun = false;
    // Folder of the sample photos; deleted with the last copy of the options.
    std::shared_ptr<QTemporaryDir> sample;
};

// Prints "moltiva export: " and the sentence to standard error.
void tellOfExport(const QString& sentence);

// The options, or an exit status after the reason (or the help) was printed.
std::variant<ExportOptions, int> exportOptions(const QStringList& arguments);
