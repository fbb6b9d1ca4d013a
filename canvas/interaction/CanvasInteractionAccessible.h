#pragma once

// Gives screen readers one child of a canvas per layer, topmost first. Call before the first
// CanvasInteractionView is created.
void makeCanvasesAccessible();
