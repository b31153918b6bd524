#include "gps/gps_sentence.h"

char GpsSentence[GPS_SENTENCE_BYTES];
