// "Map Size" and "Map Display Options": the dialogs, the colour buttons, the
// map preview, and what a session does after OK.
#include "core/main_menu_dialogs.h"
#include "core/platform_win.h"
#include "core/settings.h"
#include "core/setup_dialog_ids.h"
#include "core/setup_dialog_win.h"
#include "core/setup_forms_win.h"
#include "core/state.h"
#include "map/map_options.h"

#include <commdlg.h>

namespace {

// The colours the colour dialog offers besides the basic ones, kept for the run.
COLORREF CustomColours[16] = {};
// The preview's shapes, remade at each paint.
MapPreview Preview;

void ScaleChanged(DialogImage& image, int id, SetupNotes&) { MapScaleChanged(image, id); }
void ScaleAccept(const DialogImage& image, SetupNotes&) { AcceptMapScale(image); }
void OpenOutsideSession(DialogImage& image) { OpenDisplayOptions(image, 0); }
void OpenInSession(DialogImage& image) { OpenDisplayOptions(image, 1); }
void OptionsAccept(const DialogImage& image, SetupNotes&) { AcceptDisplayOptions(image); }

// Cancel puts the colours back: the pens are made anew from them.
void OptionsCancel() {
  CancelDisplayOptions();
  CreateMapPens(1);
}

int ColourButton(HWND dialog, int id) {
  if (id != IDC_DISPLAY_CURSOR_COLOR && id != IDC_DISPLAY_POSITION_COLOR) return 0;
  CHOOSECOLORW choice = {};
  choice.lStructSize = sizeof choice;
  choice.hwndOwner = dialog;
  choice.rgbResult = (COLORREF)(id == IDC_DISPLAY_CURSOR_COLOR ? Settings.CursorColor : Settings.PositionColor);
  choice.lpCustColors = CustomColours;
  choice.Flags = CC_RGBINIT | CC_FULLOPEN;
  if (ChooseColorW(&choice)) {
    DisplayOptionsColour(id, (int32_t)choice.rgbResult);
    CreateMapPens(1);
  }
  return 1;
}

HPEN PenOf(PreviewInk ink) {
  switch (ink) {
    case PREVIEW_GRID: return Tools.PenGrey1;
    case PREVIEW_CURSOR: return Tools.PenCursor;
    default: return Tools.PenPosition1;
  }
}

void DrawPreview(const DRAWITEMSTRUCT& item, const DialogImage& image) {
  if ((int)item.CtlID != IDC_DISPLAY_PREVIEW) return;
  HDC dc = item.hDC;
  RECT box = item.rcItem;
  const int saved = SaveDC(dc);
  FillRect(dc, &box, (HBRUSH)GetStockObject(WHITE_BRUSH));
  DrawEdge(dc, &box, EDGE_SUNKEN, BF_RECT);
  IntersectClipRect(dc, box.left + 2, box.top + 2, box.right - 2, box.bottom - 2);
  BuildMapPreviewOfImage(image, box.right - box.left, box.bottom - box.top, Preview);
  for (int i = 0; i < Preview.LineCount; ++i) {
    const PreviewLine& line = Preview.Lines[i];
    SelectObject(dc, PenOf(line.Ink));
    POINT points[2] = {{box.left + line.X1, box.top + line.Y1}, {box.left + line.X2, box.top + line.Y2}};
    Polyline(dc, points, 2);
  }
  for (int i = 0; i < Preview.SquareCount; ++i) {
    const PreviewSquare& square = Preview.Squares[i];
    RECT r = {box.left + square.X, box.top + square.Y, box.left + square.X + square.Side,
              box.top + square.Y + square.Side};
    FillRect(dc, &r, Tools.BrushPosition);
  }
  RestoreDC(dc, saved);
}

// After OK in a session: the size check, the notes, the file, the repaint.
void SettleInSession(HWND owner, int fromMapScale) {
  SetupNotes notes;
  const int mask = SettleMapOptions(fromMapScale, notes);
  ShowSetupNotes(owner, notes);
  LoadSettings(SETTINGS_SAVE);
  ApplyMapRepaint(mask);
}

}  // namespace

int RunMapSizeDialog(HWND owner) {
  static const SetupDialogForm form = {L"MAPSCALE", OpenMapScale, ScaleChanged, ScaleAccept, CancelMapScale, 0,
                                       nullptr, nullptr};
  if (RunSetupDialog(owner, form) != 1) return 0;
  SettleInSession(owner, 1);
  return 1;
}

int RunDisplayOptionsDialog(HWND owner, int inSession) {
  const SetupDialogForm form = {DisplayOptionsTemplate(Screen.ClientWidth), inSession ? OpenInSession : OpenOutsideSession,
                                DisplayOptionsChanged, OptionsAccept, OptionsCancel, 0, ColourButton, DrawPreview};
  if (RunSetupDialog(owner, form) != 1) return 0;
  if (inSession) SettleInSession(owner, 0);
  else LoadSettings(SETTINGS_SAVE);
  return 1;
}
