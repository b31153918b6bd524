// A page of the map held packed while it is far from the view: most of a
// page is white, so runs of equal pixels pack it to a small part of its size.
// The pixels come back exactly as they were.
#pragma once
#include <cstdint>
#include <vector>

constexpr uint8_t ROW_REPEATED = 0;
constexpr uint8_t ROW_RUNS = 1;

// Packs a page of `side` x `side` pixels of 3 bytes, rows `rowBytes` apart.
// Each row starts with a byte: ROW_REPEATED for a row equal to the one above
// (grid pages are mostly such rows), else ROW_RUNS followed by its runs, each
// a count (1 to 256, one byte holding count - 1) and the run's three bytes.
void PackPage(const uint8_t* bits, long long rowBytes, int side, std::vector<uint8_t>& packed);

// Unpacks into `bits`; false (the page left white) when the packed bytes do
// not make exactly `side` rows of `side` pixels.
bool UnpackPage(const std::vector<uint8_t>& packed, uint8_t* bits, long long rowBytes, int side);
