// The two serial ports of a session, the instrument's and the GPS receiver's:
// their device names and the line and time-out values each is opened with.
// The Win32 layer lays these values over what the driver reports.
#pragma once
#include <cstdint>

// Device name of a port from the zero-based setting (0 is COM1). Ports below
// COM10 take the short name, the others the device-path form.
constexpr int PORT_NAME_CHARS = 20;
void SerialPortName(int portIndex, wchar_t* name, int capacity);

// A line field left as the driver had it.
constexpr int FIELD_UNCHANGED = -1;

// The driver's codes for parity and stop bits.
constexpr int LINE_PARITY_NONE = 0;
constexpr int LINE_PARITY_ODD = 1;
constexpr int LINE_PARITY_EVEN = 2;
constexpr int LINE_STOP_ONE = 0;
constexpr int LINE_STOP_TWO = 2;
constexpr int LINE_CONTROL_ENABLE = 1;   // DTR and RTS held on

// The fields of the port's line settings that a session changes.
struct PortLineSettings {
  int BaudRate;
  int ByteSize;
  int Parity;
  int StopBits;
  int Binary;          // fBinary
  int OutxCtsFlow;
  int OutxDsrFlow;
  int DtrControl;
  int RtsControl;
  int OutX;            // XON/XOFF on transmit
  int InX;             // XON/XOFF on receive
};

// Read and write time-outs in milliseconds; a read waits at most this long.
struct PortTimeouts {
  uint32_t ReadIntervalTimeout;
  uint32_t ReadTotalTimeoutMultiplier;
  uint32_t ReadTotalTimeoutConstant;
  uint32_t WriteTotalTimeoutMultiplier;
  uint32_t WriteTotalTimeoutConstant;
};

// The instrument port: 9600 baud, or 19200 with `Link.InstrumentHighBaud` 1.
PortLineSettings InstrumentLineSettings();
PortTimeouts InstrumentPortTimeouts();

// The GPS port from the codes of the "GPS Port Setup" dialog.
PortLineSettings GpsLineSettings();
PortTimeouts GpsPortTimeouts();

// Baud rate of a GPS baud code 0 to 5; FIELD_UNCHANGED for any other code.
int GpsBaudRateOf(int code);

// Up to four attempts at opening a port; only the last one may report its
// failure, so the operator sees a single message. `delay` runs between tries.
// Returns 1 as soon as one attempt succeeds, 0 when all four failed.
int OpenWithFourTries(int (*openPort)(int lastTry), void (*delay)(int ms));
