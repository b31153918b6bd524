#include "instruments/alarm_setup.h"

const int AlarmDependentFields[7] = {ALARM_FIELD_AUDIO,     ALARM_FIELD_CHANNEL,   ALARM_FIELD_LEVEL,
                                     ALARM_FIELD_MIN_LEVEL, ALARM_FIELD_MAX_LEVEL, ALARM_FIELD_WIDTH,
                                     ALARM_FIELD_DESCENDING};

bool AlarmFieldEnabled(int alarmType, int field) {
  switch (alarmType) {
    case 1: return field == ALARM_FIELD_AUDIO || field == ALARM_FIELD_CHANNEL || field == ALARM_FIELD_LEVEL;
    case 2:
      return field == ALARM_FIELD_AUDIO || field == ALARM_FIELD_CHANNEL || field == ALARM_FIELD_MIN_LEVEL ||
             field == ALARM_FIELD_MAX_LEVEL || field == ALARM_FIELD_WIDTH || field == ALARM_FIELD_DESCENDING;
    default: return false;
  }
}

const char* const* AlarmChoices(int field, int& count) {
  static const char* const Types[] = {"Disabled", "Simple", "Enhanced"};
  static const char* const Audio[] = {"None", "Voice Indication", "Ringing"};
  static const char* const Channels[] = {"Early Channel", "Late Channel", "Filtered Channel"};
  static const char* const Widths[] = {"3 Samples",  "5 Samples",  "7 Samples",  "9 Samples",  "11 Samples",
                                       "13 Samples", "15 Samples", "17 Samples", "19 Samples", "21 Samples"};
  static const char* const Descending[] = {"1 Sample", "2 Samples"};
  switch (field) {
    case ALARM_FIELD_TYPE: count = 3; return Types;
    case ALARM_FIELD_AUDIO: count = 3; return Audio;
    case ALARM_FIELD_CHANNEL: count = 3; return Channels;
    case ALARM_FIELD_WIDTH: count = 10; return Widths;
    case ALARM_FIELD_DESCENDING: count = 2; return Descending;
    default: count = 0; return nullptr;
  }
}
