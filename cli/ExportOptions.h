#pragma once

#include "model/SocialFormat.h"
#include "studio/sheet/TextSheet.h"
#include "templates/VisualTemplate.h"

#include <QTemporaryDir>
#include <QUrl>

#include <memory>
#include <variant>

// The parsed arguments of `moltiva export`.
struct ExportOptions {
    SocialFormat format = SocialFormat::carouselPortrait;
    QString folder;
    int jobs = 0;    // images rendered at once, at most one per core; 0: one per core
    bool isJson = false;
    bool isDryRun = false;
    std::optional<TextSheet> texts;
    TemplateApplication design;    // applies a template; empty: the photos keep the standard design
    QList<QUrl> photos;            // URLs of local files
    QStringList unreachable;       // paths that no URL can hold: these photos cannot be opened
    // Folder of the sample photos; deleted with the last copy of the options.
    std::shared_ptr<QTemporaryDir> sample;
};

// Prints "moltiva export: " and the sentence to standard error.
void tellOfExport(const QString& sentence);

// The options, or an exit status after the reason (or the help) was printed.
std::variant<ExportOptions, int> exportOptions(const QStringList& arguments);
