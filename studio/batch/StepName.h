#pragma once

#include "studio/batch/StudioHistory.h"

// Names what changed between two states of the undo history, as a Spanish noun phrase: "tamaño del
// título".
QString stepName(const StudioHistorySnapshot& before, const StudioHistorySnapshot& after);
