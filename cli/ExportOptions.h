#pragma once

#include "model/SocialFormat.h"
#include "studio/sheet/TextSheet.h"
#include "templates/VisualTemplate.h"

#include <QTemporaryDir>
#include <QUrl>

#include <memory>
#include <variant>

// What `moltiva export` is asked for.
struct ExportOptions {
    SocialFormat format = SocialFormat::carouselPortrait;
    QString folder;
    int jobs = 0;    // at most one a core; 0: one a core
    bool isJson = false;
    bool isDryRun = false;
    std::optional<TextSheet> texts;
    TemplateApplication design;               // none: as it is
    QList<QUrl> photos;                       // files
    QStringList unreachable;                  // names of photos that no address can be given
    std::shared_ptr<QTemporaryDir> sample;    // of photos, goes with the options
};

// One line of standard error.
void tellOfExport(const QString& sentence);

// What the arguments ask for, else the exit status; what is to be said was said then.
std::variant<ExportOptions, int> exportOptions(const QStringList& arguments);
