#pragma once

// A tile grid is a list with one child a tile, for screen readers. Before the first one is made.
void makeTileGridsAccessible();
