#pragma once

// A canvas has one child a layer, topmost first, for screen readers. Before the first one is made.
void makeCanvasesAccessible();
