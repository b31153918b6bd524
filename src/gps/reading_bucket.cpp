#include "gps/reading_bucket.h"

#include "core/numeric.h"
#include "core/state.h"
#include "gps/position_pipeline.h"

ReadingBucketRecord ReadingBucket;

void ResetReadingBucket() { ReadingBucket = ReadingBucketRecord(); }

void ClearReadingBucketCounts() {
  ReadingBucket.WriteCount = 0;
  ReadingBucket.FinishedLast = -1;
  ReadingBucket.FinishedFlag = 0;
}

void HandOverReadingBucket(int instrumentPresent) {
  ReadingBucketRecord& b = ReadingBucket;
  if (PositionPipeline.BucketState == 0) {
    PositionPipeline.BucketState = 1;
    b.CollectFlag = 1;
    return;
  }
  if (!instrumentPresent) {
    b.FinishedFlag = 0;
    b.CollectFlag = 1;
    return;
  }
  const int filled = b.WriteArray == 0 ? 0 : 1;
  b.FinishedArray = filled;
  b.FinishedLast = b.WriteCount - 1;
  b.FinishedFlag = b.WriteCount >= 1 ? 1 : 0;
  b.WriteArray = 1 - filled;
  b.WriteCount = 0;
  b.CollectFlag = 1;
}

int ReadingColourClass(double value, double rangeLow, double classWidth, int highestClass) {
  const int colourClass = TruncToInt((value - rangeLow) / classWidth);
  if (colourClass < 0) return 0;
  if (colourClass > highestClass) return highestClass < 0 ? 0 : highestClass;
  return colourClass;
}

void AddClassToBucket(int32_t entry) {
  ReadingBucketRecord& b = ReadingBucket;
  if (b.CollectFlag != 1 || Session.SessionState != SESSION_LOGGING) return;
  if (b.WriteCount < 0) b.WriteCount = 0;
  if (b.WriteCount >= READING_BUCKET_SIZE) return;
  const int array = b.WriteArray == 0 ? 0 : 1;
  b.Classes[array][b.WriteCount] = entry;
  ++b.WriteCount;
}

void AddReadingToBucket(double value, double rangeLow, double classWidth, int highestClass) {
  AddClassToBucket(ReadingColourClass(value, rangeLow, classWidth, highestClass));
}

const int32_t* FinishedClasses() { return ReadingBucket.Classes[ReadingBucket.FinishedArray == 0 ? 0 : 1]; }
