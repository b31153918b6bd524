#include "map/page_pieces.h"

#include <cstddef>
#include <vector>

#include "map/map_canvas.h"
#include "map/map_surface.h"

namespace {

struct HeldPiece {
  int Col, Row, Xa, Ya, Xb, Yb, Pen;
};

// Held at most before they are drawn, so that a swath across many pages,
// from a damaged position, is sorted in bounded time. A swath of the map
// window holds a few hundred.
constexpr size_t HELD_PIECE_LIMIT = 4096;

// Scratch of one swath: empty between two swaths.
struct HeldPiecesRecord {
  int Holding = 0;
  std::vector<HeldPiece> Pieces;
  std::vector<char> Drawn;
};

HeldPiecesRecord Held;

void DrawPiece(int col, int row, int xa, int ya, int xb, int yb, int pen) {
  if (EnsureTile(col, row, 1) == 0) return;
  MapDrawing.PageLine(pen, xa, ya, xb, yb);
}

void DrawPiecesPageByPage() {
  std::vector<HeldPiece>& pieces = Held.Pieces;
  Held.Drawn.assign(pieces.size(), 0);
  for (size_t first = 0; first < pieces.size(); ++first) {
    if (Held.Drawn[first]) continue;
    const int col = pieces[first].Col, row = pieces[first].Row;
    const bool page = EnsureTile(col, row, 1) != 0;
    for (size_t i = first; i < pieces.size(); ++i) {
      const HeldPiece& piece = pieces[i];
      if (Held.Drawn[i] || piece.Col != col || piece.Row != row) continue;
      Held.Drawn[i] = 1;
      if (page) MapDrawing.PageLine(piece.Pen, piece.Xa, piece.Ya, piece.Xb, piece.Yb);
    }
  }
  pieces.clear();
}

}  // namespace

void HoldPagePieces() {
  Held.Pieces.clear();
  Held.Holding = 1;
}

void DrawHeldPagePieces() {
  DrawPiecesPageByPage();
  Held.Holding = 0;
}

void PagePiece(int col, int row, int xa, int ya, int xb, int yb, int pen) {
  if (!Held.Holding) {
    DrawPiece(col, row, xa, ya, xb, yb, pen);
    return;
  }
  if (Held.Pieces.size() >= HELD_PIECE_LIMIT) DrawPiecesPageByPage();
  Held.Pieces.push_back({col, row, xa, ya, xb, yb, pen});
}
