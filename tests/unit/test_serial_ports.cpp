// Port names, the line and time-out values of both ports, the four tries.
#include <string>

#include "core/state.h"
#include "core/variant.h"
#include "instruments/serial_ports.h"
#include "testing.h"

namespace {

std::string NameOf(int portIndex) {
  wchar_t wide[PORT_NAME_CHARS];
  SerialPortName(portIndex, wide, PORT_NAME_CHARS);
  std::string narrow;
  for (int i = 0; wide[i]; ++i) narrow += (char)wide[i];
  return narrow;
}

int Attempts = 0;
int Reports = 0;
int Delays = 0;
int SucceedAt = 0;   // attempt that opens, 0 for none

int ScriptedOpen(int lastTry) {
  ++Attempts;
  if (Attempts == SucceedAt) return 1;
  if (lastTry == 1) ++Reports;   // only a last try shows its failure
  return 0;
}
void CountDelay(int ms) {
  if (ms == 10) ++Delays;
}
void ResetTries(int succeedAt) {
  Attempts = Reports = Delays = 0;
  SucceedAt = succeedAt;
}

}  // namespace

TEST(PortNinesNameIsTheShortForm) {
  CHECK_EQ(NameOf(0), std::string("COM1:"));
  CHECK_EQ(NameOf(8), std::string("COM9:"));
}

TEST(PortTenOnIsNamedAsADevicePath) {
  CHECK_EQ(NameOf(9), std::string("\\\\.\\COM10"));
  CHECK_EQ(NameOf(59), std::string("\\\\.\\COM60"));
}

TEST(NameIsCutToItsBuffer) {
  wchar_t wide[4] = {L'x', L'x', L'x', L'x'};
  SerialPortName(59, wide, 4);
  CHECK_EQ((int)wide[3], 0);
}

TEST(InstrumentPortIs9600EightNoneOne) {
  ResetProgramState();
  const PortLineSettings line = InstrumentLineSettings();
  CHECK_EQ(line.BaudRate, 9600);
  CHECK_EQ(line.ByteSize, 8);
  CHECK_EQ(line.Parity, LINE_PARITY_NONE);
  CHECK_EQ(line.StopBits, LINE_STOP_ONE);
  CHECK_EQ(line.Binary, 1);
  CHECK_EQ(line.OutxCtsFlow, 0);
  CHECK_EQ(line.OutxDsrFlow, 0);
  CHECK_EQ(line.DtrControl, LINE_CONTROL_ENABLE);
  CHECK_EQ(line.RtsControl, LINE_CONTROL_ENABLE);
  CHECK_EQ(line.OutX, 0);
  CHECK_EQ(line.InX, 0);
}

TEST(Em38Mk2PortIs19200WhateverTheGpsSettingsSay) {
  ResetProgramState();
  SelectVariant(EM38MK2, 0);
  Link.InstrumentHighBaud = 1;
  Settings.GpsBaud = 0;
  CHECK_EQ(InstrumentLineSettings().BaudRate, 19200);
  Link.InstrumentHighBaud = 0;
  Settings.GpsBaud = 5;
  CHECK_EQ(InstrumentLineSettings().BaudRate, 9600);
}

TEST(InstrumentTimeOutsByModel) {
  ResetProgramState();
  const int plain[] = {EM31MK2, EM38, EM343, EM38MK2};
  for (int model : plain) {
    SelectVariant(model, 0);
    const PortTimeouts t = InstrumentPortTimeouts();
    CHECK_EQ(t.ReadIntervalTimeout, 0u);
    CHECK_EQ(t.ReadTotalTimeoutMultiplier, 0u);
    CHECK_EQ(t.ReadTotalTimeoutConstant, 10u);
    CHECK_EQ(t.WriteTotalTimeoutMultiplier, 10u);
    CHECK_EQ(t.WriteTotalTimeoutConstant, 10u);
  }
  const int perByte[] = {Grad601, EM61LX2, EM61MK2};
  for (int model : perByte) {
    SelectVariant(model, 1);
    const PortTimeouts t = InstrumentPortTimeouts();
    CHECK_EQ(t.ReadIntervalTimeout, 0u);
    CHECK_EQ(t.ReadTotalTimeoutMultiplier, 10u);
    CHECK_EQ(t.ReadTotalTimeoutConstant, 10u);
  }
}

TEST(GpsBaudCodes) {
  CHECK_EQ(GpsBaudRateOf(0), 4800);
  CHECK_EQ(GpsBaudRateOf(1), 9600);
  CHECK_EQ(GpsBaudRateOf(2), 19200);
  CHECK_EQ(GpsBaudRateOf(3), 38400);
  CHECK_EQ(GpsBaudRateOf(4), 57600);
  CHECK_EQ(GpsBaudRateOf(5), 115200);
  CHECK_EQ(GpsBaudRateOf(6), FIELD_UNCHANGED);
  CHECK_EQ(GpsBaudRateOf(-1), FIELD_UNCHANGED);
}

TEST(GpsLineCodes) {
  ResetProgramState();
  Settings.GpsBaud = 2;
  Settings.GpsDataBits = 0;
  Settings.GpsParity = 0;
  Settings.GpsStopBits = 0;
  PortLineSettings line = GpsLineSettings();
  CHECK_EQ(line.BaudRate, 19200);
  CHECK_EQ(line.ByteSize, 7);
  CHECK_EQ(line.Parity, LINE_PARITY_NONE);
  CHECK_EQ(line.StopBits, LINE_STOP_ONE);
  Settings.GpsDataBits = 1;
  Settings.GpsParity = 1;
  Settings.GpsStopBits = 1;
  line = GpsLineSettings();
  CHECK_EQ(line.ByteSize, 8);
  CHECK_EQ(line.Parity, LINE_PARITY_EVEN);
  CHECK_EQ(line.StopBits, LINE_STOP_TWO);
  Settings.GpsParity = 2;
  CHECK_EQ(GpsLineSettings().Parity, LINE_PARITY_ODD);
}

TEST(GpsPortHasXonXoffAndLeavesTheRest) {
  ResetProgramState();
  const PortLineSettings line = GpsLineSettings();
  CHECK_EQ(line.OutX, 1);
  CHECK_EQ(line.InX, 1);
  CHECK_EQ(line.OutxCtsFlow, 0);
  CHECK_EQ(line.OutxDsrFlow, 0);
  CHECK_EQ(line.Binary, FIELD_UNCHANGED);
  CHECK_EQ(line.DtrControl, FIELD_UNCHANGED);
  CHECK_EQ(line.RtsControl, FIELD_UNCHANGED);
}

TEST(GpsCodesOutOfTheirListsLeaveTheDriversValues) {
  ResetProgramState();
  Settings.GpsBaud = 9;
  Settings.GpsDataBits = 2;
  Settings.GpsParity = -1;
  Settings.GpsStopBits = 7;
  const PortLineSettings line = GpsLineSettings();
  CHECK_EQ(line.BaudRate, FIELD_UNCHANGED);
  CHECK_EQ(line.ByteSize, FIELD_UNCHANGED);
  CHECK_EQ(line.Parity, FIELD_UNCHANGED);
  CHECK_EQ(line.StopBits, FIELD_UNCHANGED);
}

TEST(GpsTimeOuts) {
  const PortTimeouts t = GpsPortTimeouts();
  CHECK_EQ(t.ReadIntervalTimeout, 10u);
  CHECK_EQ(t.ReadTotalTimeoutMultiplier, 0u);
  CHECK_EQ(t.ReadTotalTimeoutConstant, 10u);
  CHECK_EQ(t.WriteTotalTimeoutMultiplier, 10u);
  CHECK_EQ(t.WriteTotalTimeoutConstant, 10u);
}

TEST(FourFailingOpensGiveOneMessage) {
  ResetTries(0);
  CHECK_EQ(OpenWithFourTries(ScriptedOpen, CountDelay), 0);
  CHECK_EQ(Attempts, 4);
  CHECK_EQ(Reports, 1);
  CHECK_EQ(Delays, 3);
}

TEST(FourthSuccessfulOpenGivesNoMessage) {
  ResetTries(4);
  CHECK_EQ(OpenWithFourTries(ScriptedOpen, CountDelay), 1);
  CHECK_EQ(Attempts, 4);
  CHECK_EQ(Reports, 0);
}

TEST(FirstSuccessfulOpenEndsTheTries) {
  ResetTries(1);
  CHECK_EQ(OpenWithFourTries(ScriptedOpen, CountDelay), 1);
  CHECK_EQ(Attempts, 1);
  CHECK_EQ(Delays, 0);
}
