#include "export/survey_join.h"

#include <cmath>
#include <cstring>

#include "core/state.h"
#include "gps/coordinates.h"
#include "instruments/instrument.h"

namespace {

constexpr double JACOBIAN_STEP_DEGREES = 1e-5;   // about a metre

// A position as the join keeps it: its place, and how latitude and
// longitude change with the grid around it.
struct KeptPosition {
  SurveyPosition Position;
  int HaveInverse = 0;
  double Inverse[4] = {};        // d(latitude, longitude) / d(northing, easting), per map unit
};

struct JoinSettings {
  double GapMs = 3001.0;
  double LagMs = 0.0;
};

struct JoinSink {
  void* Context = nullptr;
  void (*Reading)(void* context, const JoinedReading& reading) = nullptr;
};

// The file's geometry in map units, from the header's settings.
struct JoinGeometry {
  int Manual = 0;              // Manual survey: readings stand at their station's position
  double OffsetX = 0.0;        // the sensors' centre lies this far left of the antenna's track
  double SensorSpacing = 0.0;  // between the two sensors' centres, 0 for one sensor
  int Sensors = 1;
  double MapUnitMetres = 1.0;  // metres in one map unit of the grid
};

JoinGeometry GeometryNow() {
  const ProgramSettings& s = ::Settings;
  JoinGeometry g;
  g.Manual = s.SurveyMode == SURVEY_MANUAL ? 1 : 0;
  g.OffsetX = GeometryInMapUnits(s.GpsOffsetX, s.MapUnits);
  g.Sensors = TwoSensorsInUse() ? 2 : 1;
  // Two sensors side by side: coils of the row's width, or the gradiometer's separation.
  const double base = Instrument().Store.SwathCoilBase > 0 ? Instrument().Store.SwathCoilBase : s.SensorSeparation;
  g.SensorSpacing = g.Sensors == 2 ? GeometryInMapUnits(base, s.MapUnits) : 0.0;
  g.MapUnitMetres = MapUnitInMetres(s.MapUnits);
  return g;
}

struct JoinRecord {
  JoinSettings Settings;
  JoinSink Sink;
  JoinCounts Counts;
  KeptPosition Window[JOIN_WINDOW];   // a ring, by tick, oldest first from Start
  int Start = 0;
  int Count = 0;
  SurveyReading Pending[JOIN_PENDING];
  int PendingFirst = 0;
  int PendingCount = 0;
  long long Now = 0;                  // newest tick met in this run
  int HaveNow = 0;
  // Manual: the station the last readings stood at.
  long long LastPositionRecord = 0;   // the newest position in the file's order
  long long LastReadingRecord = 0;
  JoinedReading Station;
  int HaveStation = 0;
};

JoinRecord Join;

// The i-th kept position, from the oldest.
KeptPosition& Kept(int i) { return Join.Window[(Join.Start + i) % JOIN_WINDOW]; }
const SurveyPosition& At(int i) { return Kept(i).Position; }

double Length(double x, double y) { return std::sqrt(x * x + y * y); }

void SeeTick(long long tick) {
  if (!Join.HaveNow || tick > Join.Now) Join.Now = tick;
  Join.HaveNow = 1;
}

// How latitude and longitude follow the grid near a geodetic position, by
// the program's own projection: the sensors lie metres from the antenna.
void TakeInverse(KeptPosition& kept) {
  const SurveyPosition& p = kept.Position;
  if (!p.Geodetic || p.Zone < 1) return;
  int zone = p.Zone;
  const double h = p.Latitude < 0 ? -JACOBIAN_STEP_DEGREES : JACOBIAN_STEP_DEGREES;
  double n0, e0, n1, e1, n2, e2;
  LatLonToUtm(p.Latitude, p.Longitude, &zone, &n0, &e0, 1);
  LatLonToUtm(p.Latitude + h, p.Longitude, &zone, &n1, &e1, 1);
  LatLonToUtm(p.Latitude, p.Longitude + h, &zone, &n2, &e2, 1);
  const double unit = MapUnitInMetres(::Settings.MapUnits);
  const double a = (n1 - n0) / h / unit, b = (n2 - n0) / h / unit;   // dN/dlat, dN/dlon
  const double c = (e1 - e0) / h / unit, d = (e2 - e0) / h / unit;   // dE/dlat, dE/dlon
  const double det = a * d - b * c;
  if (!(std::fabs(det) > 0) || !std::isfinite(det)) return;
  kept.Inverse[0] = d / det;
  kept.Inverse[1] = -b / det;
  kept.Inverse[2] = -c / det;
  kept.Inverse[3] = a / det;
  kept.HaveInverse = 1;
}

// ---------------------------------------------------------------- placing

struct Place {
  double X = 0.0, Y = 0.0;       // the antenna, map units
  double Ux = 0.0, Uy = 0.0;     // direction of travel there
  int HaveDirection = 0;
};

bool SegmentDirection(int j, double& ux, double& uy) {
  const SurveyPosition& a = At(j - 1);
  const SurveyPosition& b = At(j);
  const double dx = b.Easting - a.Easting, dy = b.Northing - a.Northing;
  const double m = Length(dx, dy);
  if (!(m > 0) || !std::isfinite(m)) return false;
  ux = dx / m;
  uy = dy / m;
  return true;
}

// The direction of the segment ending at window entry `k`, or of the
// nearest one before it that has a length; at the start of the track, of
// the first that has one.
bool DirectionBefore(int k, double& ux, double& uy) {
  for (int j = k; j >= 1; --j)
    if (SegmentDirection(j, ux, uy)) return true;
  for (int j = 1; j < Join.Count; ++j)
    if (SegmentDirection(j, ux, uy)) return true;
  return false;
}

void PutAt(Place& at, double x, double y, double ux, double uy) {
  at.X = x;
  at.Y = y;
  at.Ux = ux;
  at.Uy = uy;
  at.HaveDirection = 1;
}

// The point `lag` behind the antenna along the track it walked, window
// entry `k` being the end of the segment the antenna is on; beyond the
// kept track the first segment is extended backward.
bool PointBehind(Place& at, int k, double lag) {
  double px = at.X, py = at.Y;
  double remaining = lag;
  for (int j = k; j >= 1; --j) {
    const SurveyPosition& a = At(j - 1);
    const double back = Length(px - a.Easting, py - a.Northing);
    if (remaining <= back && back > 0) {
      const double ux = (px - a.Easting) / back, uy = (py - a.Northing) / back;
      PutAt(at, px - ux * remaining, py - uy * remaining, ux, uy);
      return true;
    }
    remaining -= back;
    px = a.Easting;
    py = a.Northing;
  }
  // Not walked that far yet: behind the oldest kept position, along the first direction.
  double ux, uy;
  if (!DirectionBefore(0, ux, uy)) return false;
  PutAt(at, px - ux * remaining, py - uy * remaining, ux, uy);
  return true;
}

// The sensors' places from the antenna's: behind it along the track for a
// positive lag, on the line of travel for none or a negative one; then
// across, to the left for a positive offset.
void PlaceSensors(JoinedReading& out, Place at, int k, int fromEntry) {
  const JoinGeometry s = GeometryNow();
  const double lag = GeometryInMapUnits(out.Reading.Values.LagMetres, ::Settings.MapUnits);
  if (lag > 0) {
    if (!PointBehind(at, k, lag)) at.HaveDirection = DirectionBefore(k, at.Ux, at.Uy) ? 1 : 0;
  } else {
    at.HaveDirection = DirectionBefore(k, at.Ux, at.Uy) ? 1 : 0;
    if (at.HaveDirection) {
      at.X -= lag * at.Ux;
      at.Y -= lag * at.Uy;
    }
  }
  if (!at.HaveDirection && (lag != 0 || s.OffsetX != 0 || s.SensorSpacing != 0)) ++Join.Counts.NoDirection;
  out.Sensors = s.Sensors;
  for (int i = 0; i < s.Sensors && i < JOIN_SENSORS; ++i) {
    // The first sensor of a pair is the left one.
    const double across = s.OffsetX + (s.Sensors == 2 ? (i == 0 ? 0.5 : -0.5) * s.SensorSpacing : 0.0);
    out.Easting[i] = at.X - across * at.Uy;
    out.Northing[i] = at.Y + across * at.Ux;
  }
  const KeptPosition& kept = Kept(fromEntry);
  if (!kept.HaveInverse) return;
  out.HaveLatLon = 1;
  for (int i = 0; i < out.Sensors; ++i) {
    const double dn = out.Northing[i] - kept.Position.Northing, de = out.Easting[i] - kept.Position.Easting;
    out.Latitude[i] = kept.Position.Latitude + kept.Inverse[0] * dn + kept.Inverse[1] * de;
    out.Longitude[i] = kept.Position.Longitude + kept.Inverse[2] * dn + kept.Inverse[3] * de;
  }
}

void Deliver(const JoinedReading& out) {
  if (Join.Sink.Reading) Join.Sink.Reading(Join.Sink.Context, out);
}

double UtcBetween(double u0, double u1, double f) {
  if (u1 < u0 - 43200.0) u1 += 86400.0;   // over midnight
  const double u = u0 + f * (u1 - u0);
  return u >= 86400.0 ? u - 86400.0 : u;
}

// A reading between window entries k - 1 and k.
void PlaceBetween(JoinedReading& out, int k, double tick) {
  const SurveyPosition& a = At(k - 1);
  const SurveyPosition& b = At(k);
  const double span = (double)(b.Tick - a.Tick);
  if (span > Join.Settings.GapMs) {
    out.Place = PLACE_GAP;
    out.GapMs = span;
    return;
  }
  const double f = span > 0 ? (tick - (double)a.Tick) / span : 1.0;
  Place at;
  at.X = a.Easting + f * (b.Easting - a.Easting);
  at.Y = a.Northing + f * (b.Northing - a.Northing);
  out.Place = PLACE_GPS;
  if (a.HaveUtc && b.HaveUtc) {
    out.HaveUtc = 1;
    out.UtcSeconds = UtcBetween(a.UtcSeconds, b.UtcSeconds, f);
  }
  PlaceSensors(out, at, k, f < 0.5 ? k - 1 : k);
}

// Whether the reading at `tick` can be placed now; `final` when nothing
// more will come in its run. A position may reach the file after records
// newer than itself, so a reading is placed once the file has gone on some
// seconds past it.
bool TryPlace(const SurveyReading& r, bool final, JoinedReading& out) {
  const double tick = (double)r.Tick - Join.Settings.LagMs;
  out = JoinedReading();
  out.Reading = r;
  out.Sensors = GeometryNow().Sensors;
  const bool settled = final || (double)Join.Now - tick >= JOIN_SETTLE_MS;
  if (Join.Count == 0) {
    if (!final && (double)Join.Now - tick <= Join.Settings.GapMs + JOIN_SETTLE_MS) return false;
    out.Place = PLACE_NONE;
    return true;
  }
  const SurveyPosition& newest = At(Join.Count - 1);
  if ((double)newest.Tick >= tick) {
    if (!settled) return false;
    // The first position not older than the reading; readings wait near the newest.
    int k = Join.Count;
    while (k > 0 && (double)At(k - 1).Tick >= tick) --k;
    if (k == 0) {
      out.Place = PLACE_NONE;
      if ((double)At(0).Tick == tick) {
        Place at;
        at.X = At(0).Easting;
        at.Y = At(0).Northing;
        out.Place = PLACE_GPS;
        PlaceSensors(out, at, 0, 0);
      }
      return true;
    }
    PlaceBetween(out, k, tick);
    return true;
  }
  // After the newest position: wait for the next, unless it can no longer
  // come within the limit.
  const double since = tick - (double)newest.Tick;
  if (final) {
    out.Place = PLACE_NONE;
    return true;
  }
  if ((double)Join.Now - (double)newest.Tick > Join.Settings.GapMs + JOIN_SETTLE_MS ||
      (since > Join.Settings.GapMs && (double)Join.Now - tick > JOIN_SETTLE_MS)) {
    out.Place = PLACE_GAP;
    out.GapMs = (double)Join.Now - (double)newest.Tick;
    return true;
  }
  return false;
}

void Drain(bool final) {
  JoinedReading out;
  while (Join.PendingCount > 0) {
    const SurveyReading& r = Join.Pending[Join.PendingFirst];
    if (!TryPlace(r, final, out)) return;
    Deliver(out);
    Join.PendingFirst = (Join.PendingFirst + 1) % JOIN_PENDING;
    --Join.PendingCount;
  }
}

// Manual: a station's readings stand where the program wrote the station's
// position, just before them; the further readings of a station where its first stood.
void PlaceAtStation(const SurveyReading& r) {
  JoinedReading out;
  out.Reading = r;
  out.Sensors = GeometryNow().Sensors;
  if (r.Values.Stacked && Join.HaveStation) {
    JoinedReading same = Join.Station;
    same.Reading = r;
    Deliver(same);
    return;
  }
  out.Place = PLACE_NONE;
  const bool fresh = Join.LastPositionRecord > Join.LastReadingRecord;
  int k = Join.Count - 1;
  while (k >= 0 && At(k).Record != Join.LastPositionRecord) --k;
  if (fresh && k >= 0) {
    const SurveyPosition& p = At(k);
    Place at;
    at.X = p.Easting;
    at.Y = p.Northing;
    out.Place = PLACE_STATION;
    out.HaveUtc = p.HaveUtc;
    out.UtcSeconds = p.UtcSeconds;
    PlaceSensors(out, at, k, k);
  }
  Join.Station = out;
  Join.HaveStation = 1;
  Deliver(out);
}

}  // namespace

double MapUnitInMetres(int mapUnits) {
  if (mapUnits == 1) return FEET_TO_METRES;
  if (mapUnits == 2) return US_FEET_TO_METRES;
  return 1.0;
}

double GeometryInMapUnits(double metres, int mapUnits) { return mapUnits != 0 ? metres / 0.3048 : metres; }

void StartJoin(double gapMs, double lagMs, void (*reading)(void* context, const JoinedReading& reading),
               void* context) {
  Join.Settings.GapMs = gapMs;
  Join.Settings.LagMs = lagMs;
  Join.Sink.Reading = reading;
  Join.Sink.Context = context;
  Join.Counts = JoinCounts();
  Join.Start = Join.Count = 0;
  Join.PendingFirst = Join.PendingCount = 0;
  Join.HaveNow = 0;
  Join.Now = 0;
  Join.LastPositionRecord = Join.LastReadingRecord = 0;
  Join.HaveStation = 0;
}

void JoinPosition(const SurveyPosition& position) {
  SeeTick(position.Tick);
  KeptPosition kept;
  kept.Position = position;
  TakeInverse(kept);
  int at = Join.Count;
  while (at > 0 && At(at - 1).Tick > position.Tick) --at;
  if (at < Join.Count) ++Join.Counts.OutOfOrder;
  if (Join.Count == JOIN_WINDOW) {
    if (at == 0) {
      ++Join.Counts.TooLate;
      return;
    }
    Join.Start = (Join.Start + 1) % JOIN_WINDOW;   // the oldest leaves
    --Join.Count;
    --at;
  }
  // Out of order: the newer ones move up one place (seldom, and near the newest).
  for (int i = Join.Count; i > at; --i) Kept(i) = Kept(i - 1);
  Kept(at) = kept;
  ++Join.Count;
  Join.LastPositionRecord = position.Record;
  Drain(false);
}

void JoinReading(const SurveyReading& reading) {
  SeeTick(reading.Tick);
  if (GeometryNow().Manual) {
    PlaceAtStation(reading);
    Join.LastReadingRecord = reading.Record;
    return;
  }
  if (Join.PendingCount == JOIN_PENDING) {
    // More readings than any receiver's silence explains: the oldest goes as it stands.
    JoinedReading out;
    TryPlace(Join.Pending[Join.PendingFirst], true, out);
    Deliver(out);
    Join.PendingFirst = (Join.PendingFirst + 1) % JOIN_PENDING;
    --Join.PendingCount;
  }
  Join.Pending[(Join.PendingFirst + Join.PendingCount) % JOIN_PENDING] = reading;
  ++Join.PendingCount;
  Join.LastReadingRecord = reading.Record;
  Drain(false);
}

void JoinBreak() {
  Drain(true);
  Join.Start = Join.Count = 0;
  Join.HaveNow = 0;
  Join.HaveStation = 0;
}

void FinishJoin() { Drain(true); }

const JoinCounts& JoinCountsOfPass() { return Join.Counts; }
