// The tests' side of the setup dialogs: the program as it starts, the
// operator's typing and choosing in a dialog image, what a field shows, and
// the settings file an OK writes against a first-start file with some lines
// changed by hand.
#pragma once
#include <initializer_list>
#include <string>
#include <utility>

#include "core/dialog_image.h"
#include "core/model_defaults.h"
#include "core/settings.h"
#include "core/settings_store.h"
#include "core/state.h"
#include "core/variant.h"
#include "testing.h"

namespace dialog_testing {

// The program as its frame's create step leaves it before the first load.
inline void Start(int model, int product = MAPPING_PRODUCT) {
  SelectVariant(model, product);
  ResetProgramState();
  ApplyModelDefaults();
  if (IsNavigation()) Settings.MapDisplayMode = 0;
  SampleRateDerived();
}

inline DialogImage Opened(void (*open)(DialogImage&)) {
  DialogImage image;
  open(image);
  return image;
}

// What the operator does: types a text, chooses an entry, or finds a field
// missing from the template.
inline void Type(DialogImage& image, int id, const char* text) { PutText(image, id, text); }
inline void Choose(DialogImage& image, int id, int entry) { ControlOf(image, id)->Selected = entry; }
inline void Lacks(DialogImage& image, int id) { ControlOf(image, id)->Present = 0; }

inline std::string TextOf(const DialogImage& image, int id) {
  const DialogControl* c = FindControl(image, id);
  return c ? std::string(c->Text) : std::string("(none)");
}

// A combo's entries joined by "|", the chosen one in brackets.
inline std::string ListOf(const DialogImage& image, int id) {
  const DialogControl* c = FindControl(image, id);
  if (!c || c->Kind != CONTROL_COMBO) return "(no list)";
  std::string out;
  for (int i = 0; i < c->ItemCount; ++i) {
    if (i) out += "|";
    if (i == c->Selected) out += "[";
    out += c->Items[i];
    if (i == c->Selected) out += "]";
  }
  return out;
}

inline int EnabledOf(const DialogImage& image, int id) {
  const DialogControl* c = FindControl(image, id);
  return c ? c->Enabled : -1;
}

inline int ShownOf(const DialogImage& image, int id) {
  const DialogControl* c = FindControl(image, id);
  return c ? c->Shown : -1;
}

inline char Buffer[SETTINGS_TEXT_CAPACITY];

inline std::string Written() {
  const int n = WriteSettingsText(Buffer, SETTINGS_TEXT_CAPACITY);
  return std::string(Buffer, (size_t)n);
}

// A first-start file with some lines replaced: (index in the list, new line).
template <int N>
inline std::string Edited(const char* const (&lines)[N], std::initializer_list<std::pair<int, const char*>> changes) {
  std::string out;
  for (int i = 0; i < N; ++i) {
    const char* line = lines[i];
    for (const auto& change : changes)
      if (change.first == i) line = change.second;
    out += line;
    out += "\r\n";
  }
  return out;
}

}  // namespace dialog_testing
