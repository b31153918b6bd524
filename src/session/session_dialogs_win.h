// The logging screen's own dialogs: a new survey line, a new station and a
// comment. Each is modal, centred on its owner, and returns 1 on OK, 0 on
// Cancel; on OK it has done its work (the new line dialog leaves the line
// header records to its caller).
#pragma once
#include <windows.h>

int RunNewLineDialog(HWND owner);      // GETNEWLINE, "New Survey Line"
int RunNewStationDialog(HWND owner);   // NEWSTATION, "New Station"
int RunCommentDialog(HWND owner);      // COMMENT, "Enter Comment"

// One modal dialog with OK and Cancel: `open` fills it (after it is centred
// on its owner), `accept` takes its fields on OK. Returns 1 on OK, else 0.
struct OkCancelDialog {
  const wchar_t* Template;
  void (*Open)(HWND dialog);
  void (*Accept)(HWND dialog);
  // Other commands of the dialog's controls (a list that enables fields); nullptr for none.
  void (*Command)(HWND dialog, int id, int code) = nullptr;
};
int RunOkCancelDialog(HWND owner, const OkCancelDialog& form);

// Places a dialog in the middle of its owner (of the screen when it has none).
void CentreDialogOnOwner(HWND dialog);

// Gives the keyboard back to the owner once a dialog has closed, so that the
// operator's next key is the screen's and not lost on the way.
void ReturnFocus(HWND owner);

// Dialog fields as the screen shows numbers: 8-bit print, widened.
void SetDialogNumber(HWND dialog, int id, const char* format, double value);
// A field's text as a number; text that is no number reads as 0.
double DialogNumber(HWND dialog, int id);

struct ReadingOutcome;
// CONFIRMSTATION, "Confirm and Save Readings": the readings of a Manual
// station; 1 "Accept and Move to the Next Station", 0 "Cancel and Repeat All
// Readings at this Station".
int RunStationConfirmDialog(HWND owner, const ReadingOutcome& station);
