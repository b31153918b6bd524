// The colour classes of the readings that came in between two positions. The
// instrument handlers fill one array while Logging; at each position the
// filled array is handed to the live map, which spreads its classes along the
// new swath segment, and the other array takes over the filling.
#pragma once
#include <cstdint>

constexpr int READING_BUCKET_SIZE = 500;

struct ReadingBucketRecord {
  int32_t Classes[2][READING_BUCKET_SIZE] = {};
  int WriteArray = 0;        // the array the handlers fill
  int WriteCount = 0;        // classes since the last position
  int CollectFlag = 0;       // handlers add only when 1
  int FinishedArray = 1;     // the array the live map paints
  int FinishedLast = -1;     // its last index: the count handed over less one
  int FinishedFlag = 0;      // 1 when the finished array holds at least one entry
};

extern ReadingBucketRecord ReadingBucket;

// Start of a session: empty arrays, no collection. The bucket state, 0 before
// the first position of a logging run and 1 after, is the position
// pipeline's `BucketState`.
void ResetReadingBucket();

// Each start of logging, a resume included: counts and the ready flag cleared.
void ClearReadingBucketCounts();

// The hand-over at a position while Logging with a colour image. The first
// position of the run (bucket state 0) switches collection on; each later
// one swaps the arrays.
// Without an instrument nothing is swapped and the finished flag stays 0.
void HandOverReadingBucket(int instrumentPresent);

// Class of a reading: integer part of (value - low) / width, limited to 0
// and the highest class. A width of 0 or a value that is no number gives a
// class at one of the limits, never outside them.
int ReadingColourClass(double value, double rangeLow, double classWidth, int highestClass);

// One entry into the write array, when collecting while Logging. Beyond
// READING_BUCKET_SIZE entries further readings are dropped until the next
// position: the first 500 of the segment are kept and the count stays 500.
void AddClassToBucket(int32_t entry);
void AddReadingToBucket(double value, double rangeLow, double classWidth, int highestClass);

// The array the live map paints, and the count of entries it may read.
const int32_t* FinishedClasses();
