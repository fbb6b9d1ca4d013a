#pragma once

#include "copygen/LocalAIManager.h"
#include "copygen/LocalAIService.h"

// The engine of this machine, with what installs it and what has it write.
struct LocalEngine {
    EngineProfile profile = engineProfile();
    LocalAIManager manager{profile};
    LocalAIService service{profile};
};
