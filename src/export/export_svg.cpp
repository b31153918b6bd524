// The survey as a picture the operator can look at: every placed reading a
// dot in the colour class of the chosen channel (the program's 50 classes
// over the range), the antenna's track over them, GPS gaps as red dashes,
// a scale bar, a north mark and the colour bar with its five labels as the
// program's colour bar has them. One dot a pixel is enough to see.
#include <cmath>
#include <cstring>
#include <initializer_list>

#include "core/text.h"
#include "export/export_report.h"
#include "export/export_writers.h"
#include "map/colour_scale.h"

namespace {

constexpr int MAP_WIDTH = 1000;            // pixels of the map area
constexpr int MAP_HEIGHT_MIN = 300;
constexpr int MAP_HEIGHT_MAX = 1400;
constexpr int MARGIN = 30;
constexpr int TITLE_HEIGHT = 50;
constexpr int FOOT_HEIGHT = 70;
constexpr int LEGEND_WIDTH = 180;
constexpr double DOT_RADIUS_MIN = 1.2;         // pixels; the dots touch along a line where there is room
constexpr double DOT_RADIUS_MAX = 5.0;
constexpr int BAR_CLASS_PIXELS = 5;        // the colour bar: five pixels a class, class 0 at the bottom

struct SvgRecord {
  double Scale = 1.0;                      // pixels a map unit
  double Left = 0.0, Top = 0.0;            // pixel of (MinX, MaxY)
  int MapHeight = MAP_HEIGHT_MIN;
  int Width = 0, Height = 0;
  unsigned char Drawn[MAP_WIDTH * MAP_HEIGHT_MAX / 8] = {};   // a bit a pixel that has its dot
  double DotRadius = DOT_RADIUS_MIN;
  int TrackOpen = 0;
  double LastX = 0.0, LastY = 0.0;         // last point of the open track
  long long Dots = 0;
};

SvgRecord Svg;

double PixelX(const ExportContext& c, double x) { return Svg.Left + (x - c.MinX) * Svg.Scale; }
double PixelY(const ExportContext& c, double y) { return Svg.Top + (c.MaxY - y) * Svg.Scale; }

// 1, 2 or 5 times a power of ten, at most `limit`.
double NiceLength(double limit) {
  if (!(limit > 0)) return 1.0;
  const double power = std::pow(10.0, std::floor(std::log10(limit)));
  for (double step : {5.0, 2.0, 1.0})
    if (step * power <= limit) return step * power;
  return power;
}

bool FirstDotHere(double px, double py) {
  const int x = (int)(px - MARGIN), y = (int)(py - TITLE_HEIGHT);
  if (x < 0 || y < 0 || x >= MAP_WIDTH || y >= MAP_HEIGHT_MAX) return true;
  const long bit = (long)y * MAP_WIDTH + x;
  unsigned char& byte = Svg.Drawn[bit / 8];
  const unsigned char mask = (unsigned char)(1u << (bit % 8));
  if (byte & mask) return false;
  byte |= mask;
  return true;
}

void ColourBar(const ExportContext& c, ExportOutput& out) {
  const int x = MARGIN + MAP_WIDTH + 30;
  const int span = ColourIndexCount * BAR_CLASS_PIXELS;
  const int top = TITLE_HEIGHT + 30;
  OutText(out, "<g id=\"colour-bar\">\n");
  OutFormat(out, "<text x=\"%d\" y=\"%d\" class=\"label\">", x - 20, top - 12);
  OutXmlText(out, c.ValueNames && c.Channel < c.ValueCount ? c.ValueNames[c.Channel] : "");
  OutText(out, "</text>\n");
  for (int k = ColourIndexCount - 1; k >= 0; --k)
    OutFormat(out, "<rect x=\"%d\" y=\"%d\" width=\"20\" height=\"%d\" class=\"c%d\"/>\n", x,
              top + span - (k + 1) * BAR_CLASS_PIXELS, BAR_CLASS_PIXELS, k);
  OutFormat(out, "<rect x=\"%d\" y=\"%d\" width=\"20\" height=\"%d\" fill=\"none\" stroke=\"#404040\"/>\n", x, top,
            span);
  for (int i = 0; i <= 4; ++i) {
    const double value = i * (c.ScaleMax - c.ScaleMin) / 4.0 + c.ScaleMin;
    const int y = top + span - i * span / 4;
    OutFormat(out, "<line x1=\"%d\" y1=\"%d\" x2=\"%d\" y2=\"%d\" stroke=\"#404040\"/>", x - 6, y, x, y);
    OutFormat(out, "<text x=\"%d\" y=\"%d\" class=\"small\">%.2f</text>\n", x + 26, y + 4, value);
  }
  OutText(out, "</g>\n");
}

void ScaleBar(const ExportContext& c, ExportOutput& out) {
  const double length = NiceLength(MAP_WIDTH / 5.0 / Svg.Scale);
  const double pixels = length * Svg.Scale;
  const int x = MARGIN, y = TITLE_HEIGHT + Svg.MapHeight + 35;
  OutFormat(out, "<g id=\"scale-bar\"><rect x=\"%d\" y=\"%d\" width=\"%.1f\" height=\"6\" fill=\"#202020\"/>", x, y,
            pixels / 2);
  OutFormat(out, "<rect x=\"%.1f\" y=\"%d\" width=\"%.1f\" height=\"6\" fill=\"#ffffff\" stroke=\"#202020\"/>",
            x + pixels / 2, y, pixels / 2);
  OutFormat(out, "<text x=\"%d\" y=\"%d\" class=\"small\">0</text>", x - 3, y - 4);
  OutFormat(out, "<text x=\"%.1f\" y=\"%d\" class=\"small\">%g %s</text></g>\n", x + pixels - 6, y - 4, length,
            MapUnitName(c.MapUnits));
}

void NorthMark(ExportOutput& out) {
  const int x = MARGIN + MAP_WIDTH - 20, y = TITLE_HEIGHT + 10;
  OutFormat(out, "<g id=\"north\"><path d=\"M%d %d l7 20 l-7 -6 l-7 6 z\" fill=\"#202020\"/>", x, y);
  OutFormat(out, "<text x=\"%d\" y=\"%d\" class=\"label\" text-anchor=\"middle\">N</text></g>\n", x, y + 36);
}

}  // namespace

void SvgBegin(const ExportContext& c) {
  ExportOutput& out = *c.Svg;
  memset(Svg.Drawn, 0, sizeof Svg.Drawn);
  Svg.TrackOpen = 0;
  Svg.Dots = 0;
  double dx = c.MaxX - c.MinX, dy = c.MaxY - c.MinY;
  if (!(dx > 0)) dx = 1.0;
  if (!(dy > 0)) dy = 1.0;
  double height = MAP_WIDTH * dy / dx;
  if (height < MAP_HEIGHT_MIN) height = MAP_HEIGHT_MIN;
  if (height > MAP_HEIGHT_MAX) height = MAP_HEIGHT_MAX;
  Svg.MapHeight = (int)height;
  Svg.Scale = std::fmin(MAP_WIDTH / dx, Svg.MapHeight / dy);
  // The survey in the middle of the map area.
  Svg.DotRadius = std::fmin(DOT_RADIUS_MAX, std::fmax(DOT_RADIUS_MIN, 0.6 * c.ReadingSpacing * Svg.Scale));
  Svg.Left = MARGIN + (MAP_WIDTH - dx * Svg.Scale) / 2.0;
  Svg.Top = TITLE_HEIGHT + (Svg.MapHeight - dy * Svg.Scale) / 2.0;
  Svg.Width = MARGIN + MAP_WIDTH + LEGEND_WIDTH;
  Svg.Height = TITLE_HEIGHT + Svg.MapHeight + FOOT_HEIGHT;
  OutFormat(out, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%d\" "
            "height=\"%d\" viewBox=\"0 0 %d %d\">\n", Svg.Width, Svg.Height, Svg.Width, Svg.Height);
  OutText(out, "<style>\n.label{font:14px sans-serif;fill:#202020}\n.small{font:12px sans-serif;fill:#202020}\n"
          ".track{fill:none;stroke:#404040;stroke-width:0.6;stroke-opacity:0.6}\n"
          ".gap{fill:none;stroke:#e00000;stroke-width:1.5;stroke-dasharray:4 3}\n");
  for (int k = 0; k <= ColourIndexCount; ++k) OutFormat(out, ".c%d{fill:#%06x;stroke:none}\n", k, (unsigned)ColourTable[k]);
  OutText(out, "</style>\n<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n");
  OutFormat(out, "<rect x=\"%d\" y=\"%d\" width=\"%d\" height=\"%d\" fill=\"none\" stroke=\"#c0c0c0\"/>\n", MARGIN,
            TITLE_HEIGHT, MAP_WIDTH, Svg.MapHeight);
  OutFormat(out, "<text x=\"%d\" y=\"22\" class=\"label\">", MARGIN);
  OutXmlText(out, c.Title);
  OutText(out, "</text>\n");
  OutFormat(out, "<text x=\"%d\" y=\"40\" class=\"small\">", MARGIN);
  OutXmlText(out, c.Date);
  OutText(out, "</text>\n<g id=\"readings\">\n");
}

void SvgReading(const ExportContext& c, const JoinedReading& j) {
  if (j.Place != PLACE_GPS && j.Place != PLACE_STATION) return;
  const SurveyReading& r = j.Reading;
  for (int s = 0; s < j.Sensors; ++s) {
    const int at = s * c.ValueCount + c.Channel;
    if (at >= RECORD_READING_VALUES || !r.Values.Valid[at] || !std::isfinite(r.Values.Values[at])) continue;
    const double px = PixelX(c, j.Easting[s]), py = PixelY(c, j.Northing[s]);
    if (!std::isfinite(px) || !std::isfinite(py) || !FirstDotHere(px, py)) continue;
    OutText(*c.Svg, "<circle cx=\"");
    OutFixed(*c.Svg, px, 1);
    OutText(*c.Svg, "\" cy=\"");
    OutFixed(*c.Svg, py, 1);
    OutFormat(*c.Svg, "\" r=\"%.1f\" class=\"c%d\"/>\n", Svg.DotRadius, ExportColourClass(c, r.Values.Values[at]));
    ++Svg.Dots;
  }
}

void SvgTracksBegin(const ExportContext& c) { OutText(*c.Svg, "</g>\n<g id=\"track\">\n"); }

void SvgTrackPoint(const ExportContext& c, const SurveyPosition& p) {
  const double px = PixelX(c, p.Easting), py = PixelY(c, p.Northing);
  if (!std::isfinite(px) || !std::isfinite(py)) return;
  ExportOutput& out = *c.Svg;
  if (!Svg.TrackOpen) {
    OutText(out, "<polyline class=\"track\" points=\"");
    Svg.TrackOpen = 1;
  } else if (std::fabs(px - Svg.LastX) < 0.5 && std::fabs(py - Svg.LastY) < 0.5) {
    return;   // less than a pixel on
  } else {
    OutChar(out, ' ');
  }
  OutFixed(out, px, 1);
  OutChar(out, ',');
  OutFixed(out, py, 1);
  Svg.LastX = px;
  Svg.LastY = py;
}

void SvgTrackBreak(const ExportContext& c) {
  if (Svg.TrackOpen) OutText(*c.Svg, "\"/>\n");
  Svg.TrackOpen = 0;
}

void SvgGap(const ExportContext& c, const SurveyPosition& from, const SurveyPosition& to) {
  const double x1 = PixelX(c, from.Easting), y1 = PixelY(c, from.Northing);
  const double x2 = PixelX(c, to.Easting), y2 = PixelY(c, to.Northing);
  if (!std::isfinite(x1 + y1 + x2 + y2)) return;
  OutFormat(*c.Svg, "<line class=\"gap\" x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\"/>\n", x1, y1, x2, y2);
}

void SvgEnd(const ExportContext& c) {
  ExportOutput& out = *c.Svg;
  SvgTrackBreak(c);
  OutText(out, "</g>\n");
  ScaleBar(c, out);
  NorthMark(out);
  ColourBar(c, out);
  OutFormat(out, "<text x=\"%d\" y=\"%d\" class=\"small\">%lld readings drawn, one dot a pixel; track in grey, GPS "
            "gaps dashed red</text>\n", MARGIN + 300, TITLE_HEIGHT + Svg.MapHeight + 41, Svg.Dots);
  OutText(out, "</svg>\n");
}
