// One modal procedure for every setup dialog: it copies the logic's dialog
// image into the controls, reads it back whenever a field changes and on OK,
// and shows the messages the logic leaves. The dialogs stand at half the
// width and a tenth of the height of their owner; "&Cancel" makes C a key for
// Cancel wherever the focus is not in a text field.
#pragma once
#include <windows.h>

#include "core/dialog_image.h"

struct SetupDialogForm {
  const wchar_t* Template;
  void (*Open)(DialogImage& image);
  // A choice or text changed (radio groups by their first id); may be null.
  void (*Changed)(DialogImage& image, int id, SetupNotes& notes);
  void (*Accept)(const DialogImage& image, SetupNotes& notes);
  void (*Cancel)();                                   // may be null
  int SaveOnOk;                                       // LoadSettings(1) after OK
  // A push button of the dialog's own (a colour): returns 1 when `id` was
  // one; may be null.
  int (*Button)(HWND dialog, int id);
  // An owner-drawn control (the map preview); may be null.
  void (*Draw)(const DRAWITEMSTRUCT& item, const DialogImage& image);
};

// 1 after OK, 0 after Cancel.
int RunSetupDialog(HWND owner, const SetupDialogForm& form);

// Shows a dialog's messages, each after its sound, over `owner`.
void ShowSetupNotes(HWND owner, const SetupNotes& notes);
