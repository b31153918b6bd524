// The settings reader over any bytes, as any of the fourteen programs. The first
// byte chooses the program (low four bits modulo 14) and whether the program's
// own version line goes in front (top bit), so that most inputs reach the field
// lines. A file read and written once must then read and write to itself.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/model_defaults.h"
#include "core/settings.h"
#include "core/settings_store.h"
#include "core/state.h"
#include "core/variant.h"

void SelectVariant(int instrumentModel, int productMode);

namespace {

const int Models[7] = {Grad601, EM61LX2, EM61MK2, EM31MK2, EM38, EM343, EM38MK2};

char Input[SETTINGS_TEXT_CAPACITY * 2];
char First[SETTINGS_TEXT_CAPACITY];
char Second[SETTINGS_TEXT_CAPACITY];
char Third[SETTINGS_TEXT_CAPACITY];

void Start(int variant) {
  SelectVariant(Models[variant / 2], variant % 2);
  ResetProgramState();
  ApplyModelDefaults();
  if (IsNavigation()) Settings.MapDisplayMode = 0;
}

// Through the bounded copy, as the program reads its file.
int LoadThroughImage(const char* bytes, size_t size) {
  ClearSettingsImage();
  AddSettingsImageBytes(bytes, size);
  if (SettingsImage.Length > sizeof SettingsImage.Bytes) abort();
  return LoadSettingsBytes(SETTINGS_LOAD, SettingsImage.Bytes, SettingsImage.Length);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const int variant = (data[0] & 0x0F) % 14;
  Start(variant);
  size_t length = 0;
  if (data[0] & 0x80) {
    char version[32];
    SettingsVersionLine(version, sizeof version);
    length = (size_t)snprintf(Input, sizeof Input, "%s\r\n", version);
  }
  size_t rest = size - 1;
  if (rest > sizeof Input - length) rest = sizeof Input - length;
  memcpy(Input + length, data + 1, rest);
  length += rest;

  LoadThroughImage(Input, length);
  const int n1 = WriteSettingsText(First, sizeof First);
  if (n1 <= 0 || n1 >= (int)sizeof First) abort();

  Start(variant);
  if (LoadThroughImage(First, (size_t)n1) != SETTINGS_ACTION_READ) abort();
  const int n2 = WriteSettingsText(Second, sizeof Second);

  Start(variant);
  if (LoadThroughImage(Second, (size_t)n2) != SETTINGS_ACTION_READ) abort();
  const int n3 = WriteSettingsText(Third, sizeof Third);
  if (n2 != n3 || memcmp(Second, Third, (size_t)n2) != 0) abort();
  return 0;
}
