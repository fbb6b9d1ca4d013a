#pragma once

#include "model/CopyGenerationMode.h"
#include "model/SocialFormat.h"

#include <QList>
#include <QStringList>
#include <QUrl>

#include <variant>

// The parsed arguments of `moltiva generate`.
struct GenerateOptions {
    CopyGenerationMode mode = CopyGenerationMode::local;
    QString objective;
    SocialFormat format = SocialFormat::carouselPortrait;
    QString csv;    // path; empty: standard output
    bool isJson = false;
    QList<QUrl> photos;         // files
    QStringList unreachable;    // names of photos that no URL can hold
};

// Prints one line to standard error.
void tellOfGeneration(const QString& sentence);

// The options, or an exit status after the reason (or the help) was printed.
std::variant<GenerateOptions, int> generateOptions(const QStringList& arguments);
