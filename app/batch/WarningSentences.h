#pragma once
#include "canvas/TextWarnings.h"

#include <QStringList>

// One sentence for each thing that is to be said, for tooltips and screen readers.
QStringList warningSentences(const QList<TextWarning>& warnings);
