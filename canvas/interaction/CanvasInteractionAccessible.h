#pragma once

// Gives screen readers one child per layer of a CanvasInteractionView, topmost layer first. Call
// before a screen reader first asks for such a view.
void makeCanvasesAccessible();
