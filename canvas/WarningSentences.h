#pragma once

#include "canvas/TextWarnings.h"

#include <QStringList>

// One sentence for each problem of a text, but none for what is only told when publishing.
QStringList warningSentences(const QList<TextWarning>& warnings);
