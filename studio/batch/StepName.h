#pragma once

#include "studio/batch/StudioHistory.h"

// What a step of the history changed, as a noun phrase in Spanish: "tamaño del título".
QString stepName(const StudioHistorySnapshot& before, const StudioHistorySnapshot& after);
