// The EM61-LX2 filter calibration in two parts: the coils held in the air
// give the offsets (100 frames), then on the ground the mean early and late
// channels give the ratio of the filtered channel (200 frames), shown to the
// operator as a filter factor. Its boxes are asked for in the reading's
// outcome; the screen shows each with the reader held and tells the answer.
#pragma once

struct ReadingOutcome;

// Box kinds of the calibration.
constexpr int BOX_CALIBRATION_PART2 = 1;
constexpr int BOX_FACTOR_FAILED_LEFT = 2;
constexpr int BOX_FACTOR_FAILED_RIGHT = 3;
constexpr int BOX_CALIBRATION_COMPLETE = 4;

constexpr double FILTER_FACTOR_LOW = 125.0;
constexpr double FILTER_FACTOR_HIGH = 1000.0;

// The first box of the command "Calibrate Filter".
void CalibrationPart1Box(ReadingOutcome& out);
// OK in that box: the count cleared, the ratios and factors kept as the
// previous ones, one reading a message, NullingState -2.
void StartFilterCalibration();

// One frame in the air (NullingState -2): the offsets of the nulling step;
// at the end the box of the second part.
void CalibrationInAirStep(const double channels[4], ReadingOutcome& out);
// One frame on the ground (NullingState -3): E and L summed per sensor; at
// 200 the ratios, their test and the boxes.
void CalibrationOnGroundStep(const double early[2], const double late[2], int sensors, ReadingOutcome& out);

// The operator's answer to a calibration box (1 OK, 0 Cancel); the outcome
// gets the next box, or the end of the calibration.
void CalibrationAnswer(int box, int answer, ReadingOutcome& out);
