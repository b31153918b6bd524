// The logging screen's commands of the EM61 family: nulling, the filter
// calibration, the alarm settings, and what "&Go" and the pause do to the
// command link (Wheel mode, the polled link's rate).
#pragma once

void NullingCommand();
void FilterCalibrationCommand();
void AlarmSettingsCommand();

// "&Go" and the pause, by survey mode: the reader's cadence, the polled
// link's timer, Wheel mode.
void LinkForLoggingStart();
void LinkForLoggingStop();
