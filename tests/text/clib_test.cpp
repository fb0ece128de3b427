// ZoCLib against the runtime library's own functions, taken out of its module by name.
#include <windows.h>
// windows.h comes first here on purpose: the names below must not meet its macros.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>
#include <zo/text/clib.h>

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <limits>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>

#include "support/temp_folder.h"

namespace {

template <class Function>
Function* runtime(const char* name) {
#if defined(_UCRT) || defined(_MSC_VER)
  const HMODULE module = GetModuleHandleW(L"ucrtbase.dll");
#else
  const HMODULE module = GetModuleHandleW(L"msvcrt.dll");
#endif
  auto* const found =
      reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
  if (!found) throw std::runtime_error(name);
  return found;
}

// What a call gives, with what it leaves in errno; doubles by their bits.
template <class Function, class... Arguments>
std::pair<std::uint64_t, int> outcome(Function* function, Arguments... arguments) {
  errno = 0;
  const auto result = function(arguments...);
  std::uint64_t bits = 0;
  std::memcpy(&bits, &result, sizeof result);
  return {bits, errno};
}

template <class Function>
struct Same {
  const char* name;
  Function* ours;

  template <class... Arguments>
  void expect(Arguments... arguments) const {
    EXPECT_EQ(outcome(ours, arguments...), outcome(runtime<Function>(name), arguments...))
        << name << testing::PrintToString(std::tuple(arguments...));
  }
};

TEST(CLib, MathematicsIsTheRuntimes) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  constexpr double values[] = {
      0,   -0.,    1,    -1,       .5,        -2,      10,
      710, 1e-300, 1e22, infinity, -infinity, 3.14159, std::numeric_limits<double>::quiet_NaN()};
  using One = double(double);
  using Two = double(double, double);
  for (const double x : values) {
    for (const auto& function : {Same<One>{"acos", ZoCLib::acos}, Same<One>{"asin", ZoCLib::asin},
                                 Same<One>{"atan", ZoCLib::atan}, Same<One>{"cos", ZoCLib::cos},
                                 Same<One>{"exp", ZoCLib::exp}, Same<One>{"fabs", ZoCLib::fabs},
                                 Same<One>{"log", ZoCLib::log}, Same<One>{"log10", ZoCLib::log10},
                                 Same<One>{"sin", ZoCLib::sin}, Same<One>{"sqrt", ZoCLib::sqrt},
                                 Same<One>{"tan", ZoCLib::tan}})
      function.expect(x);
    for (const double y : values) {
      Same<Two>{"pow", ZoCLib::pow}.expect(x, y);
      Same<Two>{"atan2", ZoCLib::atan2}.expect(x, y);
    }
    double whole[2] = {};
    EXPECT_EQ(outcome(ZoCLib::modf, x, whole),
              outcome(runtime<double(double, double*)>("modf"), x, whole + 1));
    EXPECT_EQ(std::memcmp(whole, whole + 1, sizeof *whole), 0) << x;
  }
  EXPECT_EQ(ZoCLib::labs(-5), 5);
}

TEST(CLib, NumbersAndCharactersAreReadAsTheRuntimeDoes) {
  for (const wchar_t* text : {L"", L" 1.5x", L"0x10", L"inf", L"nan", L"0x1p3", L"1e3", L"1d3",
                              L"1E400", L"-1e-400", L".5", L"+.e1", L"1,5", L"\t\n 7", L"\u00A07",
                              L"1e", L"-2147483649", L"-0", L"99999999999999999999"}) {
    Same<double(const wchar_t*)>{"_wtof", ZoCLib::atof}.expect(text);
    Same<int(const wchar_t*)>{"_wtoi", ZoCLib::atoi}.expect(text);
    Same<long(const wchar_t*)>{"_wtol", ZoCLib::atol}.expect(text);
  }
  using Class = bool(wchar_t);
  const std::pair<Class*, const char*> classes[] = {
      {ZoCLib::islower, "iswlower"}, {ZoCLib::isupper, "iswupper"}, {ZoCLib::isalpha, "iswalpha"},
      {ZoCLib::isdigit, "iswdigit"}, {ZoCLib::ispunct, "iswpunct"}, {ZoCLib::isspace, "iswspace"}};
  for (const auto& [ours, name] : classes) {
    const auto theirs = runtime<int(wint_t)>(name);
    for (unsigned c = 0; c < 0x10000; ++c)
      ASSERT_EQ(ours(static_cast<wchar_t>(c)), theirs(static_cast<wint_t>(c)) != 0) << name << c;
  }
  const auto upper = runtime<wint_t(wint_t)>("towupper"),
             lower = runtime<wint_t(wint_t)>("towlower");
  for (unsigned c = 0; c < 0x10000; ++c) {
    ASSERT_EQ(ZoCLib::toupper(static_cast<wchar_t>(c)), upper(static_cast<wint_t>(c)));
    ASSERT_EQ(ZoCLib::tolower(static_cast<wchar_t>(c)), lower(static_cast<wint_t>(c)));
  }
  for (const char* bytes : {"", "a", "\xE4", "ab"}) {
    for (const size_t n : {0, 1, 2})
      Same<int(const char*, size_t)>{"mblen", ZoCLib::mblen}.expect(bytes, n);
  }
}

TEST(CLib, TextAndMemoryFunctionsAreTheRuntimes) {
  const wchar_t* const texts[] = {L"",    L"a",      L"A",      L"ab",  L"aB",
                                  L"b_a", L"\u00E4", L"\u00C4", L"a-b", L"abab"};
  using Compare = int(const wchar_t*, const wchar_t*);
  using Part = int(const wchar_t*, const wchar_t*, size_t);
  using Find = const wchar_t*(const wchar_t*, const wchar_t*);
  using FindUnit = const wchar_t*(const wchar_t*, wchar_t);
  for (const wchar_t* a : texts) {
    EXPECT_EQ(ZoCLib::strlen(a), std::wcslen(a));
    for (const wchar_t* b : texts) {
      Same<Compare>{"wcscmp", ZoCLib::strcmp}.expect(a, b);
      Same<Compare>{"_wcsicmp", ZoCLib::stricmp}.expect(a, b);
      Same<Compare>{"wcscoll", ZoCLib::strcoll}.expect(a, b);
      Same<Part>{"wcsncmp", ZoCLib::strncmp}.expect(a, b, 1);
      Same<Part>{"_wcsnicmp", ZoCLib::strnicmp}.expect(a, b, 1);
      Same<Find>{"wcsstr", ZoCLib::strstr}.expect(a, b);
      Same<Find>{"wcspbrk", ZoCLib::strpbrk}.expect(a, b);
      Same<FindUnit>{"wcschr", ZoCLib::strchr}.expect(a, *b);
      Same<FindUnit>{"wcsrchr", ZoCLib::strrchr}.expect(a, *b);
    }
  }
  wchar_t changing[] = L"abab";
  EXPECT_TRUE(ZoCLib::strchr(changing, L'b') == changing + 1 &&
              ZoCLib::strrchr(changing, L'b') == changing + 3 &&
              ZoCLib::strstr(changing, L"ba") == changing + 1 &&
              ZoCLib::strpbrk(changing, L"xb") == changing + 1);
  auto* block = static_cast<char*>(ZoCLib::calloc(2, 4));
  EXPECT_EQ(ZoCLib::memcmp(block, "\0\0\0\0\0\0\0", 8), 0);
  ZoCLib::memset(ZoCLib::Zo_memcpy(block, "abcd", 4), 'x', 1);
  ZoCLib::memmove(block + 1, block, 4);
  block = static_cast<char*>(ZoCLib::realloc(block, 16));
  EXPECT_EQ(std::string(block), "xxbcd");
  ZoCLib::free(block);
  ZoCLib::free(ZoCLib::malloc(1));
}

// Where the runtime's own end the program, or differ among each other, the contract counts.
TEST(CLib, BoundedFunctionsTakeWhatFitsAndAnswerWhatDoesNot) {
  constexpr size_t kWhole = _TRUNCATE - 1;
  using Bounded = int(wchar_t*, size_t, const wchar_t*, size_t);
  Bounded* const copy = ZoCLib::Zo_strncpy_s;
  Bounded* const append = ZoCLib::Zo_strncat_s;
  const struct {
    Bounded* function;
    size_t size;
    const wchar_t* text;
    size_t n;
    int result;
    const wchar_t* after;  // of "ab"
  } cases[] = {{copy, 4, L"xyz", kWhole, 0, L"xyz"},
               {copy, 3, L"xyz", kWhole, ERANGE, L""},
               {copy, 3, L"xyz", 2, 0, L"xy"},
               {copy, 3, L"xyz", 0, 0, L""},
               {copy, 4, L"xyz", _TRUNCATE, 0, L"xyz"},
               {copy, 3, L"xyz", _TRUNCATE, STRUNCATE, L"xy"},
               {copy, 1, L"x", _TRUNCATE, STRUNCATE, L""},
               {copy, 9, nullptr, 0, 0, L""},
               {copy, 9, nullptr, 1, EINVAL, L""},
               {copy, 0, L"x", 1, EINVAL, L"ab"},
               {append, 4, L"x", kWhole, 0, L"abx"},
               {append, 4, L"xy", kWhole, ERANGE, L""},
               {append, 4, L"xyz", 1, 0, L"abx"},
               {append, 4, L"xyz", 2, ERANGE, L""},
               {append, 3, L"xyz", 0, 0, L"ab"},
               {append, 5, L"xyz", _TRUNCATE, STRUNCATE, L"abxy"},
               {append, 2, L"x", _TRUNCATE, EINVAL, L""}};  // not terminated within the size
  for (const auto& c : cases) {
    wchar_t buffer[10] = L"ab";
    EXPECT_EQ(c.function(buffer, c.size, c.text, c.n), c.result) << &c - cases;
    EXPECT_STREQ(buffer, c.after) << &c - cases;
    if (c.n != kWhole) continue;
    std::wcscpy(buffer, L"ab");
    const auto whole = c.function == copy ? ZoCLib::Zo_strcpy_s : ZoCLib::Zo_strcat_s;
    EXPECT_EQ(whole(buffer, c.size, c.text), c.result) << &c - cases;
    EXPECT_STREQ(buffer, c.after) << &c - cases;
  }
  EXPECT_EQ(copy(nullptr, 6, L"a", 1), EINVAL);
  EXPECT_EQ(append(nullptr, 0, L"a", 0), 0);
}

TEST(CLib, FormatsTakeWideTextForSAndNarrowTextForHs) {
  wchar_t buffer[64];
  const auto theirs = runtime<int(wchar_t*, size_t, const wchar_t*, ...)>("_snwprintf");
  wchar_t expected[64];
  constexpr const wchar_t* kFormat = L"%s|%S|%hs|%ls|%c|%6.2f|%e|%I64d|%x";
  const int length =
      theirs(expected, 64, kFormat, L"w\u00E4", "n", "n2", L"w2", L'c', 3.14159, 1.0, 5LL, 255u);
  EXPECT_EQ(ZoCLib::Zo_sprintf(buffer, 64, kFormat, L"w\u00E4", "n", "n2", L"w2", L'c', 3.14159,
                               1.0, 5LL, 255u),
            length);
  EXPECT_STREQ(buffer, expected);
  EXPECT_EQ(ZoCLib::Zo_sprintf(buffer, 6, L"%d-%s", 12, L"ab"), 5);
  EXPECT_STREQ(buffer, L"12-ab");
  for (const int digits : {123456, 1234567}) {  // one too many for the terminator, and more
    EXPECT_EQ(ZoCLib::Zo_sprintf(buffer, 6, L"%d", digits), -1);
    EXPECT_STREQ(buffer, L"12345");
  }

  const zo::test::TempFolder folder;
  const HANDLE handle =
      CreateFileW((folder.path() / L"formats").c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                  CREATE_ALWAYS, 0, nullptr);
  std::FILE* const file = ZoCLib::fdopen(
      ZoCLib::open_osfhandle(reinterpret_cast<std::intptr_t>(handle), _O_RDWR), L"w+");
  ASSERT_TRUE(file);
  EXPECT_EQ(ZoCLib::fprintf(file, L"%s %hs %d %g\n", L"wide", "narrow", 7, 2.5), 18);
  std::rewind(file);
  wchar_t wide[16] = {}, first = 0;
  char narrow[16] = {};
  int number = 0;
  double real = 0;
  EXPECT_EQ(ZoCLib::fscanf(file, L"%c%15s %15hs %d %lf", &first, wide, narrow, &number, &real), 5);
  EXPECT_EQ(first, L'w');
  EXPECT_STREQ(wide, L"ide");
  EXPECT_STREQ(narrow, "narrow");
  EXPECT_EQ(number, 7);
  EXPECT_EQ(real, 2.5);
  std::fclose(file);
}

TEST(CLib, PathsAreTakenApartAndPutTogetherAsTheRuntimeDoes) {
  const auto split =
      runtime<void(const wchar_t*, wchar_t*, wchar_t*, wchar_t*, wchar_t*)>("_wsplitpath");
  for (const wchar_t* path :
       {L"c:\\a\\b.c", L"\\\\srv\\x\\y", L"c:x", L"a.b.c", L"", L".x", L"c:/a/b", L"a:\\"}) {
    wchar_t drive[3], parts[3][256], theirDrive[3], theirParts[3][256], whole[512];
    ZoCLib::splitpath(path, drive, parts[0], parts[1], parts[2]);
    split(path, theirDrive, theirParts[0], theirParts[1], theirParts[2]);
    EXPECT_STREQ(drive, theirDrive) << path;
    for (int i = 0; i < 3; ++i) EXPECT_STREQ(parts[i], theirParts[i]) << path;
    ZoCLib::splitpath(path, nullptr, nullptr, parts[1], nullptr);
    EXPECT_EQ(ZoCLib::Zo_makepath(whole, 512, drive, parts[0], parts[1], parts[2]), 0);
    EXPECT_STREQ(whole, path);
  }
  wchar_t small[4];
  EXPECT_EQ(ZoCLib::Zo_makepath(small, 4, L"c", L"dir", L"n", L"e"), ERANGE);
}

TEST(CLib, ToleranceComparisonsTellNumbersFromWhatIsNone) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const auto& [a, b, order] :
       {std::tuple(1., 1.5, 0), {1., 2.5, -1}, {2.5, 1., 1}, {nan, 1., 0}}) {
    EXPECT_EQ(ZoCLib::compare(a, b, 1), order);
    EXPECT_EQ(ZoCLib::isGreater(a, b, 1), order > 0);
    EXPECT_EQ(ZoCLib::isSmaller(a, b, 1), order < 0);
    EXPECT_EQ(ZoCLib::isEqual(a, b, 1), order == 0 && !std::isnan(a));
  }
}

}  // namespace
