#include "core/dialog_image.h"

#include "core/numeric.h"
#include "core/text.h"

DialogControl* ControlOf(DialogImage& image, int id) {
  for (int i = 0; i < image.Count; ++i)
    if (image.Controls[i].Id == id) return &image.Controls[i];
  if (image.Count >= DIALOG_IMAGE_SLOTS) return nullptr;
  DialogControl& made = image.Controls[image.Count++];
  made = DialogControl();
  made.Id = id;
  return &made;
}

const DialogControl* FindControl(const DialogImage& image, int id) {
  for (int i = 0; i < image.Count; ++i)
    if (image.Controls[i].Id == id) return &image.Controls[i];
  return nullptr;
}

void PutText(DialogImage& image, int id, const char* text) {
  DialogControl* c = ControlOf(image, id);
  if (!c) return;
  c->Kind = CONTROL_TEXT;
  FormatNarrow(c->Text, DIALOG_TEXT_CHARS, "%s", text);
}

void PutNumber(DialogImage& image, int id, const char* format, double value) {
  char text[DIALOG_TEXT_CHARS];
  FormatNarrow(text, sizeof text, format, value);
  PutText(image, id, text);
}

void PutInteger(DialogImage& image, int id, const char* format, int value) {
  char text[DIALOG_TEXT_CHARS];
  FormatNarrow(text, sizeof text, format, value);
  PutText(image, id, text);
}

void PutCombo(DialogImage& image, int id, const char* const* items, int count, int selected) {
  DialogControl* c = ControlOf(image, id);
  if (!c) return;
  if (c->Kind != CONTROL_COMBO || c->Items != items || c->ItemCount != count) c->ListChanged = 1;
  c->Kind = CONTROL_COMBO;
  c->Items = items;
  c->ItemCount = count;
  c->Selected = (selected >= 0 && selected < count) ? selected : -1;
}

void PutCheck(DialogImage& image, int id, int checked) {
  DialogControl* c = ControlOf(image, id);
  if (!c) return;
  c->Kind = CONTROL_CHECK;
  c->Selected = checked ? 1 : 0;
}

void PutRadio(DialogImage& image, int firstId, int count, int selected) {
  DialogControl* c = ControlOf(image, firstId);
  if (!c) return;
  c->Kind = CONTROL_RADIO;
  c->RadioCount = count;
  c->Selected = (selected >= 0 && selected < count) ? selected : -1;
}

void PutEnabled(DialogImage& image, int id, int enabled) {
  DialogControl* c = ControlOf(image, id);
  if (!c) return;
  c->Enabled = enabled ? 1 : 0;
}

void PutShown(DialogImage& image, int id, int shown) {
  DialogControl* c = ControlOf(image, id);
  if (!c) return;
  c->Shown = shown ? 1 : 0;
}

namespace {

const DialogControl* Present(const DialogImage& image, int id) {
  const DialogControl* c = FindControl(image, id);
  return (c && c->Present) ? c : nullptr;
}

}  // namespace

int TakeNumber(const DialogImage& image, int id, double& out) {
  const DialogControl* c = Present(image, id);
  if (!c || c->Kind != CONTROL_TEXT) return 0;
  out = AsciiToDouble(c->Text);
  return 1;
}

int TakeInteger(const DialogImage& image, int id, int& out) {
  double value = 0.0;
  if (!TakeNumber(image, id, value)) return 0;
  out = TruncToInt(value);
  return 1;
}

int TakeText(const DialogImage& image, int id, char* out, int capacity) {
  const DialogControl* c = Present(image, id);
  if (!c || c->Kind != CONTROL_TEXT) return 0;
  FormatNarrow(out, capacity, "%s", c->Text);
  return 1;
}

int TakeChoice(const DialogImage& image, int id, int& out) {
  const DialogControl* c = Present(image, id);
  if (!c || c->Selected < 0) return 0;
  if (c->Kind != CONTROL_COMBO && c->Kind != CONTROL_CHECK && c->Kind != CONTROL_RADIO) return 0;
  out = c->Selected;
  return 1;
}

int ChoiceOf(const DialogImage& image, int id) {
  int choice = -1;
  TakeChoice(image, id, choice);
  return choice;
}

void AddSetupNote(SetupNotes& notes, const char* title, const char* text, const char* sound) {
  if (notes.Count >= SETUP_NOTE_SLOTS) return;
  FormatNarrow(notes.Title[notes.Count], SETUP_NOTE_TITLE_CHARS, "%s", title);
  FormatNarrow(notes.Text[notes.Count], SETUP_NOTE_TEXT_CHARS, "%s", text);
  notes.Sound[notes.Count] = sound;
  ++notes.Count;
}
