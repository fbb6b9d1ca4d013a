#pragma once

// Shows each TileGrid to screen readers as a list of its tiles. Call before the first grid is made.
void makeTileGridsAccessible();
