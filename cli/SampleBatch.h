#pragma once

#include <QString>

// Paints a few landscapes as JPEG files into the folder, for trying the program without photos.
bool paintSampleBatch(const QString& folder);
