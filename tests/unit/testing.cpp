#include "testing.h"

#include <cstdlib>
#include <vector>

namespace testing {
namespace {

struct Entry { const char* Name; TestFunction Function; };

std::vector<Entry>& Registry() {
  static std::vector<Entry> entries;
  return entries;
}

bool CurrentFailed = false;
bool CurrentSkipped = false;

}  // namespace

int RegisterTest(const char* name, TestFunction function) {
  Registry().push_back({name, function});
  return 0;
}

void Fail(const char* file, int line, const std::string& what) {
  CurrentFailed = true;
  fprintf(stdout, "  %s:%d: %s\n", file, line, what.c_str());
}

void Skip(const std::string& why) {
  CurrentSkipped = true;
  fprintf(stdout, "  skipped: %s\n", why.c_str());
}

std::string Printable(const std::string& bytes) {
  std::string out;
  for (unsigned char c : bytes) {
    if (c == '\n') out += "\\n";
    else if (c == '\r') out += "\\r";
    else if (c == '"') out += "\\\"";
    else if (c == '\\') out += "\\\\";
    else if (c < 32 || c >= 127) { char b[8]; snprintf(b, sizeof b, "\\x%02x", c); out += b; }
    else out += (char)c;
  }
  return out;
}

std::string Quoted(const std::string& bytes) {
  std::string out(1, '"');
  out += Printable(bytes);
  out += '"';
  return out;
}

std::string SourcePath(const char* relative) {
#ifdef KELVO_SOURCE_DIR
  std::string root = KELVO_SOURCE_DIR;
#else
  std::string root = ".";
#endif
#ifdef _WIN32
  // Under Wine the Linux file system is drive Z:.
  if (!root.empty() && root[0] == '/') root = "Z:" + root;
#endif
  return root + "/" + relative;
}

bool ReadWholeFile(const std::string& path, std::string& out) {
  FILE* f = fopen(path.c_str(), "rb");
  if (!f) return false;
  out.clear();
  char buffer[65536];
  size_t n;
  while ((n = fread(buffer, 1, sizeof buffer, f)) > 0) out.append(buffer, n);
  fclose(f);
  return true;
}

}  // namespace testing

int main(int argc, char** argv) {
  const char* only = argc > 1 ? argv[1] : nullptr;
  int passed = 0, failed = 0, skipped = 0;
  for (const auto& entry : testing::Registry()) {
    if (only && strstr(entry.Name, only) == nullptr) continue;
    testing::CurrentFailed = false;
    testing::CurrentSkipped = false;
    SelectVariant(0, 0);
    entry.Function();
    if (testing::CurrentFailed) { ++failed; fprintf(stdout, "FAIL %s\n", entry.Name); }
    else if (testing::CurrentSkipped) { ++skipped; fprintf(stdout, "SKIP %s\n", entry.Name); }
    else { ++passed; fprintf(stdout, "ok   %s\n", entry.Name); }
    fflush(stdout);
  }
  fprintf(stdout, "%d passed, %d failed, %d skipped\n", passed, failed, skipped);
  return failed == 0 ? 0 : 1;
}
