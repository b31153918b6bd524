#include "export/export_report.h"

#include <cmath>
#include <cstring>

#include "core/state.h"
#include "core/text.h"
#include "core/variant.h"
#include "gps/nmea_decode.h"
#include "instruments/instrument.h"

SurveySummary Summary;

namespace {

constexpr double DAY_MS = 86400000.0;
constexpr double BREAK_JOIN_MS = 1500.0;   // break records this close are one break

struct SummarySettingsRecord {
  double GapMs = 3001.0;
  double SpeedLimit = 5.0;
  double UnitMetres = 1.0;
};

SummarySettingsRecord SummarySettings;

double ClockTextMs(const char* text) {
  // "hh:mm:ss.mmm"
  if (strlen(text) < 8) return -1.0;
  const int h = (text[0] - '0') * 10 + (text[1] - '0');
  const int m = (text[3] - '0') * 10 + (text[4] - '0');
  const double s = AsciiToDouble(text + 6);
  if (h < 0 || h > 23 || m < 0 || m > 59 || !(s >= 0 && s < 61)) return -1.0;
  return (h * 3600.0 + m * 60.0 + s) * 1000.0;
}

void FormatClock(double ms, char* out, int capacity) {
  ms = std::fmod(ms, DAY_MS);
  if (ms < 0) ms += DAY_MS;
  const long long total = (long long)(ms / 1000.0);
  FormatNarrow(out, capacity, "%02lld:%02lld:%02lld", total / 3600, total / 60 % 60, total % 60);
}

// The local time of a tick by the newest "*" record, or the tick itself.
void ClockOf(long long tick, char* out, int capacity) {
  if (Summary.HaveClock) FormatClock(Summary.ClockMs + (double)(tick - Summary.ClockTick), out, capacity);
  else FormatNarrow(out, capacity, "tick %lld", tick);
}

void Widen(double x, double y) {
  if (!std::isfinite(x) || !std::isfinite(y)) return;
  SurveySummary& s = Summary;
  if (!s.HaveExtent) {
    s.MinX = s.MaxX = x;
    s.MinY = s.MaxY = y;
    s.HaveExtent = 1;
    return;
  }
  if (x < s.MinX) s.MinX = x;
  if (x > s.MaxX) s.MaxX = x;
  if (y < s.MinY) s.MinY = y;
  if (y > s.MaxY) s.MaxY = y;
}

void SeeTick(long long tick) {
  SurveySummary& s = Summary;
  if (!s.RunHaveTick) {
    s.RunFirstTick = s.RunLastTick = tick;
    s.RunHaveTick = 1;
    if (!s.FirstClock[0]) ClockOf(tick, s.FirstClock, sizeof s.FirstClock);
  }
  if (tick < s.RunFirstTick) s.RunFirstTick = tick;
  if (tick > s.RunLastTick) s.RunLastTick = tick;
}

void EndRun() {
  SurveySummary& s = Summary;
  if (s.RunHaveTick) {
    s.LoggedMs += (double)(s.RunLastTick - s.RunFirstTick);
    ClockOf(s.RunLastTick, s.LastClock, sizeof s.LastClock);
  }
  s.RunHaveTick = 0;
  s.HavePrevious = 0;
  s.HaveAnchor = 0;
}

ReportMoment* AddMoment(ReportMoments& list, long long tick, const char* text) {
  ++list.Count;
  if (list.Count > REPORT_EVENTS_LISTED) return nullptr;
  ReportMoment& m = list.Listed[list.Count - 1];
  m = ReportMoment();
  ClockOf(tick, m.Clock, sizeof m.Clock);
  if (text) FormatNarrow(m.Text, sizeof m.Text, "%s", text);
  if (Summary.HavePrevious) {
    m.HavePlace = 1;
    m.Easting = Summary.Previous.Easting;
    m.Northing = Summary.Previous.Northing;
  }
  return &m;
}

// Break records come at every late tick of the session timer: those close
// together are one break, with its length and its count of records.
struct BreakRun {
  long long Start = 0, Last = 0;
  int Open = 0;
};
BreakRun InstrumentBreakRun, GpsBreakRun;

void AddBreak(ReportMoments& list, BreakRun& run, const SurveyEvent& e) {
  if (run.Open && (double)(e.Tick - run.Last) <= BREAK_JOIN_MS && e.Tick >= run.Last) {
    run.Last = e.Tick;
    if (list.Count <= REPORT_EVENTS_LISTED) {
      ReportMoment& m = list.Listed[list.Count - 1];
      m.Seconds = (double)(run.Last - run.Start) / 1000.0;
      ++m.Records;
    }
    return;
  }
  run.Open = 1;
  run.Start = run.Last = e.Tick;
  ReportMoment* m = AddMoment(list, e.Tick, e.Text);
  if (m) m->Records = 1;
}

void SpeedStep(const SurveyPosition& p) {
  SurveySummary& s = Summary;
  if (!s.HaveAnchor) {
    s.Anchor = p;
    s.HaveAnchor = 1;
    return;
  }
  const double dt = (double)(p.Tick - s.Anchor.Tick);
  if (dt < REPORT_SPEED_STEP_MS) return;
  if (dt > SummarySettings.GapMs) {
    s.Anchor = p;
    return;
  }
  const double d = std::sqrt((p.Easting - s.Anchor.Easting) * (p.Easting - s.Anchor.Easting) +
                             (p.Northing - s.Anchor.Northing) * (p.Northing - s.Anchor.Northing));
  s.Anchor = p;
  if (!std::isfinite(d)) return;
  s.Distance += d;
  if (s.CurrentLine >= 0 && s.CurrentLine < s.LineCount) s.Lines[s.CurrentLine].Distance += d;
  const double metres = d * SummarySettings.UnitMetres;
  const double v = metres / (dt / 1000.0);
  ++s.SpeedSteps;
  s.SpeedTimeMs += dt;
  s.SpeedMetres += metres;
  if (v > s.SpeedMax) s.SpeedMax = v;
  if (v > SummarySettings.SpeedLimit) s.SpeedOverMs += dt;
  int bin = (int)(v / REPORT_SPEED_BIN);
  if (bin > REPORT_SPEED_BINS) bin = REPORT_SPEED_BINS;
  ++s.SpeedBins[bin];
}

double SpeedQuantile(double fraction) {
  const SurveySummary& s = Summary;
  if (s.SpeedSteps == 0) return 0.0;
  const long long target = (long long)std::ceil(fraction * (double)s.SpeedSteps);
  long long seen = 0;
  for (int i = 0; i <= REPORT_SPEED_BINS; ++i) {
    seen += s.SpeedBins[i];
    if (seen >= target) return (i + 0.5) * REPORT_SPEED_BIN;
  }
  return REPORT_SPEED_BINS * REPORT_SPEED_BIN;
}

unsigned NextRandom() {
  Summary.Random = Summary.Random * 1103515245u + 12345u;
  return Summary.Random >> 8;
}

void KeepValue(ReportColumn& c, double v) {
  if (c.Count == 0) c.Min = c.Max = v;
  if (v < c.Min) c.Min = v;
  if (v > c.Max) c.Max = v;
  c.Sum += v;
  ++c.Count;
  // A fixed sample of all values, drawn evenly: the picture's range needs no more.
  if (c.Kept < REPORT_SAMPLE) {
    c.Sample[c.Kept++] = v;
  } else {
    const unsigned long long slot = NextRandom() % (unsigned long long)c.Count;
    if (slot < (unsigned long long)REPORT_SAMPLE) c.Sample[slot] = v;
  }
}

}  // namespace

const char* MapUnitName(int mapUnits) {
  if (mapUnits == 1) return "ft";
  if (mapUnits == 2) return "US ft";
  return "m";
}

void StartSummary(double gapMs, double speedLimit, double unitMetres) {
  Summary = SurveySummary();
  Summary.CurrentLine = -1;
  SummarySettings.GapMs = gapMs;
  SummarySettings.SpeedLimit = speedLimit;
  SummarySettings.UnitMetres = unitMetres;
  InstrumentBreakRun = BreakRun();
  GpsBreakRun = BreakRun();
}

void SummaryPosition(const SurveyPosition& p) {
  const double gapMs = SummarySettings.GapMs;
  SurveySummary& s = Summary;
  SeeTick(p.Tick);
  if (!p.Valid) return;
  ++s.ValidPositions;
  Widen(p.Easting, p.Northing);
  ++s.Quality[p.Quality >= 0 && p.Quality <= 9 ? p.Quality : 10];
  if (p.Geodetic && p.Zone > 0 && p.NaturalZone != p.Zone) {
    ++s.OutsideZone;
    s.OtherZone = p.NaturalZone;
  }
  if (s.HavePrevious && p.Tick > s.Previous.Tick && (double)(p.Tick - s.Previous.Tick) > gapMs) {
    const double ms = (double)(p.Tick - s.Previous.Tick);
    if (ms > s.GapMsLongest) s.GapMsLongest = ms;
    ReportMoment* m = AddMoment(s.Gaps, s.Previous.Tick, nullptr);
    if (m) m->Seconds = ms / 1000.0;
  }
  SpeedStep(p);
  if (!s.HavePrevious || p.Tick >= s.Previous.Tick) {
    s.Previous = p;
    s.HavePrevious = 1;
  }
}

void SummaryReading(const JoinedReading& j, int valueCount) {
  SurveySummary& s = Summary;
  const SurveyReading& r = j.Reading;
  SeeTick(r.Tick);
  ++s.Readings;
  ++s.ByPlace[j.Place];
  if (r.Values.Marker) ++s.Markers;
  const bool placed = j.Place == PLACE_GPS || j.Place == PLACE_STATION;
  if (placed)
    for (int i = 0; i < j.Sensors; ++i) Widen(j.Easting[i], j.Northing[i]);
  const int line = r.Line - 1;
  if (line >= 0 && line < s.LineCount) {
    ReportLine& l = s.Lines[line];
    ++l.Readings;
    if (placed) ++l.Placed;
    if (!l.HaveTicks) l.FirstTick = l.LastTick = r.Tick;
    if (r.Tick < l.FirstTick) l.FirstTick = r.Tick;
    if (r.Tick > l.LastTick) l.LastTick = r.Tick;
    l.HaveTicks = 1;
  }
  for (int sensor = 0; sensor < j.Sensors; ++sensor)
    for (int c = 0; c < valueCount && c < REPORT_VALUE_COLUMNS; ++c) {
      const int at = sensor * valueCount + c;
      if (at < RECORD_READING_VALUES && r.Values.Valid[at] && std::isfinite(r.Values.Values[at]))
        KeepValue(s.Columns[c], r.Values.Values[at]);
    }
}

void SummaryEvent(const SurveyEvent& e) {
  SurveySummary& s = Summary;
  if (e.HaveTick && e.Kind != EVENT_TIME) SeeTick(e.Tick);
  switch (e.Kind) {
    case EVENT_SESSION:
      EndRun();
      ++s.Run;
      break;
    case EVENT_RUN_START:
      EndRun();
      SeeTick(e.Tick);
      ++s.Run;
      break;
    case EVENT_PAUSE: ++s.Pauses; break;
    case EVENT_LINE:
      if (s.LineCount < REPORT_LINES_LISTED) {
        ReportLine& l = s.Lines[s.LineCount];
        memcpy(l.Name, e.Text, sizeof l.Name);
        l.Name[sizeof l.Name - 1] = 0;
        l.Run = s.Run;
        s.CurrentLine = s.LineCount++;
      } else {
        s.CurrentLine = -1;
      }
      break;
    case EVENT_STATION: ++s.Stations; break;
    case EVENT_TIME: {
      // Taken before the tick is seen, so that the record's own moment reads as local time.
      const double ms = ClockTextMs(e.Text);
      if (ms >= 0) {
        s.HaveClock = 1;
        s.ClockMs = ms;
        s.ClockTick = e.Tick;
      }
      SeeTick(e.Tick);
      break;
    }
    case EVENT_DATE:
      if (!s.Date[0]) memcpy(s.Date, e.Text, sizeof s.Date);
      break;
    case EVENT_COMMENT: AddMoment(s.Comments, e.Tick, e.Text); break;
    case EVENT_INSTRUMENT_BREAK: AddBreak(s.InstrumentBreaks, InstrumentBreakRun, e); break;
    case EVENT_GPS_BREAK: AddBreak(s.GpsBreaks, GpsBreakRun, e); break;
    case EVENT_CONNECTION_END: ++s.ConnectionEnds; break;
    case EVENT_OTHER_MARKER: AddMoment(s.OtherMarkers, e.Tick, e.Text); break;
    case EVENT_NULLING:
    case EVENT_FILTER_CALIBRATION:
    case EVENT_OFFSET_CALIBRATION: {
      const char* what = e.Kind == EVENT_NULLING ? "nulling" : e.Kind == EVENT_FILTER_CALIBRATION
                                                                   ? "filter calibration" : "offset calibration";
      ReportMoment* m = AddMoment(s.Calibrations, e.Tick, what);
      if (m) {
        m->ValueCount = e.ValueCount;
        memcpy(m->Values, e.Values, sizeof m->Values);
        if (!e.HaveTick) FormatNarrow(m->Clock, sizeof m->Clock, "record %lld", e.Record);
      }
      break;
    }
  }
}

void FinishSummary() { EndRun(); }

double SummaryQuantile(int column, double fraction) {
  if (column < 0 || column >= REPORT_VALUE_COLUMNS) return 0.0;
  ReportColumn& c = Summary.Columns[column];
  if (c.Kept == 0) return 0.0;
  // A copy sorted by insertion: the sample is small.
  static double sorted[REPORT_SAMPLE];
  for (int i = 0; i < c.Kept; ++i) {
    const double v = c.Sample[i];
    int j = i;
    while (j > 0 && sorted[j - 1] > v) {
      sorted[j] = sorted[j - 1];
      --j;
    }
    sorted[j] = v;
  }
  int at = (int)(fraction * (c.Kept - 1) + 0.5);
  if (at < 0) at = 0;
  if (at >= c.Kept) at = c.Kept - 1;
  return sorted[at];
}

// ---------------------------------------------------------------- text

namespace {

void Duration(double ms, char* out, int capacity) {
  if (!(ms >= 0)) ms = 0;
  const long long s = (long long)(ms / 1000.0 + 0.5);
  FormatNarrow(out, capacity, "%02lld:%02lld:%02lld", s / 3600, s / 60 % 60, s % 60);
}

const char* SurveyModeName(int mode) {
  if (mode == 1) return "Wheel";
  if (mode == 2) return "Manual";
  return "Auto";
}

const char* OptionName(int option) {
  static const char* const Names[9] = {"GGA/GSA", "GGA", "POS", "LLK", "LLQ", "GLL", "GGK", "pseudo-GGA", "pseudo-GLL"};
  return option >= 0 && option <= 8 ? Names[option] : "?";
}

void WriteMoments(ExportOutput& out, const char* title, const ReportMoments& list, const char* unit) {
  OutFormat(out, "  %-18s %lld\n", title, list.Count);
  const long long shown = list.Count < REPORT_EVENTS_LISTED ? list.Count : REPORT_EVENTS_LISTED;
  for (long long i = 0; i < shown; ++i) {
    const ReportMoment& m = list.Listed[i];
    OutFormat(out, "    %s", m.Clock);
    if (m.Text[0]) OutFormat(out, " \"%s\"", m.Text);
    if (m.Records > 0) OutFormat(out, ", %.2f s (%lld records)", m.Seconds, m.Records);
    if (m.ValueCount > 0) {
      OutText(out, ":");
      for (int v = 0; v + 1 < m.ValueCount; v += 2) OutFormat(out, " %.2f (was %.2f)", m.Values[v], m.Values[v + 1]);
    }
    if (m.HavePlace) OutFormat(out, ", near E %.2f N %.2f %s", m.Easting, m.Northing, unit);
    OutText(out, "\n");
  }
  if (list.Count > shown) OutFormat(out, "    ... and %lld more\n", list.Count - shown);
}

}  // namespace

void WriteReport(ExportOutput& out, const ReportContext& c) {
  const SurveySummary& s = Summary;
  const SurveyHeader& h = *c.Header;
  const SurveyCounts& n = *c.Counts;
  const InstrumentDescription& row = Instrument();
  const char* unit = MapUnitName(h.MapUnits);
  char text[64];

  OutFormat(out, "Survey export of %s\n", c.FileName);
  OutFormat(out, "  Instrument   %s, %s program %s (\"%s\", version %s), records of %d bytes\n", row.Name,
            h.Product == MAPPING_PRODUCT ? "mapping" : "navigation", VariantName(), h.Signature, h.Version,
            h.RecordLength);
  OutFormat(out, "  Settings     %s survey, %s, map units %s", SurveyModeName(h.SurveyMode),
            h.InstrumentCount > 0 ? (h.Sensors == 2 ? "two sensors" : "one sensor") : "GPS only", unit);
  if (c.FileZone > 0) OutFormat(out, ", UTM zone %d", c.FileZone);
  OutFormat(out, "\n  GPS          %s, %s (option %d), antenna offsets X %.2f m Y %.2f m", h.GpsEnabled ? "on" : "off",
            OptionName(h.GpsOption), h.GpsOption, h.OffsetX, h.OffsetY);
  if (c.LagMs != 0) OutFormat(out, ", readings %.0f ms older than their ticks", c.LagMs);
  OutText(out, "\n");
  OutFormat(out, "  File         %lld bytes, %lld records, %lld header%s", n.Bytes, n.Records, n.Sessions,
            n.Sessions == 1 ? "" : "s (appended)");
  if (n.CutBytes > 0) OutFormat(out, "; ends in a record cut after %d bytes", n.CutBytes);
  if (n.UnknownRecords > 0) OutFormat(out, "; %lld records not understood", n.UnknownRecords);
  OutText(out, "\n");
  Duration(s.LoggedMs, text, sizeof text);
  OutText(out, "  Time         ");
  if (s.Date[0]) OutFormat(out, "started %s, ", s.Date);
  OutFormat(out, "logged %s", text);
  if (s.FirstClock[0] && s.LastClock[0]) OutFormat(out, ", %s to %s local time", s.FirstClock, s.LastClock);
  OutText(out, "\n");

  OutText(out, "Survey\n");
  OutFormat(out, "  Distance     %.1f %s (positions about a second apart)\n", s.Distance, unit);
  OutFormat(out, "  Lines        %lld\n", n.Lines);
  for (int i = 0; i < s.LineCount; ++i) {
    const ReportLine& l = s.Lines[i];
    Duration(l.HaveTicks ? (double)(l.LastTick - l.FirstTick) : 0.0, text, sizeof text);
    OutFormat(out, "    line \"%s\": %lld readings, %lld placed, %.1f %s, %s\n", l.Name, l.Readings, l.Placed,
              l.Distance, unit, text);
  }
  if (n.Lines > s.LineCount) OutFormat(out, "    ... and %lld more lines\n", n.Lines - s.LineCount);
  OutFormat(out, "  Readings     %lld: %lld placed between positions, %lld at stations, %lld in GPS gaps, "
            "%lld without a position before or after them\n",
            s.Readings, s.ByPlace[PLACE_GPS], s.ByPlace[PLACE_STATION], s.ByPlace[PLACE_GAP], s.ByPlace[PLACE_NONE]);
  OutFormat(out, "  Markers      %lld readings with the marker\n", s.Markers);
  for (int col = 0; col < row.Reading.ValueCount && col < REPORT_VALUE_COLUMNS; ++col) {
    const ReportColumn& v = s.Columns[col];
    OutFormat(out, "  Channel %d    %s: %lld values", col + 1, row.Reading.ValueNames[col], v.Count);
    if (v.Count > 0) OutFormat(out, ", %.4f to %.4f, mean %.4f", v.Min, v.Max, v.Sum / (double)v.Count);
    OutText(out, "\n");
  }

  OutText(out, "GPS\n");
  OutFormat(out, "  Positions    %lld valid of %lld position sentences (%lld failed the decoder's checks), "
            "%lld out of order\n",
            s.ValidPositions, n.PositionSentences, n.RejectedFixes, c.Join->OutOfOrder);
  OutFormat(out, "  Sentences    %lld with a bad checksum skipped, %lld marked bad by the receiver, %lld of other "
            "kinds, %lld broken groups\n",
            n.BadChecksums, n.BadSentences, n.OtherSentences, n.BrokenGroups);
  if (c.FileZone > 0) {
    if (s.OutsideZone > 0)
      OutFormat(out, "  Zone         %lld positions lie in zone %d, projected into the file's zone %d\n", s.OutsideZone,
                s.OtherZone, c.FileZone);
    else
      OutFormat(out, "  Zone         all positions in zone %d\n", c.FileZone);
  }
  OutText(out, "  Fix quality  ");
  bool any = false;
  for (int q = 0; q <= 10; ++q) {
    if (s.Quality[q] == 0) continue;
    if (any) OutText(out, ", ");
    if (q <= 9) OutFormat(out, "%s (%d) %lld", GpsQualityText((char)('0' + q)), q, s.Quality[q]);
    else OutFormat(out, "other %lld", s.Quality[q]);
    any = true;
  }
  OutText(out, any ? " valid positions\n" : "no valid position\n");
  OutFormat(out, "  GPS gaps     %lld longer than %.2f s", s.Gaps.Count, c.GapMs / 1000.0);
  if (s.Gaps.Count > 0) OutFormat(out, ", the longest %.2f s", s.GapMsLongest / 1000.0);
  OutText(out, "\n");
  const long long gapsShown = s.Gaps.Count < REPORT_EVENTS_LISTED ? s.Gaps.Count : REPORT_EVENTS_LISTED;
  for (long long i = 0; i < gapsShown; ++i) {
    const ReportMoment& m = s.Gaps.Listed[i];
    OutFormat(out, "    %s, %.2f s, after E %.2f N %.2f %s\n", m.Clock, m.Seconds, m.Easting, m.Northing, unit);
  }
  if (s.Gaps.Count > gapsShown) OutFormat(out, "    ... and %lld more\n", s.Gaps.Count - gapsShown);
  if (s.SpeedSteps > 0) {
    OutFormat(out, "  Speed        mean %.2f m/s, median %.2f, 95%% %.2f, max %.2f m/s; above the limit of %.2f m/s "
              "for %.1f%% of the time (%.1f s)\n",
              s.SpeedMetres / (s.SpeedTimeMs / 1000.0), SpeedQuantile(0.5), SpeedQuantile(0.95), s.SpeedMax,
              c.SpeedLimit, 100.0 * s.SpeedOverMs / s.SpeedTimeMs, s.SpeedOverMs / 1000.0);
  } else {
    OutText(out, "  Speed        no positions a second apart\n");
  }

  OutText(out, "Events\n");
  WriteMoments(out, "Instrument breaks", s.InstrumentBreaks, unit);
  WriteMoments(out, "GPS breaks", s.GpsBreaks, unit);
  WriteMoments(out, "Calibrations", s.Calibrations, unit);
  WriteMoments(out, "Comments", s.Comments, unit);
  if (s.OtherMarkers.Count > 0) WriteMoments(out, "Other events", s.OtherMarkers, unit);
  OutFormat(out, "  %-18s %lld\n", "Pauses", s.Pauses);
  if (s.Stations > 0) OutFormat(out, "  %-18s %lld\n", "New stations", s.Stations);
  if (s.ConnectionEnds > 0) OutFormat(out, "  %-18s %lld\n", "Sessions ended in battery save", s.ConnectionEnds);
  if (c.Join->NoDirection > 0)
    OutFormat(out, "  %lld readings placed at the antenna: no direction of travel to apply the offsets along\n",
              c.Join->NoDirection);
}
