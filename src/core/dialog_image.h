// What a dialog shows and what the operator left in it, as plain data: the
// texts of its edits and labels, the lists and choices of its combo boxes, the
// state of its boxes and radio groups, which controls are enabled and shown.
// The setup dialogs build an image when they open and whenever a choice changes
// what else they show, and take their values from the image read back on OK;
// the Win32 side only copies images to and from the controls.
#pragma once

constexpr int DIALOG_TEXT_CHARS = 128;
constexpr int DIALOG_IMAGE_SLOTS = 48;

enum DialogControlKind {
  CONTROL_STATE,   // only enabled and shown are set (a button, a picture)
  CONTROL_TEXT,    // an edit or a label: Text
  CONTROL_COMBO,   // a drop-down list: Items, Selected (-1 nothing chosen)
  CONTROL_CHECK,   // a check box: Selected 0 or 1
  CONTROL_RADIO,   // a group of RadioCount radios from Id on: Selected the index checked, -1 none
};

struct DialogControl {
  int Id = 0;
  DialogControlKind Kind = CONTROL_STATE;
  char Text[DIALOG_TEXT_CHARS] = {};
  const char* const* Items = nullptr;
  int ItemCount = 0;
  int Selected = -1;
  int RadioCount = 0;
  int Enabled = 1;
  int Shown = 1;
  int ListChanged = 1;  // the combo's list must be filled again
  int Present = 1;      // read back: the dialog's template has the control
};

struct DialogImage {
  int Count = 0;
  DialogControl Controls[DIALOG_IMAGE_SLOTS];
};

// The control of an id, made when missing (null when the image is full).
DialogControl* ControlOf(DialogImage& image, int id);
// The control of an id, null when the image has none.
const DialogControl* FindControl(const DialogImage& image, int id);

void PutText(DialogImage& image, int id, const char* text);
// A number as the dialogs print it ("%.2f", "%.3f", "%d" of a truncated value...).
void PutNumber(DialogImage& image, int id, const char* format, double value);
void PutInteger(DialogImage& image, int id, const char* format, int value);
// A list and its choice; an index outside the list leaves nothing chosen.
void PutCombo(DialogImage& image, int id, const char* const* items, int count, int selected);
void PutCheck(DialogImage& image, int id, int checked);
void PutRadio(DialogImage& image, int firstId, int count, int selected);
void PutEnabled(DialogImage& image, int id, int enabled);
void PutShown(DialogImage& image, int id, int shown);

// Values read back. A control the template lacks, or the image lacks, is
// absent: the functions return 0 and leave `out` as it is, so that a setting
// the dialog does not hold keeps its value.
int TakeNumber(const DialogImage& image, int id, double& out);   // text that is no number reads as 0
int TakeInteger(const DialogImage& image, int id, int& out);     // truncated
int TakeText(const DialogImage& image, int id, char* out, int capacity);
// Combo, check box or radio group: an empty selection is absent too.
int TakeChoice(const DialogImage& image, int id, int& out);
// The choice, or -1 when there is none.
int ChoiceOf(const DialogImage& image, int id);

constexpr int SETUP_NOTE_TITLE_CHARS = 64;
constexpr int SETUP_NOTE_TEXT_CHARS = 256;
constexpr int SETUP_NOTE_SLOTS = 2;

// Messages a dialog's OK leaves for the operator, in order.
struct SetupNotes {
  int Count = 0;
  char Title[SETUP_NOTE_SLOTS][SETUP_NOTE_TITLE_CHARS] = {};
  char Text[SETUP_NOTE_SLOTS][SETUP_NOTE_TEXT_CHARS] = {};
  const char* Sound[SETUP_NOTE_SLOTS] = {};   // a sound resource rung before the message, or null
};
void AddSetupNote(SetupNotes& notes, const char* title, const char* text, const char* sound = nullptr);
