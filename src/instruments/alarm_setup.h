// The settings of the EM61-LX2 target alarm as its dialog shows them: the
// choices of each list, and which fields the alarm type leaves usable.
#pragma once

constexpr int ALARM_FIELD_LEVEL = 900;
constexpr int ALARM_FIELD_TYPE = 901;
constexpr int ALARM_FIELD_MIN_LEVEL = 902;
constexpr int ALARM_FIELD_MAX_LEVEL = 903;
constexpr int ALARM_FIELD_DESCENDING = 905;
constexpr int ALARM_FIELD_AUDIO = 906;
constexpr int ALARM_FIELD_WIDTH = 907;
constexpr int ALARM_FIELD_CHANNEL = 908;

// The fields that follow the type; the type itself is always usable.
extern const int AlarmDependentFields[7];

// "Disabled": none; "Simple": audio, channel and level; "Enhanced": audio,
// channel, the two levels, the width and the descending readings.
bool AlarmFieldEnabled(int alarmType, int field);

// The entries of a list field, and their count.
const char* const* AlarmChoices(int field, int& count);
