#pragma once

#include <QString>

// Paints a few pictures that stand for photographs into the folder, for trying the program where
// there are none.
bool paintSampleBatch(const QString& folder);
