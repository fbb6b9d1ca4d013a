#pragma once
#include "PrecompiledGui.h"

#include <QtWidgets>
