// Carries out the session timer's decision about the instrument link on the
// logging screen and in the data file.
#include "instruments/link_supervision_win.h"

#include <mmsystem.h>

#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/state.h"
#include "core/text.h"
#include "core/ticks.h"
#include "datafile/records.h"
#include "instruments/instrument_reader_win.h"
#include "instruments/link_supervision.h"
#include "instruments/serial_ports_win.h"

LinkPanelsRecord LinkPanels;

namespace {

constexpr DWORD RING_FLAGS = SND_RESOURCE | SND_ASYNC | SND_NOSTOP;   // 0x40015

void RecordLinkBreak() {
  if (LinkSupervision.EndSwath) LinkSupervision.EndSwath();
  char text[16];
  LinkBreakText(text, sizeof text);
  wchar_t wide[16];
  WidenText(text, wide, 16);
  WriteMarkerRecord(wide, 'X');
}

void SendPoll() {
  const HandleWord port = Link.InstrumentHandle;
  if (port != NO_HANDLE) TransmitCommChar((HANDLE)port, POLL_CHARACTER);
  if (Link.PollEvent != NO_HANDLE) SetEvent((HANDLE)Link.PollEvent);
  Link.PollAnswered = 0;
  Link.LastByteTick = TickNow();
}

void DrawPanel(int panel) {
  const RECT& r = panel == PANEL_NUMBERS ? LinkPanels.NumbersPanel : LinkPanels.OuterInstrumentPanel;
  DrawLostConnection(r.left, r.top, r.right);
}

void FrameMapWindow() {
  HWND map = LinkPanels.MapWnd;
  if (!map) return;
  RECT client;
  GetClientRect(map, &client);
  HDC dc = GetDC(map);
  if (dc) {
    HGDIOBJ oldBrush = SelectObject(dc, GetStockObject(NULL_BRUSH));
    Rectangle(dc, client.left, client.top, client.right - 1, client.bottom - 1);
    SelectObject(dc, oldBrush);
    ReleaseDC(map, dc);
  }
  InvalidateRect(map, nullptr, FALSE);
}

int LineHeight(HDC dc) {
  TEXTMETRICW metrics;
  if (!GetTextMetricsW(dc, &metrics)) return 16;
  return metrics.tmHeight;
}

void CloseReaderThreadHandle() {
  const HandleWord thread = Link.InstrumentThread;
  Link.InstrumentThread = NO_HANDLE;
  if (thread != NO_HANDLE && thread != 0) CloseHandle((HANDLE)thread);
}

void ShowConnecting() {
  if (!Windows.ScreenLog) return;
  HDC dc = GetDC(Windows.ScreenLog);
  if (!dc) return;
  const RECT& panel = LinkPanels.OuterInstrumentPanel;
  HGDIOBJ oldFont = SelectObject(dc, Fonts.FontTextBold ? (HGDIOBJ)Fonts.FontTextBold
                                                         : GetStockObject(SYSTEM_FONT));
  const wchar_t* text = L"Connecting... Please wait";
  SIZE size = MeasureText(dc, text);
  RECT back = {panel.left, panel.top, panel.left + size.cx, panel.top + size.cy};
  FillRect(dc, &back, (HBRUSH)GetStockObject(WHITE_BRUSH));
  const int oldMode = SetBkMode(dc, TRANSPARENT);
  DrawTextAt(dc, panel.left, panel.top, text);
  SetBkMode(dc, oldMode);
  SelectObject(dc, oldFont);
  ReleaseDC(Windows.ScreenLog, dc);
}

// The link goes back up as at the start of a session, without the wait for a frame.
void Reconnect() {
  OpenInstrumentPortWithTries();
  DelayMs(10);
  Link.LastReadingTick = TickNow();
  StartInstrumentReader();
  if (LinkSupervision.ClearStripFlags) LinkSupervision.ClearStripFlags();
  SetTimer(Windows.ScreenLog, SESSION_TIMER_ID, SESSION_TIMER_MS, nullptr);
  InvalidateRect(Windows.ScreenLog, nullptr, TRUE);
}

}  // namespace

void OnSessionTimer() {
  const SupervisionDecision d = DecideSessionTick(TickNow());
  if (d.SendPoll) SendPoll();
  if (d.RecordBreak) RecordLinkBreak();
  if (d.SetLinkBrokenLogged) Link.LinkBrokenLogged = 1;
  if (d.Panel != PANEL_NONE) DrawPanel(d.Panel);
  if (d.SetLinkLostShown) Link.LinkLostShown = 1;
  if (d.Alarm) PlaySoundW(L"SOUND_RING", Windows.Instance, RING_FLAGS);
  if (d.BatterySave) BatterySaveMode();
}

void DrawLostConnection(int left, int top, int right) {
  if (!Windows.ScreenLog) return;
  HDC dc = GetDC(Windows.ScreenLog);
  if (!dc) return;
  HGDIOBJ oldFont = SelectObject(dc, Fonts.FontTextBold ? (HGDIOBJ)Fonts.FontTextBold
                                                         : GetStockObject(SYSTEM_FONT));
  const int line = LineHeight(dc);
  RECT back = {left, top, right, top + 5 + 3 * line + 5};
  HBRUSH brush = LinkPanels.PanelBrush ? LinkPanels.PanelBrush : (HBRUSH)GetStockObject(WHITE_BRUSH);
  FillRect(dc, &back, brush);
  LinkPanels.Drawn = back;
  const int oldMode = SetBkMode(dc, TRANSPARENT);
  const int middle = (left + right) / 2;
  DrawTextAt(dc, middle, top + 5, L"Lost", TA_CENTER | TA_TOP);
  DrawTextAt(dc, middle, top + 5 + line, L"Connection,", TA_CENTER | TA_TOP);
  DrawTextAt(dc, middle, top + 5 + 2 * line, L"trying", TA_CENTER | TA_TOP);
  SetBkMode(dc, oldMode);
  SelectObject(dc, oldFont);
  ReleaseDC(Windows.ScreenLog, dc);
  FrameMapWindow();
  SetFocus(Windows.ScreenLog);
}

void BatterySaveMode() {
  GpsLink.GpsLogEnable = 0;
  KillTimer(Windows.ScreenLog, SESSION_TIMER_ID);
  CloseInstrumentPort();
  CloseReaderThreadHandle();
  Link.InstrumentPortState = 0;

  Session.ProcessingEnabled = 0;
  const INT_PTR yes = ShowMessage(Windows.Frame, L"MESSAGEYESNO", L"EM34-3 Battery Save Mode",
                                  L"After the instrument is ON\r\n"
                                  L"press YES to connect.\r\n"
                                  L"press NO to exit Logging Mode.");
  Session.ProcessingEnabled = 1;
  if (yes != 1) {
    KillTimer(Windows.ScreenLog, SESSION_TIMER_ID);
    if (Session.SessionState == SESSION_LOGGING) WriteMarkerRecord(L"$CONN END", 'X');
    Session.SessionState =
        DataFileState.DataFile != NO_HANDLE ? SESSION_STANDBY : SESSION_MONITORING;
    return;
  }
  GpsLink.GpsLogEnable = 1;
  ShowConnecting();
  DelayMs(500);
  Reconnect();
}
