// ResetProgramState: every record of the list in core/state.h, changed as a
// session would change it, is back at its starting value afterwards.
#include "core/main_menu_content.h"
#include "core/state.h"
#include "core/survey_setup.h"
#include "datafile/records.h"
#include "datafile/replay_map.h"
#include "datafile/replay_profile.h"
#include "gps/gps_monitor.h"
#include "gps/nmea_decode.h"
#include "gps/nmea_format.h"
#include "gps/nmea_receiver.h"
#include "gps/position_pipeline.h"
#include "gps/reading_bucket.h"
#include "instruments/em38mk2_calibration.h"
#include "instruments/em38mk2_reader.h"
#include "instruments/em38mk2_reading.h"
#include "instruments/em61_decode.h"
#include "instruments/em61_link.h"
#include "instruments/em61_session.h"
#include "instruments/em_frame_reader.h"
#include "instruments/em_text_reading.h"
#include "instruments/grad601_reader.h"
#include "instruments/grad601_reading.h"
#include "instruments/link_supervision.h"
#include "instruments/lx2_alarm.h"
#include "map/array_footprint.h"
#include "map/background_files.h"
#include "map/live_map.h"
#include "map/map_canvas.h"
#include "map/map_options.h"
#include "map/profile_views.h"
#include "session/logging_layout.h"
#include "session/session_state.h"
#include "testing.h"

namespace {

// Each record gets a value that no starting value has.
void ChangeEveryRecord() {
  ReplayCalibration.Offsets[2] = 3.5;
  ReplayCalibration.ZeroLevelRecords = 4;
  ReplayMapCounts.Readings = 99;
  ReplayRecords.ChunkBytes = 270;
  ReplayRecords.Length = 24;
  ProfileReplayPlan.ColumnCount = 12;
  MapOptions.MapSize = 80;
  MapOptions.GridInterval = 5.0;
  SurveySetup.Increments[1] = 0.5;
  SurveySetup.ModeShown = 2;
  Settings.Mk2CalA = 1.25;
  Screen.ClientWidth = 801;
  Session.TotalStations = 17;
  Link.ReaderCount = 3;
  GpsLink.GpsSequenceNumber = 99;
  Model.NullingState = -2;
  DataFileState.DiskFullSeen = 1;
  Position.UtmZone = 17;
  MapWindow.MapWndWidth = 333;
  Scales.ColourWidth = 7.5;
  Messages.MessageText[0] = L'x';
  DataFileNames.NameContinues = 1;
  ManualStation.ReadingCount = 2;
  CalibrationValues.Em38Mk2Offsets[5] = -3.5;
  GpsMonitor.Count = 4;
  GpsQuality.Satellites = 9;
  GpsFormat.ChecksumRequired = 0;
  GpsReceiver.LineIndex = 12;
  PositionPipeline.MapColumnLast = 5;
  ReadingBucket.WriteCount = 6;
  LinkSupervision.StationConfirmOpen = 1;
  FrameReader.Index = 8;
  EmReadingState.CurrentChannel = 2;
  Em61Scale.RingIndex = 3;
  Em61Session.NullingCount = 4;
  Em61Framer.Index = 5;
  WheelFramer.Index = 6;
  Lx2Alarm.Peak[1] = 250.0;
  ProfileMemory.HasPoint[0] = 1;
  ArrayFootprint.Gate = 1;
  LiveMap.SegmentState = 2;
  LoggingLayout.MapX = 44;
  SessionExtras.GpsDataSeen = 1;
  BackgroundSet.Count = 2;
  MapCanvas.WindowSide = 300;
  // The Grad601's and the EM38-MK2's records, in the middle of a session.
  PbarReader.Length = 7;
  PbarReader.UnderWay = 1;
  PbarReader.Line[0] = '$';
  GradientHandler.AudioCount = 3;
  Mk2Reader.Index = 11;
  Mk2Reader.AudioCount = 9;
  Mk2Reader.Line[0] = 'T';
  Mk2Handler.LogGate = -1;
  OffsetCalibration.State = CALIBRATION_RUNNING;
  OffsetCalibration.Phase = CALIBRATION_PHASE_REST;
  OffsetCalibration.Step = STEP_SAMPLING;
  OffsetCalibration.Count = 31;
  OffsetCalibration.StartTick = 123456;
  OffsetCalibration.Sums[7] = 4.5;
  OffsetCalibration.Saved[0] = 2.0;
  OffsetCalibration.VerticalMeanC1 = 10.0;
  OffsetCalibration.VerticalMeanC2 = 20.0;
  OffsetCalibration.GpsHeld = 1;
}

}  // namespace

TEST(EveryRecordOfTheListComesBackToItsStartingValue) {
  ResetProgramState();
  ChangeEveryRecord();
  ResetProgramState();
  CHECK_EQ(Settings.Mk2CalA, 0.0);
  CHECK_EQ(Screen.ClientWidth, 0);
  CHECK_EQ(Session.TotalStations, 0);
  CHECK_EQ((int)Link.ReaderCount, 0);
  CHECK_EQ((int)GpsLink.GpsSequenceNumber, 0);
  CHECK_EQ(Model.NullingState, 0);
  CHECK_EQ((int)DataFileState.DiskFullSeen, 0);
  CHECK_EQ(Position.UtmZone, -9);
  CHECK_EQ(MapWindow.MapWndWidth, 0);
  CHECK_EQ(Scales.ColourWidth, 0.0);
  CHECK_EQ((int)Messages.MessageText[0], 0);
  CHECK_EQ(DataFileNames.NameContinues, 0);
  CHECK_EQ(ManualStation.ReadingCount, 0);
  CHECK_EQ(CalibrationValues.Em38Mk2Offsets[5], 0.0);
  CHECK_EQ(GpsMonitor.Count, 0);
  CHECK_EQ(GpsQuality.Satellites, 0);
  CHECK_EQ(GpsFormat.ChecksumRequired, 1);
  CHECK_EQ(GpsReceiver.LineIndex, 0);
  CHECK_EQ(PositionPipeline.MapColumnLast, 0);
  CHECK_EQ(ReadingBucket.WriteCount, 0);
  CHECK_EQ((int)LinkSupervision.StationConfirmOpen, 0);
  CHECK_EQ(FrameReader.Index, 0);
  CHECK_EQ(EmReadingState.CurrentChannel, -1);
  CHECK_EQ(Em61Scale.RingIndex, 0);
  CHECK_EQ(Em61Session.NullingCount, 0);
  CHECK_EQ(Em61Framer.Index, -1);
  CHECK_EQ(WheelFramer.Index, -1);
  CHECK_EQ(Lx2Alarm.Peak[1], 0.0);
  CHECK_EQ(ProfileMemory.HasPoint[0], 0);
  CHECK_EQ(ArrayFootprint.Gate, 0);
  CHECK_EQ(LiveMap.SegmentState, 0);
  CHECK_EQ(LoggingLayout.MapX, 20);
  CHECK_EQ(SessionExtras.GpsDataSeen, 0);
  CHECK_EQ(BackgroundSet.Count, 0);
  CHECK_EQ(MapCanvas.WindowSide, 0);
  CHECK_EQ(ReplayCalibration.Offsets[2], 0.0);
  CHECK_EQ(ReplayCalibration.ZeroLevelRecords, 0);
  CHECK_EQ(ReplayMapCounts.Readings, 0LL);
  CHECK_EQ(ReplayRecords.ChunkBytes, 0);
  CHECK_EQ(ReplayRecords.Length, RECORD_LENGTH_LONGEST);
  CHECK_EQ(ProfileReplayPlan.ColumnCount, 0);
  CHECK_EQ(MapOptions.MapSize, 0);
  CHECK_EQ(MapOptions.GridInterval, 0.0);
  CHECK_EQ(SurveySetup.Increments[1], 0.0);
  CHECK_EQ(SurveySetup.ModeShown, 0);
}

TEST(TheGrad601AndEm38Mk2RecordsComeBackWhole) {
  ResetProgramState();
  ChangeEveryRecord();
  ResetProgramState();
  CHECK_EQ(PbarReader.Length, 0);
  CHECK_EQ(PbarReader.UnderWay, 0);
  CHECK_EQ((int)PbarReader.Line[0], 0);
  CHECK_EQ(GradientHandler.AudioCount, 0);
  CHECK_EQ(Mk2Reader.Index, -1);
  CHECK_EQ(Mk2Reader.AudioCount, 0);
  CHECK_EQ((int)Mk2Reader.Line[0], 0);
  CHECK_EQ(Mk2Handler.LogGate, 0);
  const OffsetCalibrationRecord& c = OffsetCalibration;
  CHECK_EQ(c.State, CALIBRATION_IDLE);
  CHECK_EQ(c.Phase, 0);
  CHECK_EQ(c.Step, 0);
  CHECK_EQ(c.Count, 0);
  CHECK_EQ(c.StartTick, 0u);
  CHECK_EQ(c.Sums[7], 0.0);
  CHECK_EQ(c.Saved[0], 0.0);
  CHECK_EQ(c.VerticalMeanC1, 0.0);
  CHECK_EQ(c.VerticalMeanC2, 0.0);
  CHECK_EQ(c.GpsHeld, 0);
}
