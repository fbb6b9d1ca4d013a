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
    int jobs = 0;    // at most one a core; 0: one a core
    bool isJson = false;
    bool isDryRun = false;
    std::optional<TextSheet> texts;
    TemplateApplication design;    // a template's design; none: the photos' own
    QList<QUrl> photos;            // files
    QStringList unreachable;       // names of photos that no URL can hold
    // Folder of the sample photos; deleted with the options.
    std::shared_ptr<QTemporaryDir> sample;
};

// Prints one line to standard error.
void tellOfExport(const QString& sentence);

// The options, or an exit status after the reason (or the help) was printed.
std::variant<ExportOptions, int> exportOptions(const QStringList& arguments);
