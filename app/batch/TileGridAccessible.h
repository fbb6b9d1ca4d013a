#pragma once

// Makes screen readers see each TileGrid as a list of its tiles. Call it before the first grid is
// shown to them.
void makeTileGridsAccessible();
