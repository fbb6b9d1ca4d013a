#pragma once
#include "canvas/TextWarnings.h"

#include <QStringList>

// One sentence for each problem of a text, for tooltips and screen readers.
QStringList warningSentences(const QList<TextWarning>& warnings);
