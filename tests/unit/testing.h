// A small test runner shared by every unit test program. It builds natively
// and for Windows (run under Wine), so nothing here may depend on a platform.
#pragma once
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <type_traits>

namespace testing {

using TestFunction = void (*)();
int RegisterTest(const char* name, TestFunction function);
void Fail(const char* file, int line, const std::string& what);
void Skip(const std::string& why);
std::string Printable(const std::string& bytes);
std::string Quoted(const std::string& bytes);
std::string SourcePath(const char* relative);
bool ReadWholeFile(const std::string& path, std::string& out);

template <typename T> std::string Show(const T& value) {
  if constexpr (std::is_same_v<T, std::string>) return Quoted(value);
  else if constexpr (std::is_array_v<T>) return Quoted(std::string(value));
  else if constexpr (std::is_convertible_v<T, const char*>) return Quoted(value ? std::string(value) : std::string("(null)"));
  else if constexpr (std::is_floating_point_v<T>) { char b[64]; snprintf(b, sizeof b, "%.17g", (double)value); return b; }
  else if constexpr (std::is_enum_v<T>) return std::to_string((long long)value);
  else if constexpr (std::is_pointer_v<T>) { char b[32]; snprintf(b, sizeof b, "%p", (const void*)value); return b; }
  else return std::to_string(value);
}

}  // namespace testing

// The variant a test runs as; the programs fix it at build time instead.
void SelectVariant(int instrumentModel, int productMode);

// The seven instrument models, in the order of the one variant list.
constexpr int MODEL_COUNT = 7;
const std::array<int, MODEL_COUNT>& AllModels();

#define TEST(name)                                                              \
  static void name();                                                           \
  static const int name##_registered = testing::RegisterTest(#name, name);      \
  static void name()

#define CHECK(condition)                                                        \
  do { if (!(condition)) { testing::Fail(__FILE__, __LINE__, "CHECK(" #condition ")"); return; } } while (0)

#define CHECK_EQ(actual, expected)                                              \
  do {                                                                          \
    const auto& a_ = (actual); const auto& e_ = (expected);                     \
    if (!(a_ == e_)) {                                                          \
      testing::Fail(__FILE__, __LINE__, std::string(#actual " == " #expected "\n    actual:   ") + \
                    testing::Show(a_) + "\n    expected: " + testing::Show(e_)); \
      return;                                                                   \
    }                                                                           \
  } while (0)

#define CHECK_NEAR(actual, expected, tolerance)                                 \
  do {                                                                          \
    const double a_ = (actual), e_ = (expected), t_ = (tolerance);              \
    if (!(std::fabs(a_ - e_) <= t_)) {                                          \
      testing::Fail(__FILE__, __LINE__, std::string(#actual " ~= " #expected "\n    actual:   ") + \
                    testing::Show(a_) + "\n    expected: " + testing::Show(e_)); \
      return;                                                                   \
    }                                                                           \
  } while (0)

#define SKIP(why) do { testing::Skip(why); return; } while (0)
