// Pages packed away and back: every pixel returns, white pages and grid pages
// pack small, and packed bytes that do not make a page leave it white.
#include <cstdint>
#include <vector>

#include "map/page_codec.h"
#include "testing.h"

namespace {

struct Page {
  int Side;
  long long RowBytes;
  std::vector<uint8_t> Bits;
  explicit Page(int side) : Side(side), RowBytes(((long long)side * 3 + 3) / 4 * 4),
                            Bits((size_t)(RowBytes * side), 0xFF) {}
  uint8_t* At(int x, int y) { return Bits.data() + RowBytes * y + 3 * x; }
  void Set(int x, int y, uint8_t b, uint8_t g, uint8_t r) {
    uint8_t* p = At(x, y);
    p[0] = b;
    p[1] = g;
    p[2] = r;
  }
  bool SamePixels(Page& other) {
    for (int y = 0; y < Side; ++y)
      for (int x = 0; x < Side; ++x)
        for (int c = 0; c < 3; ++c)
          if (At(x, y)[c] != other.At(x, y)[c]) return false;
    return true;
  }
};

bool RoundTrip(Page& page, std::vector<uint8_t>& packed) {
  PackPage(page.Bits.data(), page.RowBytes, page.Side, packed);
  Page back(page.Side);
  for (uint8_t& byte : back.Bits) byte = 0x5A;
  if (!UnpackPage(packed, back.Bits.data(), back.RowBytes, back.Side)) return false;
  return page.SamePixels(back);
}

uint32_t Seed = 7;
uint32_t NextRandom() {
  Seed = Seed * 1103515245u + 12345u;
  return Seed >> 8;
}

}  // namespace

// A white row of 668 pixels is three runs (256, 256, 156); the rest repeat it.
TEST(WhitePagePacksToItsFirstRowAndRepeats) {
  Page page(668);
  std::vector<uint8_t> packed;
  CHECK(RoundTrip(page, packed));
  CHECK_EQ(packed.size(), (size_t)(1 + 3 * 4 + 667));
  CHECK_EQ(packed[0], ROW_RUNS);
  CHECK_EQ(packed[1], 255);
  CHECK_EQ(packed[9], 155);
  CHECK_EQ(packed[13], ROW_REPEATED);
}

TEST(GridPageStaysSmall) {
  Page page(668);
  for (int y = 0; y < 668; ++y)
    for (int x = 0; x < 668; ++x)
      if (x % 33 == 0 || y % 33 == 0) page.Set(x, y, 0xC0, 0xC0, 0xC0);
  std::vector<uint8_t> packed;
  CHECK(RoundTrip(page, packed));
  CHECK(packed.size() < 20000);
}

TEST(EveryPixelComesBackFromNoise) {
  for (int side : {1, 2, 3, 40, 257, 300}) {
    Page page(side);
    for (int y = 0; y < side; ++y)
      for (int x = 0; x < side; ++x)
        if (NextRandom() % 3 == 0) page.Set(x, y, (uint8_t)NextRandom(), (uint8_t)NextRandom(), 0);
    std::vector<uint8_t> packed;
    CHECK(RoundTrip(page, packed));
  }
}

// Runs break at 256 pixels and at every change of colour, a row's last
// pixel included.
TEST(RunsBreakAtTheirLongestAndAtEachChange) {
  Page page(600);
  page.Set(255, 0, 0, 0, 255);
  page.Set(256, 0, 0, 0, 255);
  page.Set(599, 0, 1, 2, 3);
  std::vector<uint8_t> packed;
  CHECK(RoundTrip(page, packed));
  // Row 0: 255 white, 2 red, 256 white, 86 white, 1 of (1, 2, 3).
  const uint8_t expected[] = {ROW_RUNS, 254, 0xFF, 0xFF, 0xFF, 1, 0, 0, 255, 255, 0xFF, 0xFF, 0xFF,
                              85, 0xFF, 0xFF, 0xFF, 0, 1, 2, 3};
  for (size_t i = 0; i < sizeof expected; ++i) CHECK_EQ(packed[i], expected[i]);
  CHECK_EQ(packed[sizeof expected], ROW_RUNS);   // row 1 differs from row 0
}

TEST(BrokenPackedBytesLeaveThePageWhite) {
  Page page(40);
  page.Set(3, 3, 0, 0, 0);
  std::vector<uint8_t> packed;
  PackPage(page.Bits.data(), page.RowBytes, page.Side, packed);
  const std::vector<std::vector<uint8_t>> broken = {
      {},                                                        // nothing
      std::vector<uint8_t>(packed.begin(), packed.end() - 1),    // cut short
      [&] { auto more = packed; more.push_back(0); return more; }(),   // a byte too many
      [&] { auto bad = packed; bad[0] = 7; return bad; }(),     // a row of no known form
      [&] { auto bad = packed; bad[0] = ROW_REPEATED; return bad; }(),   // the first row cannot repeat
      [&] { auto bad = packed; bad[1] = 200; return bad; }(),   // a run past the row's end
  };
  for (const std::vector<uint8_t>& bytes : broken) {
    Page back(40);
    for (uint8_t& byte : back.Bits) byte = 0;
    CHECK(!UnpackPage(bytes, back.Bits.data(), back.RowBytes, back.Side));
    Page white(40);
    CHECK(back.SamePixels(white));
  }
}
