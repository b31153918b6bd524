#include "gps/gps_dialogs.h"

#include <initializer_list>

#include "core/setup_dialog_ids.h"
#include "core/setup_lists.h"
#include "core/state.h"

namespace {

constexpr int RTS_PSEUDO_GGA = 7;
constexpr int LEAST_SATELLITES = 3;

const char* const BaudTexts[] = {"4800", "9600", "19200", "38400", "57600", "115200"};
const char* const ParityTexts[] = {"No", "Even", "Odd"};
const char* const DataBitTexts[] = {"7", "8"};
const char* const StopBitTexts[] = {"1", "2"};
const char* const RtsUnitTexts[] = {"meters or feet", "US Survey Feet"};
const char* const QualityTexts[] = {"Raw (AGPS)", "DGPS", "RTK 3", "RTK 4", "RTK 5"};
const char* const SatelliteTexts[] = {"3", "4", "5", "6", "7", "8", "9", "10", "11", "12"};
const char* const CoordinateTexts[] = {"Geodetic Lat/Lon", "UTM meters", "UTM feet", "UTM US Feet"};
const char* const GridCoordinateTexts[] = {"meters", "feet", "US Survey Feet"};

template <int N> void PutList(DialogImage& image, int id, const char* const (&items)[N], int selected) {
  PutCombo(image, id, items, N, selected);
}

// The mask's fields and labels for a sentence choice.
void ShowMask(DialogImage& image, int option, int maskDialog) {
  const bool applies = MaskAppliesTo(option);
  PutText(image, IDC_GPS_MASK_WARNING_LABEL, applies ? "Warning" : "N/A");
  PutText(image, IDC_GPS_MASK_QUALITY_LABEL, applies ? "Quality" : "N/A");
  PutText(image, IDC_GPS_MASK_SATELLITES_LABEL, applies ? "Satellites" : "N/A");
  PutText(image, IDC_GPS_MASK_DILUTION_LABEL, DilutionLabel(option, maskDialog));
  for (int id : {IDC_GPS_MASK_WARNING, IDC_GPS_MASK_QUALITY, IDC_GPS_MASK_DILUTION, IDC_GPS_MASK_SATELLITES})
    PutEnabled(image, id, applies);
}

void PutMaskValues(DialogImage& image) {
  const ProgramSettings& s = Settings;
  PutCombo(image, IDC_GPS_MASK_WARNING, DisabledEnabledNames.Items, DisabledEnabledNames.Count, s.GpsMaskWarning);
  PutList(image, IDC_GPS_MASK_QUALITY, QualityTexts, s.GpsMaskQuality);
  PutNumber(image, IDC_GPS_MASK_DILUTION, "%.1f", s.GpsMaskDilution);
  PutList(image, IDC_GPS_MASK_SATELLITES, SatelliteTexts, s.GpsMaskSatellites - LEAST_SATELLITES);
  PutCheck(image, IDC_GPS_AUDIO_WARNING, s.GpsAudioWarning);
}

void TakeMaskValues(const DialogImage& image) {
  ProgramSettings& s = Settings;
  TakeChoice(image, IDC_GPS_MASK_WARNING, s.GpsMaskWarning);
  TakeChoice(image, IDC_GPS_MASK_QUALITY, s.GpsMaskQuality);
  TakeNumber(image, IDC_GPS_MASK_DILUTION, s.GpsMaskDilution);
  int entry = 0;
  if (TakeChoice(image, IDC_GPS_MASK_SATELLITES, entry)) s.GpsMaskSatellites = entry + LEAST_SATELLITES;
  TakeChoice(image, IDC_GPS_AUDIO_WARNING, s.GpsAudioWarning);
}

void ShowRtsFields(DialogImage& image, int option) {
  const int rts = option == RTS_PSEUDO_GGA;
  PutEnabled(image, IDC_GPS_RTS_UNITS, rts);
  PutEnabled(image, IDC_GPS_RTS_UNITS_LABEL, rts);
  PutEnabled(image, IDC_GPS_SLAM, rts);
}

}  // namespace

const char* DilutionLabel(int option, int maskDialog) {
  switch (option) {
    case 0: case 2: return "PDOP";
    case 1: return "HDOP";
    case 3: return "GDOP";
    case 4: return maskDialog ? "Quality (m)" : "Quality [m]";
    case 6: return "DOP";
    default: return "N/A";
  }
}

bool MaskAppliesTo(int option) { return option != 5 && option != 7 && option != 8; }

bool GridCoordinatesOnly(int option) { return option == 3 || option == 4 || option == 7; }

void OpenGpsPortSetup(DialogImage& image) {
  const ProgramSettings& s = Settings;
  const ChoiceList ports = ComPortNames();
  PutCombo(image, IDC_GPS_INPUT, DisabledEnabledNames.Items, DisabledEnabledNames.Count, s.GpsInput);
  PutCombo(image, IDC_GPS_DATA, GpsDataNames.Items, GpsDataNames.Count, s.GpsDataOption);
  PutCombo(image, IDC_GPS_PORT, ports.Items, ports.Count, s.GpsPort);
  PutList(image, IDC_GPS_BAUD, BaudTexts, s.GpsBaud);
  PutList(image, IDC_GPS_PARITY, ParityTexts, s.GpsParity);
  PutList(image, IDC_GPS_DATA_BITS, DataBitTexts, s.GpsDataBits);
  PutList(image, IDC_GPS_STOP_BITS, StopBitTexts, s.GpsStopBits);
  PutList(image, IDC_GPS_RTS_UNITS, RtsUnitTexts, s.RtsUnits);
  PutCheck(image, IDC_GPS_SLAM, s.PseudoGgaSlam);
  PutMaskValues(image);
  ShowRtsFields(image, s.GpsDataOption);
  ShowMask(image, s.GpsDataOption, 0);
}

void GpsPortSetupChanged(DialogImage& image, int id) {
  if (id != IDC_GPS_DATA) return;
  const int option = ChoiceOf(image, IDC_GPS_DATA);
  if (option < 0) return;
  ShowRtsFields(image, option);
  ShowMask(image, option, 0);
}

void AcceptGpsPortSetup(const DialogImage& image) {
  ProgramSettings& s = Settings;
  TakeChoice(image, IDC_GPS_INPUT, s.GpsInput);
  TakeChoice(image, IDC_GPS_DATA, s.GpsDataOption);
  TakeChoice(image, IDC_GPS_PORT, s.GpsPort);
  TakeChoice(image, IDC_GPS_BAUD, s.GpsBaud);
  TakeChoice(image, IDC_GPS_PARITY, s.GpsParity);
  TakeChoice(image, IDC_GPS_DATA_BITS, s.GpsDataBits);
  TakeChoice(image, IDC_GPS_STOP_BITS, s.GpsStopBits);
  TakeChoice(image, IDC_GPS_RTS_UNITS, s.RtsUnits);
  TakeChoice(image, IDC_GPS_SLAM, s.PseudoGgaSlam);
  TakeMaskValues(image);
}

void OpenGpsMask(DialogImage& image) {
  PutMaskValues(image);
  ShowMask(image, Settings.GpsDataOption, 1);
}

void AcceptGpsMask(const DialogImage& image) { TakeMaskValues(image); }

void OpenCoordinateUnits(DialogImage& image) {
  if (GridCoordinatesOnly(Settings.GpsDataOption)) {
    if (Settings.CoordinateDisplayUnits == 0) Settings.CoordinateDisplayUnits = 1;
    PutList(image, IDC_COORDINATES_LIST, GridCoordinateTexts, Settings.CoordinateDisplayUnits - 1);
  } else {
    PutList(image, IDC_COORDINATES_LIST, CoordinateTexts, Settings.CoordinateDisplayUnits);
  }
}

void AcceptCoordinateUnits(const DialogImage& image) {
  int entry = 0;
  if (!TakeChoice(image, IDC_COORDINATES_LIST, entry)) return;
  Settings.CoordinateDisplayUnits = GridCoordinatesOnly(Settings.GpsDataOption) ? entry + 1 : entry;
}
