#include "map/page_codec.h"

#include <cstring>

namespace {

constexpr int LONGEST_RUN = 256;

bool SamePixel(const uint8_t* a, const uint8_t* b) { return a[0] == b[0] && a[1] == b[1] && a[2] == b[2]; }

void FillWhite(uint8_t* bits, long long rowBytes, int side) {
  for (int y = 0; y < side; ++y) memset(bits + rowBytes * y, 0xFF, (size_t)side * 3);
}

// A run of one pixel: the first written, then copied over in doubling blocks.
void FillRun(uint8_t* to, const uint8_t* pixel, int run) {
  memcpy(to, pixel, 3);
  size_t done = 3, total = (size_t)run * 3;
  while (done < total) {
    const size_t block = done < total - done ? done : total - done;
    memcpy(to + done, to, block);
    done += block;
  }
}

}  // namespace

void PackPage(const uint8_t* bits, long long rowBytes, int side, std::vector<uint8_t>& packed) {
  packed.clear();
  for (int y = 0; y < side; ++y) {
    const uint8_t* row = bits + rowBytes * y;
    if (y > 0 && memcmp(row, row - rowBytes, (size_t)side * 3) == 0) {
      packed.push_back(ROW_REPEATED);
      continue;
    }
    packed.push_back(ROW_RUNS);
    int x = 0;
    while (x < side) {
      const uint8_t* pixel = row + 3 * x;
      int run = 1;
      while (x + run < side && run < LONGEST_RUN && SamePixel(pixel, row + 3 * (x + run))) ++run;
      packed.push_back((uint8_t)(run - 1));
      packed.insert(packed.end(), pixel, pixel + 3);
      x += run;
    }
  }
}

bool UnpackPage(const std::vector<uint8_t>& packed, uint8_t* bits, long long rowBytes, int side) {
  size_t at = 0;
  for (int y = 0; y < side; ++y) {
    uint8_t* row = bits + rowBytes * y;
    const uint8_t form = at < packed.size() ? packed[at++] : 0xFF;
    if (form == ROW_REPEATED && y > 0) {
      memcpy(row, row - rowBytes, (size_t)side * 3);
      continue;
    }
    if (form != ROW_RUNS) {
      FillWhite(bits, rowBytes, side);
      return false;
    }
    int x = 0;
    while (x < side) {
      if (at + 4 > packed.size()) {
        FillWhite(bits, rowBytes, side);
        return false;
      }
      const int run = packed[at] + 1;
      if (x + run > side) {
        FillWhite(bits, rowBytes, side);
        return false;
      }
      FillRun(row + 3 * x, &packed[at + 1], run);
      x += run;
      at += 4;
    }
  }
  if (at != packed.size()) {
    FillWhite(bits, rowBytes, side);
    return false;
  }
  return true;
}
