#include "instruments/serial_ports.h"

#include "core/state.h"
#include "core/text.h"
#include "core/variant.h"
#include "instruments/instrument.h"

void SerialPortName(int portIndex, wchar_t* name, int capacity) {
  if (!name || capacity <= 0) return;
  const int number = portIndex + 1;
  char narrow[PORT_NAME_CHARS];
  if (number < 10)
    FormatNarrow(narrow, sizeof narrow, "COM%d:", number);
  else
    FormatNarrow(narrow, sizeof narrow, "\\\\.\\COM%d", number);
  WidenText(narrow, name, capacity);
}

int GpsBaudRateOf(int code) {
  static const int rates[6] = {4800, 9600, 19200, 38400, 57600, 115200};
  if (code < 0 || code > 5) return FIELD_UNCHANGED;
  return rates[code];
}

PortLineSettings InstrumentLineSettings() {
  PortLineSettings line;
  line.BaudRate = Link.InstrumentHighBaud == 1 ? 19200 : 9600;
  line.ByteSize = 8;
  line.Parity = LINE_PARITY_NONE;
  line.StopBits = LINE_STOP_ONE;
  line.Binary = 1;
  line.OutxCtsFlow = 0;
  line.OutxDsrFlow = 0;
  line.DtrControl = LINE_CONTROL_ENABLE;
  line.RtsControl = LINE_CONTROL_ENABLE;
  line.OutX = 0;
  line.InX = 0;
  return line;
}

PortTimeouts InstrumentPortTimeouts() {
  // The polled and line-oriented instruments get a per-byte allowance on top.
  PortTimeouts timeouts;
  timeouts.ReadIntervalTimeout = 0;
  timeouts.ReadTotalTimeoutMultiplier = Instrument().Link.ReadTimeoutMultiplier;
  timeouts.ReadTotalTimeoutConstant = 10;
  timeouts.WriteTotalTimeoutMultiplier = 10;
  timeouts.WriteTotalTimeoutConstant = 10;
  return timeouts;
}

PortLineSettings GpsLineSettings() {
  // A code outside its list leaves the driver's value, as an unmatched choice does.
  PortLineSettings line;
  line.BaudRate = GpsBaudRateOf(Settings.GpsBaud);
  line.ByteSize = Settings.GpsDataBits == 0 ? 7 : Settings.GpsDataBits == 1 ? 8 : FIELD_UNCHANGED;
  switch (Settings.GpsParity) {
    case 0: line.Parity = LINE_PARITY_NONE; break;
    case 1: line.Parity = LINE_PARITY_EVEN; break;
    case 2: line.Parity = LINE_PARITY_ODD; break;
    default: line.Parity = FIELD_UNCHANGED; break;
  }
  switch (Settings.GpsStopBits) {
    case 0: line.StopBits = LINE_STOP_ONE; break;
    case 1: line.StopBits = LINE_STOP_TWO; break;
    default: line.StopBits = FIELD_UNCHANGED; break;
  }
  line.Binary = FIELD_UNCHANGED;
  line.OutxCtsFlow = 0;
  line.OutxDsrFlow = 0;
  line.DtrControl = FIELD_UNCHANGED;
  line.RtsControl = FIELD_UNCHANGED;
  line.OutX = 1;
  line.InX = 1;
  return line;
}

PortTimeouts GpsPortTimeouts() {
  PortTimeouts timeouts;
  timeouts.ReadIntervalTimeout = 10;
  timeouts.ReadTotalTimeoutMultiplier = 0;
  timeouts.ReadTotalTimeoutConstant = 10;
  timeouts.WriteTotalTimeoutMultiplier = 10;
  timeouts.WriteTotalTimeoutConstant = 10;
  return timeouts;
}

int OpenWithFourTries(int (*openPort)(int lastTry), void (*delay)(int ms)) {
  if (!openPort) return 0;
  for (int attempt = 1; attempt <= 4; ++attempt) {
    if (openPort(attempt == 4 ? 1 : 0) == 1) return 1;
    if (attempt < 4 && delay) delay(10);
  }
  return 0;
}
