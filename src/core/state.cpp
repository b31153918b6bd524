#include "core/state.h"

#include <new>

#include "core/main_menu_content.h"
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

ProgramSettings Settings;
ScreenMetrics Screen;
SessionRecord Session;
InstrumentLinkRecord Link;
GpsLinkRecord GpsLink;
ModelRecord Model;
DataFileRecord DataFileState;
PositionRecord Position;
MapWindowRecord MapWindow;
DisplayScalesRecord Scales;
MessageTextsRecord Messages;

template <typename Record> static void ResetRecord(Record& record) {
  // Volatile members forbid plain assignment; rebuild in place instead.
  record.~Record();
  new (&record) Record();
}

void ResetProgramState() {
  ResetRecord(Settings);
  ResetRecord(Screen);
  ResetRecord(Session);
  ResetRecord(Link);
  ResetRecord(GpsLink);
  ResetRecord(Model);
  ResetRecord(DataFileState);
  ResetRecord(Position);
  ResetRecord(MapWindow);
  ResetRecord(Scales);
  ResetRecord(Messages);
  // The subsystems' records, kept next to their code. The UTM constants are
  // computed once at start, and the settings image is the reader's buffer
  // that each read clears; neither is state.
  ResetRecord(DataFileNames);
  ResetRecord(ManualStation);
  ResetRecord(CalibrationValues);
  ResetRecord(ReplayCalibration);
  ResetRecord(ReplayMapCounts);
  ResetRecord(ReplayRecords);
  ResetRecord(ProfileReplayPlan);
  ResetRecord(MapOptions);
  ResetRecord(SurveySetup);
  ResetRecord(GpsMonitor);
  ResetRecord(GpsQuality);
  ResetRecord(GpsFormat);
  ResetRecord(GpsReceiver);
  ResetRecord(GpsActions);
  ResetRecord(PositionPipeline);
  ResetRecord(ReadingBucket);
  ResetRecord(LinkSupervision);
  ResetRecord(FrameReader);
  ResetRecord(EmReadingState);
  ResetRecord(PbarReader);
  ResetRecord(GradientHandler);
  ResetRecord(Mk2Reader);
  ResetRecord(Mk2Handler);
  ResetRecord(OffsetCalibration);
  ResetRecord(Em61Scale);
  ResetRecord(Em61Session);
  ResetRecord(Em61Framer);
  ResetRecord(WheelFramer);
  ResetRecord(Lx2Alarm);
  ResetRecord(ProfileMemory);
  ResetRecord(ArrayFootprint);
  ResetMapCanvas();   // releases the pages first
  ResetRecord(LiveMap);
  ResetRecord(LiveMapCallPoints);
  ResetRecord(LoggingLayout);
  ResetRecord(SessionExtras);
  ResetRecord(BackgroundSet);
  ResetRecord(MainMenuContent);
}
