#include "export/export_run.h"

#include <cmath>
#include <cstring>

#include "core/state.h"
#include "core/text.h"
#include "export/export_report.h"
#include "export/export_writers.h"
#include "export/survey_join.h"
#include "export/survey_reader.h"
#include "gps/coordinates.h"
#include "instruments/instrument.h"

namespace {

constexpr int HEAD_BYTES = 64;
constexpr double LOW_QUANTILE = 0.02, HIGH_QUANTILE = 0.98;   // the picture's colour range by default
constexpr double EXTENT_MARGIN = 0.02;

struct RunRecord {
  const ExportTargets* Targets = nullptr;
  ExportContext Context;
  SurveyHeader Header;
  SurveyCounts Counts;
  // The tracks' pass: the last position of the open track and the line's name.
  int HaveLast = 0;
  SurveyPosition Last;
  char LineName[SURVEY_LINE_NAME_BYTES] = {};
};

RunRecord Run;

const char* BaseName(const char* path) {
  const char* name = path;
  for (const char* c = path; *c; ++c)
    if (*c == '/' || *c == '\\') name = c + 1;
  return name;
}

void BreakOnEvent(const SurveyEvent& e) {
  if (e.Kind == EVENT_SESSION || e.Kind == EVENT_RUN_START) JoinBreak();
}

// ---------------------------------------------------------------- first pass

void FirstPosition(void*, const SurveyPosition& p) {
  SummaryPosition(p);
  if (Run.Targets->Track) TrackPosition(Run.Context, p);
  if (p.Valid) JoinPosition(p);
}

void FirstEvent(void*, const SurveyEvent& e) {
  SummaryEvent(e);
  BreakOnEvent(e);
}

void FirstJoined(void*, const JoinedReading& j) {
  SummaryReading(j, Run.Context.ValueCount);
  if (Run.Targets->Csv) CsvReading(Run.Context, j);
}

// ---------------------------------------------------------------- points

void PointPosition(void*, const SurveyPosition& p) {
  if (p.Valid) JoinPosition(p);
}

void PointEvent(void*, const SurveyEvent& e) { BreakOnEvent(e); }

void PointJoined(void*, const JoinedReading& j) {
  if (Run.Context.GeoJson || Run.Context.Kml) GeoReading(Run.Context, j);
  if (Run.Context.Svg) SvgReading(Run.Context, j);
}

void ReadingToJoin(void*, const SurveyReading& r) { JoinReading(r); }

// ---------------------------------------------------------------- tracks

void TrackBreak() {
  if (Run.Context.GeoJson || Run.Context.Kml) GeoTrackBreak(Run.Context);
  if (Run.Context.Svg) SvgTrackBreak(Run.Context);
  Run.HaveLast = 0;
}

void TracksPosition(void*, const SurveyPosition& p) {
  if (!p.Valid) return;
  if (Run.HaveLast) {
    if (p.Tick < Run.Last.Tick) return;   // out of order: the track does not turn back for it
    if ((double)(p.Tick - Run.Last.Tick) > Run.Context.GapMs) {
      if (Run.Context.Svg) SvgGap(Run.Context, Run.Last, p);
      TrackBreak();
    }
  }
  if (Run.Context.GeoJson || Run.Context.Kml) GeoTrackPoint(Run.Context, p, Run.LineName);
  if (Run.Context.Svg) SvgTrackPoint(Run.Context, p);
  Run.Last = p;
  Run.HaveLast = 1;
}

void TracksEvent(void*, const SurveyEvent& e) {
  if (e.Kind == EVENT_SESSION || e.Kind == EVENT_RUN_START || e.Kind == EVENT_LINE) TrackBreak();
  if (e.Kind == EVENT_LINE) FormatNarrow(Run.LineName, sizeof Run.LineName, "%s", e.Text);
}

// ---------------------------------------------------------------- passes

void Pass(const ReplayFile& file, SurveySink sink, void (*joined)(void*, const JoinedReading&), double lagMs,
          double gapMs) {
  StartJoin(gapMs, lagMs, joined);
  if (!sink.Reading) sink.Reading = ReadingToJoin;
  ReadSurvey(file, Run.Header, sink, Run.Counts);
  FinishJoin();
}

// The picture's channel and colour range, and the frame of the survey.
bool ChoosePicture(const ExportOptions& o, char* error, int capacity) {
  ExportContext& c = Run.Context;
  if (o.Channel > 0) {
    if (o.Channel > c.ValueCount) {
      FormatNarrow(error, capacity, "--channel %d: the readings of this file have %d value%s", o.Channel,
                   c.ValueCount, c.ValueCount == 1 ? "" : "s");
      return false;
    }
    c.Channel = o.Channel - 1;
  } else {
    c.Channel = 0;
    for (int i = 0; i < c.ValueCount; ++i)
      if (Summary.Columns[i].Count > 0) {
        c.Channel = i;
        break;
      }
  }
  if (o.HaveScale) {
    c.ScaleMin = o.ScaleMin;
    c.ScaleMax = o.ScaleMax;
  } else {
    c.ScaleMin = SummaryQuantile(c.Channel, LOW_QUANTILE);
    c.ScaleMax = SummaryQuantile(c.Channel, HIGH_QUANTILE);
  }
  if (!(c.ScaleMax > c.ScaleMin)) c.ScaleMax = c.ScaleMin + 1.0;
  const double dx = Summary.MaxX - Summary.MinX, dy = Summary.MaxY - Summary.MinY;
  const double pad = EXTENT_MARGIN * (dx > dy ? dx : dy) + 0.5;
  c.MinX = Summary.MinX - pad;
  c.MaxX = Summary.MaxX + pad;
  c.MinY = Summary.MinY - pad;
  c.MaxY = Summary.MaxY + pad;
  const long long placed = Summary.ByPlace[PLACE_GPS] + Summary.ByPlace[PLACE_STATION];
  c.ReadingSpacing = placed > 0 ? Summary.Distance / (double)placed : 0.0;
  return true;
}

bool AnyFailed(const ExportTargets& t, const ExportOptions& o, char* error, int capacity) {
  struct Named {
    ExportOutput* Out;
    const char* Path;
  };
  const Named all[] = {{t.Csv, o.Csv}, {t.GeoJson, o.GeoJson}, {t.Kml, o.Kml}, {t.Svg, o.Svg}, {t.Track, o.Track}};
  for (const Named& n : all) {
    if (!n.Out) continue;
    OutFlush(*n.Out);
    if (n.Out->Failed) {
      FormatNarrow(error, capacity, "could not write %s", n.Path);
      return true;
    }
  }
  return false;
}

}  // namespace

int RunExport(const ExportOptions& o, const ReplayFile& file, const ExportTargets& targets, char* error,
              int capacity) {
  error[0] = 0;
  InitUtmConstants();
  Run = RunRecord();
  Run.Targets = &targets;
  unsigned char head[HEAD_BYTES] = {};
  int count = 0;
  if (file.Seek && file.Read && file.Seek(file.Context, 0, REPLAY_SEEK_START) == 0)
    count = (int)file.Read(file.Context, (char*)head, HEAD_BYTES);
  switch (IdentifySurvey(head, count, Run.Header)) {
    case SURVEY_EMPTY:
      FormatNarrow(error, capacity, "%s: the file is empty", o.DataFile);
      return EXPORT_UNREADABLE;
    case SURVEY_FOREIGN:
      FormatNarrow(error, capacity, "%s: not a data file of the Kelvo and Lum programs", o.DataFile);
      return EXPORT_UNREADABLE;
    case SURVEY_OPENED: break;
  }
  const InstrumentDescription& row = Instrument();
  ExportContext& c = Run.Context;
  c.Header = &Run.Header;
  c.Title = BaseName(o.DataFile);
  c.ValueCount = row.Reading.ValueNames ? row.Reading.ValueCount : 0;
  c.ValueNames = row.Reading.ValueNames;
  c.MapUnits = Run.Header.MapUnits;
  c.GapMs = o.GapMs;
  c.Csv = targets.Csv;
  c.Track = targets.Track;
  StartSummary(o.GapMs, o.SpeedLimit, MapUnitInMetres(Run.Header.MapUnits));

  if (c.Csv) CsvBegin(c);
  if (c.Track) TrackBegin(c);
  SurveySink first;
  first.Position = FirstPosition;
  first.Event = FirstEvent;
  Pass(file, first, FirstJoined, o.LagMs, o.GapMs);
  FinishSummary();
  const JoinCounts joinCounts = JoinCountsOfPass();
  c.Zone = Position.UtmZone > 0 ? Position.UtmZone : 0;
  c.Geodetic = Run.Header.GpsOption != 3 && Run.Header.GpsOption != 4 && Run.Header.GpsOption != 7;
  c.Date = Summary.Date;

  int status = EXPORT_DONE;
  if (targets.GeoJson || targets.Kml || targets.Svg) {
    if (!ChoosePicture(o, error, capacity)) {
      status = EXPORT_OUTPUT_FAILED;
    } else {
      c.GeoJson = targets.GeoJson;
      c.Kml = c.Geodetic ? targets.Kml : nullptr;
      c.Svg = targets.Svg;
      if (targets.Kml && !c.Geodetic) {
        FormatNarrow(error, capacity, "%s: KML needs latitude and longitude; this file's positions are grid "
                     "coordinates", o.Kml);
        status = EXPORT_OUTPUT_FAILED;
      }
      GeoBegin(c);
      if (c.Svg) SvgBegin(c);
      SurveySink points;
      points.Position = PointPosition;
      points.Event = PointEvent;
      Pass(file, points, PointJoined, o.LagMs, o.GapMs);
      GeoTracksBegin(c);
      if (c.Svg) SvgTracksBegin(c);
      SurveySink tracks;
      tracks.Position = TracksPosition;
      tracks.Event = TracksEvent;
      tracks.Reading = [](void*, const SurveyReading&) {};
      ReadSurvey(file, Run.Header, tracks, Run.Counts);
      GeoEnd(c);
      if (c.Svg) SvgEnd(c);
    }
  }

  if (targets.Report) {
    ReportContext report;
    report.FileName = o.DataFile;
    report.Header = &Run.Header;
    report.Counts = &Run.Counts;
    report.Join = &joinCounts;
    report.GapMs = o.GapMs;
    report.SpeedLimit = o.SpeedLimit;
    report.LagMs = o.LagMs;
    report.FileZone = c.Zone;
    WriteReport(*targets.Report, report);
    OutFlush(*targets.Report);
  }
  char failed[512] = {};
  if (AnyFailed(targets, o, failed, sizeof failed)) {
    FormatNarrow(error, capacity, "%s", failed);
    return EXPORT_OUTPUT_FAILED;
  }
  return status;
}
