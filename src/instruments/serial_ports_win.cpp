// The serial ports on Windows: CreateFileW, the driver's line settings with
// only the named fields changed, the time-outs that pace the readers.
#include "instruments/serial_ports_win.h"

#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/text.h"
#include "instruments/em61_readers_win.h"
#include "instruments/serial_ports.h"

namespace {

// A failure met on a reader thread has no owner window.
HWND MessageOwner() {
  if (Windows.Frame && GetWindowThreadProcessId(Windows.Frame, nullptr) == GetCurrentThreadId())
    return Windows.Frame;
  return nullptr;
}

void ShowPortFailure(const char* format, int portIndex) {
  char text[64];
  FormatNarrow(text, sizeof text, format, portIndex + 1);
  wchar_t wide[64];
  WidenText(text, wide, 64);
  ShowMessage(MessageOwner(), L"MESSAGEOK", L"Serial Port", wide);
}

void Apply(int value, DWORD& field) {
  if (value != FIELD_UNCHANGED) field = (DWORD)value;
}
void Apply(int value, BYTE& field) {
  if (value != FIELD_UNCHANGED) field = (BYTE)value;
}

// Lays the settings over what the driver reported; bit fields are set one by one.
void ApplyLineSettings(DCB& dcb, const PortLineSettings& line) {
  Apply(line.BaudRate, dcb.BaudRate);
  Apply(line.ByteSize, dcb.ByteSize);
  Apply(line.Parity, dcb.Parity);
  Apply(line.StopBits, dcb.StopBits);
  if (line.Binary != FIELD_UNCHANGED) dcb.fBinary = line.Binary ? 1 : 0;
  if (line.OutxCtsFlow != FIELD_UNCHANGED) dcb.fOutxCtsFlow = line.OutxCtsFlow ? 1 : 0;
  if (line.OutxDsrFlow != FIELD_UNCHANGED) dcb.fOutxDsrFlow = line.OutxDsrFlow ? 1 : 0;
  if (line.DtrControl != FIELD_UNCHANGED) dcb.fDtrControl = (DWORD)line.DtrControl;
  if (line.RtsControl != FIELD_UNCHANGED) dcb.fRtsControl = (DWORD)line.RtsControl;
  if (line.OutX != FIELD_UNCHANGED) dcb.fOutX = line.OutX ? 1 : 0;
  if (line.InX != FIELD_UNCHANGED) dcb.fInX = line.InX ? 1 : 0;
}

// Opens a port for reading and writing, no sharing, no overlapped I/O, and
// sets it up; the results of the setting calls are not looked at.
HANDLE OpenPort(int portIndex, const PortLineSettings& line, const PortTimeouts& timeouts) {
  wchar_t name[PORT_NAME_CHARS];
  SerialPortName(portIndex, name, PORT_NAME_CHARS);
  HANDLE port = CreateFileW(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  if (port == INVALID_HANDLE_VALUE) return INVALID_HANDLE_VALUE;
  DCB dcb;
  ZeroMemory(&dcb, sizeof dcb);
  dcb.DCBlength = sizeof dcb;
  GetCommState(port, &dcb);
  ApplyLineSettings(dcb, line);
  SetCommState(port, &dcb);
  COMMTIMEOUTS commTimeouts;
  commTimeouts.ReadIntervalTimeout = timeouts.ReadIntervalTimeout;
  commTimeouts.ReadTotalTimeoutMultiplier = timeouts.ReadTotalTimeoutMultiplier;
  commTimeouts.ReadTotalTimeoutConstant = timeouts.ReadTotalTimeoutConstant;
  commTimeouts.WriteTotalTimeoutMultiplier = timeouts.WriteTotalTimeoutMultiplier;
  commTimeouts.WriteTotalTimeoutConstant = timeouts.WriteTotalTimeoutConstant;
  SetCommTimeouts(port, &commTimeouts);
  return port;
}

void DelayBetweenTries(int ms) { DelayMs((DWORD)ms); }

void CloseThreadHandle(HandleWord& thread) {
  if (thread != NO_HANDLE && thread != 0) CloseHandle((HANDLE)thread);
  thread = NO_HANDLE;
}

}  // namespace

int OpenInstrumentPort(int lastTry) {
  HANDLE port = OpenPort(Settings.InstrumentPort, InstrumentLineSettings(), InstrumentPortTimeouts());
  if (port == INVALID_HANDLE_VALUE) {
    Link.InstrumentHandle = NO_HANDLE;
    if (lastTry == 1) ShowPortFailure("Cannot open COM%d ", Settings.InstrumentPort);
    return 0;
  }
  Link.InstrumentHandle = (HandleWord)port;
  return 1;
}

int OpenGpsPort() {
  HANDLE port = OpenPort(Settings.GpsPort, GpsLineSettings(), GpsPortTimeouts());
  if (port == INVALID_HANDLE_VALUE) {
    GpsLink.GpsHandle = NO_HANDLE;
    ShowPortFailure("Cannot open COM%d for GPS", Settings.GpsPort);
    return 0;
  }
  GpsLink.GpsHandle = (HandleWord)port;
  return 1;
}

void PurgeBoth(HandleWord handle) {
  if (handle == NO_HANDLE) return;
  PurgeComm((HANDLE)handle, PURGE_TXCLEAR);
  PurgeComm((HANDLE)handle, PURGE_RXCLEAR);
}

int OpenInstrumentPortWithTries() {
  if (OpenWithFourTries(OpenInstrumentPort, DelayBetweenTries) != 1) return 0;
  Link.InstrumentPortState = 1;
  return 1;
}

int OpenInstrumentLinkForSession() {
  const int state = Link.InstrumentPortState;
  if (state == 1 || state == 2) {
    PurgeBoth(Link.InstrumentHandle);
    CloseInstrumentPort();
    // The old reader sees -1 and returns by itself; it is not waited for.
    if (state == 2) CloseThreadHandle(Link.InstrumentThread);
  }
  return OpenInstrumentPortWithTries();
}

void CloseInstrumentPort() {
  const HandleWord port = Link.InstrumentHandle;
  Link.InstrumentHandle = NO_HANDLE;
  if (port != NO_HANDLE) CloseHandle((HANDLE)port);
}

void CloseGpsPort() {
  const HandleWord port = GpsLink.GpsHandle;
  GpsLink.GpsHandle = NO_HANDLE;
  if (port != NO_HANDLE) CloseHandle((HANDLE)port);
}

void StopGpsLink() {
  GpsLink.GpsThreadRun = 0;
  CloseGpsPort();
  CloseThreadHandle(GpsLink.GpsThread);
  GpsLink.GpsPortState = 0;
}

void StopInstrumentLink() {
  CloseInstrumentPort();
  if (Link.Em61FastLink == 1 && Link.PollEvent != NO_HANDLE) SetEvent((HANDLE)Link.PollEvent);
  // A suspended wheel reader must run to see the closed port and return.
  ResumeFully(Link.SecondReaderThread);
  CloseThreadHandle(Link.SecondReaderThread);
  CloseThreadHandle(Link.InstrumentThread);
  Link.InstrumentPortState = 0;
}

void StopLinks() {
  StopGpsLink();
  StopInstrumentLink();
}
