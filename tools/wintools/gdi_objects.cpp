// Counts the GDI and USER objects of a program in this Wine prefix, for the
// soak benchmark:
//   gdi_objects TITLE    the process owning the top-level window titled TITLE
//   gdi_objects --self   proves the count on itself: before and after making
//                        100 brushes, and after deleting them
// Output, one line: "gdi N user M working-set-kib W method X", where X is
// "GetGuiResources" when the system counts (Windows), or "handle-table" when
// the process's own GDI handle table had to be read: Wine keeps each
// process's GDI handles in a table that its PEB points to (as Windows did),
// and GetGuiResources is only a stub there that answers 0. USER objects have
// no such table under Wine; M is then -1.
#include <windows.h>
#include <psapi.h>

#include <cstdio>
#include <cstring>
#include <vector>

namespace {

// An entry of the GDI handle table, 24 bytes on 64-bit, laid out as on
// Windows: the object's address, the owning process, a count, the handle's
// upper word, the type (0 for a free entry; freeing clears it) and a user
// pointer.
struct HandleEntry {
  UINT64 Object;
  USHORT ProcessId;
  USHORT Count;
  USHORT Upper;
  UCHAR Type;
  UCHAR TypeFlags;
  UINT64 UserPointer;
};
static_assert(sizeof(HandleEntry) == 24, "a GDI handle entry is 24 bytes on 64-bit");

constexpr size_t HANDLE_TABLE_ENTRIES = 0x10000;
constexpr size_t PEB_GDI_TABLE_OFFSET = 0xF8;   // PEB.GdiSharedHandleTable on x64

struct BasicInformation {
  LONG ExitStatus;
  void* PebBaseAddress;
  ULONG_PTR AffinityMask;
  LONG BasePriority;
  ULONG_PTR UniqueProcessId;
  ULONG_PTR InheritedFromUniqueProcessId;
};
using QueryProcess = LONG(WINAPI*)(HANDLE, int, void*, ULONG, ULONG*);

// Live entries of the process's GDI handle table, or -1 when it can't be read.
long CountHandleTable(HANDLE process) {
  auto query = reinterpret_cast<QueryProcess>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQueryInformationProcess")));
  if (!query) return -1;
  BasicInformation basic = {};
  if (query(process, 0, &basic, sizeof basic, nullptr) != 0 || !basic.PebBaseAddress) return -1;
  UINT64 table = 0;
  SIZE_T got = 0;
  if (!ReadProcessMemory(process, static_cast<char*>(basic.PebBaseAddress) + PEB_GDI_TABLE_OFFSET, &table,
                         sizeof table, &got) || table == 0)
    return -1;
  std::vector<HandleEntry> entries(HANDLE_TABLE_ENTRIES);
  if (!ReadProcessMemory(process, reinterpret_cast<void*>(table), entries.data(),
                         entries.size() * sizeof(HandleEntry), &got))
    return -1;
  long live = 0;
  for (size_t i = 0; i < got / sizeof(HandleEntry); ++i)
    if (entries[i].Type != 0) ++live;
  return live;
}

struct ProcessFigures {
  long Gdi = -1;
  long User = -1;
  long WorkingSetKib = -1;
  const char* Method = "none";
};

ProcessFigures Measure(HANDLE process) {
  ProcessFigures f;
  const DWORD gdi = GetGuiResources(process, GR_GDIOBJECTS);
  if (gdi != 0) {
    f.Gdi = (long)gdi;
    f.User = (long)GetGuiResources(process, GR_USEROBJECTS);
    f.Method = "GetGuiResources";
  } else {
    f.Gdi = CountHandleTable(process);
    f.Method = f.Gdi >= 0 ? "handle-table" : "none";
  }
  PROCESS_MEMORY_COUNTERS counters = {};
  counters.cb = sizeof counters;
  if (K32GetProcessMemoryInfo(process, &counters, sizeof counters))
    f.WorkingSetKib = (long)(counters.WorkingSetSize / 1024);
  return f;
}

void Print(const ProcessFigures& f) {
  printf("gdi %ld user %ld working-set-kib %ld method %s\n", f.Gdi, f.User, f.WorkingSetKib, f.Method);
}

int SelfTest() {
  HANDLE self = GetCurrentProcess();
  const ProcessFigures before = Measure(self);
  HBRUSH brushes[100];
  for (int i = 0; i < 100; ++i) brushes[i] = CreateSolidBrush(RGB(i, 0, 0));
  const ProcessFigures during = Measure(self);
  for (HBRUSH b : brushes) DeleteObject(b);
  const ProcessFigures after = Measure(self);
  Print(before);
  Print(during);
  Print(after);
  return during.Gdi - before.Gdi == 100 && after.Gdi == before.Gdi ? 0 : 1;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc < 2) {
    fprintf(stderr, "usage: gdi_objects TITLE | --self\n");
    return 2;
  }
  if (wcscmp(argv[1], L"--self") == 0) return SelfTest();
  HWND window = FindWindowW(nullptr, argv[1]);
  if (!window) {
    fprintf(stderr, "no window titled %ls\n", argv[1]);
    return 1;
  }
  DWORD pid = 0;
  GetWindowThreadProcessId(window, &pid);
  HANDLE process = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, pid);
  if (!process) {
    fprintf(stderr, "cannot open process %lu\n", (unsigned long)pid);
    return 1;
  }
  Print(Measure(process));
  CloseHandle(process);
  fflush(stdout);
  return 0;
}
