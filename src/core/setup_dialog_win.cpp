#include "core/setup_dialog_win.h"

#include <mmsystem.h>

#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/settings.h"
#include "core/text.h"
#include "session/session_dialogs_win.h"

namespace {

// The one setup dialog open at a time (they are modal and open none of their kind).
struct OpenSetupDialogRecord {
  const SetupDialogForm* Form = nullptr;
  DialogImage Image;
  int Applying = 0;            // the dialog's own changes are no operator's
  int DrawnId = 0;             // the owner-drawn control, once it has been drawn
};
OpenSetupDialogRecord OpenDialog;

void SetTextIfChanged(HWND control, const char* text) {
  wchar_t now[DIALOG_TEXT_CHARS] = {};
  GetWindowTextW(control, now, DIALOG_TEXT_CHARS);
  wchar_t wanted[DIALOG_TEXT_CHARS];
  WidenText(text, wanted, DIALOG_TEXT_CHARS);
  if (lstrcmpW(now, wanted) != 0) SetWindowTextW(control, wanted);
}

void SetState(HWND control, const DialogControl& c) {
  EnableWindow(control, c.Enabled ? TRUE : FALSE);
  ShowWindow(control, c.Shown ? SW_SHOW : SW_HIDE);
}

// Calls `visit` with each control of the image that the template has; the
// others are marked absent.
template <typename Visit> void EachControl(HWND dialog, DialogImage& image, Visit visit) {
  for (int i = 0; i < image.Count; ++i) {
    DialogControl& c = image.Controls[i];
    HWND control = GetDlgItem(dialog, c.Id);
    c.Present = control != nullptr;
    if (control) visit(c, control);
  }
}

void ApplyImage(HWND dialog, DialogImage& image) {
  OpenDialog.Applying = 1;
  EachControl(dialog, image, [dialog](DialogControl& c, HWND control) {
    switch (c.Kind) {
      case CONTROL_TEXT: SetTextIfChanged(control, c.Text); break;
      case CONTROL_COMBO:
        if (c.ListChanged) {
          SendMessageW(control, CB_RESETCONTENT, 0, 0);
          for (int k = 0; k < c.ItemCount; ++k) {
            wchar_t item[DIALOG_TEXT_CHARS];
            WidenText(c.Items[k], item, DIALOG_TEXT_CHARS);
            SendMessageW(control, CB_ADDSTRING, 0, (LPARAM)item);
          }
          c.ListChanged = 0;
        }
        SendMessageW(control, CB_SETCURSEL, (WPARAM)c.Selected, 0);
        break;
      case CONTROL_CHECK: SendMessageW(control, BM_SETCHECK, c.Selected == 1 ? BST_CHECKED : BST_UNCHECKED, 0); break;
      case CONTROL_RADIO:
        for (int k = 0; k < c.RadioCount; ++k) {
          HWND radio = GetDlgItem(dialog, c.Id + k);
          if (!radio) continue;
          SendMessageW(radio, BM_SETCHECK, k == c.Selected ? BST_CHECKED : BST_UNCHECKED, 0);
          SetState(radio, c);
        }
        break;
      case CONTROL_STATE: break;
    }
    if (c.Kind != CONTROL_RADIO) SetState(control, c);
  });
  OpenDialog.Applying = 0;
}

void ReadImage(HWND dialog, DialogImage& image) {
  EachControl(dialog, image, [dialog](DialogControl& c, HWND control) {
    switch (c.Kind) {
      case CONTROL_TEXT: {
        wchar_t text[DIALOG_TEXT_CHARS] = {};
        GetWindowTextW(control, text, DIALOG_TEXT_CHARS);
        NarrowText(text, c.Text, DIALOG_TEXT_CHARS);
        break;
      }
      case CONTROL_COMBO: {
        const LRESULT chosen = SendMessageW(control, CB_GETCURSEL, 0, 0);
        c.Selected = chosen == CB_ERR ? -1 : (int)chosen;
        break;
      }
      case CONTROL_CHECK: c.Selected = SendMessageW(control, BM_GETCHECK, 0, 0) == BST_CHECKED ? 1 : 0; break;
      case CONTROL_RADIO:
        c.Selected = -1;
        for (int k = 0; k < c.RadioCount; ++k)
          if (IsDlgButtonChecked(dialog, c.Id + k) == BST_CHECKED) c.Selected = k;
        break;
      case CONTROL_STATE: break;
    }
  });
}

// The id the logic knows a control by: a radio by its group's first id.
int ImageIdOf(const DialogImage& image, int id) {
  for (int i = 0; i < image.Count; ++i) {
    const DialogControl& c = image.Controls[i];
    if (c.Kind == CONTROL_RADIO && id >= c.Id && id < c.Id + c.RadioCount) return c.Id;
  }
  return id;
}

// Half the owner's width and a tenth of its height.
void PlaceOnOwner(HWND dialog) {
  HWND owner = GetWindow(dialog, GW_OWNER);
  RECT area;
  if (!owner || !GetWindowRect(owner, &area)) SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
  RECT box;
  GetWindowRect(dialog, &box);
  int x = area.left + ((area.right - area.left) - (box.right - box.left)) / 2;
  int y = area.top + (area.bottom - area.top) / 10;
  if (x < 0) x = 0;
  if (y < 0) y = 0;
  SetWindowPos(dialog, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// The owner-drawn control shows the fields: it is drawn again after a change.
void RedrawOwnerDrawn(HWND dialog) {
  if (OpenDialog.DrawnId) InvalidateRect(GetDlgItem(dialog, OpenDialog.DrawnId), nullptr, FALSE);
}

bool IsFieldChange(int code) { return code == CBN_SELCHANGE || code == BN_CLICKED || code == EN_CHANGE; }

void FieldChanged(HWND dialog, int id) {
  const SetupDialogForm& form = *OpenDialog.Form;
  DialogImage& image = OpenDialog.Image;
  ReadImage(dialog, image);
  SetupNotes notes;
  if (form.Changed) form.Changed(image, ImageIdOf(image, id), notes);
  ApplyImage(dialog, image);
  ShowSetupNotes(dialog, notes);
  RedrawOwnerDrawn(dialog);
}

INT_PTR CALLBACK SetupDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  const SetupDialogForm* form = OpenDialog.Form;
  switch (message) {
    case WM_INITDIALOG:
      OpenDialog.Image = DialogImage();
      OpenDialog.DrawnId = 0;
      form->Open(OpenDialog.Image);
      ApplyImage(dialog, OpenDialog.Image);
      PlaceOnOwner(dialog);
      return TRUE;
    case WM_DRAWITEM:
      if (!form->Draw) return FALSE;
      OpenDialog.DrawnId = (int)reinterpret_cast<const DRAWITEMSTRUCT*>(lParam)->CtlID;
      form->Draw(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam), OpenDialog.Image);
      return TRUE;
    case WM_COMMAND: {
      const int id = LOWORD(wParam), code = HIWORD(wParam);
      if (id == IDOK) {
        ReadImage(dialog, OpenDialog.Image);
        SetupNotes notes;
        form->Accept(OpenDialog.Image, notes);
        ShowSetupNotes(dialog, notes);
        if (form->SaveOnOk) LoadSettings(SETTINGS_SAVE);
        EndDialog(dialog, 1);
        return TRUE;
      }
      if (id == IDCANCEL) {
        if (form->Cancel) form->Cancel();
        EndDialog(dialog, 0);
        return TRUE;
      }
      if (OpenDialog.Applying) return FALSE;
      if (form->Button && code == BN_CLICKED && form->Button(dialog, id)) {
        RedrawOwnerDrawn(dialog);
        return TRUE;
      }
      if (IsFieldChange(code)) FieldChanged(dialog, id);
      return FALSE;
    }
    default:
      return FALSE;
  }
}

}  // namespace

void ShowSetupNotes(HWND owner, const SetupNotes& notes) {
  for (int i = 0; i < notes.Count; ++i) {
    if (notes.Sound[i]) {
      wchar_t sound[32];
      WidenText(notes.Sound[i], sound, 32);
      PlaySoundW(sound, Windows.Instance, SND_RESOURCE | SND_ASYNC | SND_NOSTOP);
    }
    wchar_t title[SETUP_NOTE_TITLE_CHARS];
    wchar_t text[SETUP_NOTE_TEXT_CHARS];
    WidenText(notes.Title[i], title, SETUP_NOTE_TITLE_CHARS);
    WidenText(notes.Text[i], text, SETUP_NOTE_TEXT_CHARS);
    ShowMessage(owner, L"MESSAGEOK", title, text);
  }
}

int RunSetupDialog(HWND owner, const SetupDialogForm& form) {
  OpenDialog.Form = &form;
  const INT_PTR result = DialogBoxParamW(Windows.Instance, form.Template, owner, SetupDialogProc, 0);
  OpenDialog.Form = nullptr;
  ReturnFocus(owner);
  return result == 1 ? 1 : 0;
}
