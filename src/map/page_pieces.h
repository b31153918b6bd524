// Pieces of lines held back while a swath is painted and then drawn page by
// page. Pages are separate rasters, so only the order of the pieces within a
// page decides its pixels; a swath along a page border then no longer changes
// the page drawn into at every piece, which costs the screen far more than
// the line itself.
#pragma once

// From here on, pieces drawn into the data layer are held.
void HoldPagePieces();
// Draws the held pieces and stops holding: the pages in the order they were
// first drawn into, each page's pieces in the order they came.
void DrawHeldPagePieces();
// A piece for page (col, row): held while holding, else drawn at once.
void PagePiece(int col, int row, int xa, int ya, int xb, int yb, int pen);
