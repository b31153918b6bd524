// Readings as points and survey lines as tracks, in GeoJSON and KML. Points
// carry their values; in KML each is drawn in the colour class of the
// picture's channel. GeoJSON of grid input holds the grid's own coordinates,
// since no latitude or longitude exists for them; KML needs them and so
// holds only what has them.
#include <cmath>

#include "core/text.h"
#include "export/export_report.h"
#include "export/export_writers.h"
#include "map/colour_scale.h"

namespace {

constexpr int COORDINATE_DECIMALS = 8;   // about a millimetre
constexpr int GRID_DECIMALS = 3;

struct GeoTrackRecord {
  int FirstFeature = 1;          // no comma before the first feature
  int Points = 0;                // of the open track
  SurveyPosition First;          // a track begins only with its second point
  char Line[SURVEY_LINE_NAME_BYTES] = {};
};

GeoTrackRecord Geo;

bool Placed(const JoinedReading& j) { return j.Place == PLACE_GPS || j.Place == PLACE_STATION; }

void FeatureStart(ExportOutput& out) {
  OutText(out, Geo.FirstFeature ? "\n" : ",\n");
  Geo.FirstFeature = 0;
}

void JsonPoint(const ExportContext& c, ExportOutput& out, double x, double y) {
  const int decimals = c.Geodetic ? COORDINATE_DECIMALS : GRID_DECIMALS;
  OutChar(out, '[');
  OutFixed(out, x, decimals);
  OutChar(out, ',');
  OutFixed(out, y, decimals);
  OutChar(out, ']');
}

void KmlPoint(ExportOutput& out, double longitude, double latitude) {
  OutFixed(out, longitude, COORDINATE_DECIMALS);
  OutChar(out, ',');
  OutFixed(out, latitude, COORDINATE_DECIMALS);
}

// A position's coordinates in the GeoJSON: longitude and latitude, or the grid.
void TrackJsonPoint(const ExportContext& c, const SurveyPosition& p) {
  if (c.Geodetic) JsonPoint(c, *c.GeoJson, p.Longitude, p.Latitude);
  else JsonPoint(c, *c.GeoJson, p.Easting, p.Northing);
}

bool UsableForKml(const SurveyPosition& p) { return p.Geodetic != 0; }

void OpenTrack(const ExportContext& c) {
  if (c.GeoJson) {
    ExportOutput& out = *c.GeoJson;
    FeatureStart(out);
    OutText(out, "{\"type\":\"Feature\",\"properties\":{\"kind\":\"track\",\"line\":");
    OutJsonText(out, Geo.Line);
    OutText(out, "},\"geometry\":{\"type\":\"LineString\",\"coordinates\":[");
    TrackJsonPoint(c, Geo.First);
  }
  if (c.Kml && UsableForKml(Geo.First)) {
    ExportOutput& out = *c.Kml;
    OutText(out, "<Placemark><name>line ");
    OutXmlText(out, Geo.Line);
    OutText(out, "</name><styleUrl>#track</styleUrl><LineString><tessellate>1</tessellate><coordinates>");
    KmlPoint(out, Geo.First.Longitude, Geo.First.Latitude);
  }
}

}  // namespace

void GeoBegin(const ExportContext& c) {
  Geo = GeoTrackRecord();
  if (c.GeoJson) {
    ExportOutput& out = *c.GeoJson;
    OutText(out, "{\"type\":\"FeatureCollection\",\"name\":");
    OutJsonText(out, c.Title);
    if (!c.Geodetic) OutText(out, ",\"crs\":{\"type\":\"name\",\"properties\":{\"name\":\"local grid\"}}");
    OutText(out, ",\"features\":[");
  }
  if (c.Kml) {
    ExportOutput& out = *c.Kml;
    OutText(out, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<kml xmlns=\"http://www.opengis.net/kml/2.2\">\n<Document><name>");
    OutXmlText(out, c.Title);
    OutText(out, "</name>\n<Style id=\"track\"><LineStyle><color>ff202020</color><width>2</width></LineStyle></Style>\n");
    // One style a colour class: KML colours are alpha, blue, green, red.
    for (int k = 0; k <= ColourIndexCount; ++k) {
      const uint32_t rgb = ColourTable[k];
      OutFormat(out,
                "<Style id=\"c%d\"><IconStyle><color>ff%02x%02x%02x</color><scale>0.5</scale><Icon><href>"
                "http://maps.google.com/mapfiles/kml/shapes/shaded_dot.png</href></Icon></IconStyle>"
                "<LabelStyle><scale>0</scale></LabelStyle></Style>\n",
                k, (unsigned)(rgb & 0xFF), (unsigned)((rgb >> 8) & 0xFF), (unsigned)((rgb >> 16) & 0xFF));
    }
    OutText(out, "<Folder><name>Readings</name>\n");
  }
}

void GeoReading(const ExportContext& c, const JoinedReading& j) {
  if (!Placed(j)) return;
  const SurveyReading& r = j.Reading;
  for (int s = 0; s < j.Sensors; ++s) {
    if (c.GeoJson) {
      ExportOutput& out = *c.GeoJson;
      FeatureStart(out);
      OutText(out, "{\"type\":\"Feature\",\"geometry\":{\"type\":\"Point\",\"coordinates\":");
      if (c.Geodetic && j.HaveLatLon) JsonPoint(c, out, j.Longitude[s], j.Latitude[s]);
      else JsonPoint(c, out, j.Easting[s], j.Northing[s]);
      OutText(out, "},\"properties\":{\"line\":");
      OutJsonText(out, r.LineName);
      OutText(out, ",\"station\":");
      OutFixed(out, r.Station, 2);
      OutFormat(out, ",\"tick\":%lld,\"marker\":%d,\"sensor\":%d,\"easting\":", r.Tick, r.Values.Marker, s + 1);
      OutFixed(out, j.Easting[s], 3);
      OutText(out, ",\"northing\":");
      OutFixed(out, j.Northing[s], 3);
      for (int i = 0; i < c.ValueCount; ++i) {
        const int at = s * c.ValueCount + i;
        if (at >= RECORD_READING_VALUES || !r.Values.Valid[at] || !std::isfinite(r.Values.Values[at])) continue;
        OutChar(out, ',');
        OutJsonText(out, c.ValueNames[i]);
        OutChar(out, ':');
        OutFixed(out, r.Values.Values[at], 4);
      }
      OutText(out, "}}");
    }
    if (c.Kml && j.HaveLatLon) {
      ExportOutput& out = *c.Kml;
      const int at = s * c.ValueCount + c.Channel;
      const bool shown = at < RECORD_READING_VALUES && r.Values.Valid[at] && std::isfinite(r.Values.Values[at]);
      OutFormat(out, "<Placemark><name>");
      OutFixed(out, r.Station, 2);
      OutFormat(out, "</name><styleUrl>#c%d</styleUrl><ExtendedData>",
                shown ? ExportColourClass(c, r.Values.Values[at]) : ColourIndexCount);
      OutText(out, "<Data name=\"line\"><value>");
      OutXmlText(out, r.LineName);
      OutFormat(out, "</value></Data><Data name=\"tick\"><value>%lld</value></Data><Data name=\"sensor\"><value>%d"
                "</value></Data>", r.Tick, s + 1);
      for (int i = 0; i < c.ValueCount; ++i) {
        const int v = s * c.ValueCount + i;
        if (v >= RECORD_READING_VALUES || !r.Values.Valid[v] || !std::isfinite(r.Values.Values[v])) continue;
        OutText(out, "<Data name=\"");
        OutXmlText(out, c.ValueNames[i]);
        OutText(out, "\"><value>");
        OutFixed(out, r.Values.Values[v], 4);
        OutText(out, "</value></Data>");
      }
      OutText(out, "</ExtendedData><Point><coordinates>");
      KmlPoint(out, j.Longitude[s], j.Latitude[s]);
      OutText(out, "</coordinates></Point></Placemark>\n");
    }
  }
}

void GeoTracksBegin(const ExportContext& c) {
  Geo.Points = 0;
  if (c.Kml) OutText(*c.Kml, "</Folder>\n<Folder><name>Lines</name>\n");
}

void GeoTrackPoint(const ExportContext& c, const SurveyPosition& p, const char* lineName) {
  if (Geo.Points == 0) {
    Geo.First = p;
    FormatNarrow(Geo.Line, sizeof Geo.Line, "%s", lineName);
    Geo.Points = 1;
    return;
  }
  if (Geo.Points == 1) OpenTrack(c);
  ++Geo.Points;
  if (c.GeoJson) {
    OutChar(*c.GeoJson, ',');
    TrackJsonPoint(c, p);
  }
  if (c.Kml && UsableForKml(Geo.First) && UsableForKml(p)) {
    OutChar(*c.Kml, ' ');
    KmlPoint(*c.Kml, p.Longitude, p.Latitude);
  }
}

void GeoTrackBreak(const ExportContext& c) {
  if (Geo.Points >= 2) {
    if (c.GeoJson) OutText(*c.GeoJson, "]}}");
    if (c.Kml && UsableForKml(Geo.First)) OutText(*c.Kml, "</coordinates></LineString></Placemark>\n");
  }
  Geo.Points = 0;
}

void GeoEnd(const ExportContext& c) {
  GeoTrackBreak(c);
  if (c.GeoJson) OutText(*c.GeoJson, "\n]}\n");
  if (c.Kml) OutText(*c.Kml, "</Folder>\n</Document>\n</kml>\n");
}
