// Which dialog each setup button of the main menu opens: the instrument's
// row names its templates, the product and the screen's width choose the form.
#pragma once

constexpr int MAIN_BUTTON_SURVEY = 1;
constexpr int MAIN_BUTTON_SYSTEM = 2;
constexpr int MAIN_BUTTON_GEOMETRY = 3;     // the alarms with a target alarm
constexpr int MAIN_BUTTON_GPS_PORT = 4;
constexpr int MAIN_BUTTON_MAP_OPTIONS = 6;
constexpr int MAIN_BUTTON_PROFILES = 7;

// The template of a setup button, null for a button that opens no dialog.
const wchar_t* MainMenuDialogTemplate(int button, int clientWidth);
// "Map Display Options": mapping or navigation form, narrow under 784 pixels.
const wchar_t* DisplayOptionsTemplate(int clientWidth);
// "GPS Port Setup", narrow under 600 pixels.
const wchar_t* GpsPortSetupTemplate(int clientWidth);
