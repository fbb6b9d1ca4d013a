#pragma once

#include "templates/VisualTemplate.h"

struct JSONVisualTemplateDefinition;

// The first font family that a visible text of the design wants and that is not installed; empty if
// there is none. Then Inter is drawn instead. Looking up a font for the first time takes some time.
QString missingFont(const JSONVisualTemplateDefinition& design);
QString missingFont(const VisualTemplate& design);
