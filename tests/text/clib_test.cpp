// ZoCLib against the runtime library's own functions, taken out of its module by name.
#include <windows.h>
// windows.h comes first here on purpose: the names below must not meet its macros.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>
#include <zo/text/clib.h>

#include <bit>
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
#include <vector>

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

template <class Function>
struct Pair {
  Pair(const char* named, Function* mine)
      : name(named), ours(mine), theirs(runtime<Function>(named)) {}
  const char* name;
  Function* ours;
  Function* theirs;
};

// What a call gives, with what it leaves in errno; doubles by their bits.
template <class Function, class... Arguments>
std::pair<std::uint64_t, int> outcome(Function* function, Arguments... arguments) {
  errno = 0;
  const auto result = function(arguments...);
  std::uint64_t bits = 0;
  std::memcpy(&bits, &result, sizeof result);
  return {bits, errno};
}

TEST(CLib, MathematicsIsTheRuntimes) {
  const double infinity = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::vector<double> values{
      0.,  -0.,    1,    -1,   .5,    2,    -2,     10,         1000,     3.141592653589793,
      710, 1e-300, 1e16, 1e22, 1e300, -746, 5e-324, 123456.789, infinity, -infinity,
      nan};
  using One = double(double);
  for (const auto& [name, ours, theirs] :
       {Pair<One>("acos", ZoCLib::acos), Pair<One>("asin", ZoCLib::asin),
        Pair<One>("atan", ZoCLib::atan), Pair<One>("cos", ZoCLib::cos),
        Pair<One>("exp", ZoCLib::exp), Pair<One>("fabs", ZoCLib::fabs),
        Pair<One>("log", ZoCLib::log), Pair<One>("log10", ZoCLib::log10),
        Pair<One>("sin", ZoCLib::sin), Pair<One>("sqrt", ZoCLib::sqrt),
        Pair<One>("tan", ZoCLib::tan)})
    for (const double x : values)
      EXPECT_EQ(outcome(ours, x), outcome(theirs, x)) << name << " of " << x;
  using Two = double(double, double);
  for (const auto& [name, ours, theirs] :
       {Pair<Two>("pow", ZoCLib::pow), Pair<Two>("atan2", ZoCLib::atan2)})
    for (const double x : values)
      for (const double y : values)
        EXPECT_EQ(outcome(ours, x, y), outcome(theirs, x, y)) << name << x << "," << y;
  const Pair<double(double, double*)> modf("modf", ZoCLib::modf);
  for (const double x : values) {
    double whole, theirWhole;
    EXPECT_EQ(outcome(modf.ours, x, &whole), outcome(modf.theirs, x, &theirWhole)) << x;
    EXPECT_EQ(std::bit_cast<std::uint64_t>(whole), std::bit_cast<std::uint64_t>(theirWhole)) << x;
  }
  EXPECT_EQ(ZoCLib::labs(-5), 5);
}

TEST(CLib, NumbersAndCharactersAreReadAsTheRuntimeDoes) {
  for (const wchar_t* text :
       {L"",        L" 1.5x",   L"0x10", L"inf",         L"infinity",
        L"nan",     L"0x1p3",   L"1e3",  L"1d3",         L"1E400",
        L"-1e-400", L".5",      L"5.",   L"+.e1",        L"1,5",
        L"\t\n 7",  L"\u00A07", L"1e",   L"-2147483649", L"99999999999999999999",
        L"-0"}) {
    EXPECT_EQ(outcome(ZoCLib::atof, text), outcome(runtime<double(const wchar_t*)>("_wtof"), text))
        << text;
    EXPECT_EQ(outcome(ZoCLib::atoi, text), outcome(runtime<int(const wchar_t*)>("_wtoi"), text))
        << text;
    EXPECT_EQ(outcome(ZoCLib::atol, text), outcome(runtime<long(const wchar_t*)>("_wtol"), text))
        << text;
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
  for (unsigned c = 0; c < 0x10000; ++c) {
    ASSERT_EQ(ZoCLib::toupper(static_cast<wchar_t>(c)),
              runtime<wint_t(wint_t)>("towupper")(static_cast<wint_t>(c)));
    ASSERT_EQ(ZoCLib::tolower(static_cast<wchar_t>(c)),
              runtime<wint_t(wint_t)>("towlower")(static_cast<wint_t>(c)));
  }
  for (const char* bytes : {"", "a", "\xE4", "ab"}) {
    for (const size_t n : {0, 1, 2})
      EXPECT_EQ(ZoCLib::mblen(bytes, n), runtime<int(const char*, size_t)>("mblen")(bytes, n))
          << bytes << n;
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
    EXPECT_EQ(ZoCLib::strlen(a), std::wstring(a).size());
    for (const wchar_t* b : texts) {
      for (const auto& [name, ours, theirs] :
           {Pair<Compare>("wcscmp", ZoCLib::strcmp), Pair<Compare>("_wcsicmp", ZoCLib::stricmp),
            Pair<Compare>("wcscoll", ZoCLib::strcoll)})
        EXPECT_EQ(ours(a, b), theirs(a, b)) << name << a << b;
      for (const auto& [name, ours, theirs] :
           {Pair<Part>("wcsncmp", ZoCLib::strncmp), Pair<Part>("_wcsnicmp", ZoCLib::strnicmp)})
        EXPECT_EQ(ours(a, b, 1), theirs(a, b, 1)) << name << a << b;
      for (const auto& [name, ours, theirs] :
           {Pair<Find>("wcsstr", ZoCLib::strstr), Pair<Find>("wcspbrk", ZoCLib::strpbrk)})
        EXPECT_EQ(ours(a, b), theirs(a, b)) << name << a << b;
      for (const auto& [name, ours, theirs] :
           {Pair<FindUnit>("wcschr", ZoCLib::strchr), Pair<FindUnit>("wcsrchr", ZoCLib::strrchr)})
        EXPECT_EQ(ours(a, *b), theirs(a, *b)) << name << a << b;
    }
  }
  wchar_t changing[] = L"abab";
  EXPECT_EQ(ZoCLib::strchr(changing, L'b'), changing + 1);
  EXPECT_EQ(ZoCLib::strrchr(changing, L'b'), changing + 3);
  EXPECT_EQ(ZoCLib::strstr(changing, L"ba"), changing + 1);
  EXPECT_EQ(ZoCLib::strpbrk(changing, L"xb"), changing + 1);
  auto* block = static_cast<char*>(ZoCLib::calloc(2, 4));
  EXPECT_EQ(ZoCLib::memcmp(block, "\0\0\0\0\0\0\0", 8), 0);
  ZoCLib::memset(ZoCLib::Zo_memcpy(block, "abcd", 4), 'x', 1);
  ZoCLib::memmove(block + 1, block, 4);
  block = static_cast<char*>(ZoCLib::realloc(block, 16));
  EXPECT_EQ(std::string(block), "xxbcd");
  ZoCLib::free(block);
  ZoCLib::free(ZoCLib::malloc(1));
}

using Bounded = int(wchar_t*, size_t, const wchar_t*, size_t);

void expectAsTheRuntime(const Pair<Bounded>& function, const wchar_t* before, size_t size,
                        const wchar_t* text, size_t n) {
  wchar_t ours[10], theirs[10];
  std::wcscpy(ours, before);
  std::wcscpy(theirs, before);
  const int result = function.ours(ours, size, text, n);
  // A text that just fits is called cut by some runtimes.
  const size_t room = size - (function.name == std::string("wcsncat_s") ? std::wcslen(before) : 0);
  if (n != _TRUNCATE || std::wcslen(text) + 1 != room) {
    EXPECT_EQ(result, function.theirs(theirs, size, text, n)) << before << text << size << " " << n;
    EXPECT_STREQ(ours, theirs) << before << text << size << " " << n;
  } else {
    EXPECT_EQ(result, 0) << before << text << size;
  }
}

TEST(CLib, BoundedFunctionsAreTheRuntimesAndAnswerWhereItEndsTheProgram) {
  const Pair<Bounded> copy("wcsncpy_s", ZoCLib::Zo_strncpy_s);
  const Pair<Bounded> append("wcsncat_s", ZoCLib::Zo_strncat_s);
  const size_t counts[] = {0, 1, 2, 3, _TRUNCATE - 1, _TRUNCATE};
  for (const wchar_t* before : {L"", L"ab"}) {
    for (const wchar_t* text : {L"x", L"xyz", L"xyzxyz"}) {
      for (size_t size = std::wcslen(before) + 1; size < 10; ++size) {
        for (const size_t n : counts) {
          expectAsTheRuntime(copy, before, size, text, n);
          expectAsTheRuntime(append, before, size, text, n);
        }
      }
    }
  }
  wchar_t buffer[6] = L"abc";
  EXPECT_EQ(ZoCLib::Zo_strcat_s(buffer, 6, L"de"), 0);
  EXPECT_STREQ(buffer, L"abcde");
  EXPECT_EQ(ZoCLib::Zo_strcat_s(buffer, 6, L"f"), ERANGE);
  EXPECT_STREQ(buffer, L"");
  EXPECT_EQ(ZoCLib::Zo_strncpy_s(buffer, 6, L"abcdefgh", 5), 0);
  EXPECT_EQ(ZoCLib::Zo_strncat_s(buffer, 5, L"x", _TRUNCATE), EINVAL)
      << "not terminated within the size";
  EXPECT_EQ(ZoCLib::Zo_strcpy_s(buffer, 6, L"abcdef"), ERANGE);
  EXPECT_EQ(ZoCLib::Zo_strcpy_s(buffer, 6, nullptr), EINVAL);
  EXPECT_EQ(ZoCLib::Zo_strncpy_s(buffer, 6, nullptr, 0), 0);
  EXPECT_EQ(ZoCLib::Zo_strcpy_s(buffer, 0, L"a"), EINVAL);
  EXPECT_EQ(ZoCLib::Zo_strcpy_s(nullptr, 6, L"a"), EINVAL);
  EXPECT_EQ(ZoCLib::Zo_strncat_s(nullptr, 0, L"a", 0), 0);
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
