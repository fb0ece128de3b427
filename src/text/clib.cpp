#include <zo/text/clib.h>

#include <io.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <cwctype>

// The compiler's library has functions of its own under some of the runtime's names, and they
// differ: in what %s takes, in sin and cos of large arguments, in pow(10, -2) and modf(-1), in
// errno. The runtime's stand behind other names and behind their import entries.
#if defined(__MINGW32__)
extern "C" {
int __ms_vfwscanf(std::FILE* file, const wchar_t* format, va_list arguments);
extern double (*__imp_atan2)(double, double);
extern double (*__imp_cos)(double);
extern double (*__imp_exp)(double);
extern double (*__imp_log)(double);
extern double (*__imp_modf)(double, double*);
extern double (*__imp_pow)(double, double);
extern double (*__imp_sin)(double);
extern double (*__imp_sqrt)(double);
}
#define ZO_RUNTIME(function) __imp_##function
#define ZO_RUNTIME_WIDE(function) __ms_##function
#else
#define ZO_RUNTIME(function) std::function
#define ZO_RUNTIME_WIDE(function) std::function
#endif

// ---- Text ----

size_t ZoCLib::strlen(const wchar_t* text) noexcept { return std::wcslen(text); }
const wchar_t* ZoCLib::strchr(const wchar_t* text, wchar_t c) noexcept {
  return std::wcschr(text, c);
}
wchar_t* ZoCLib::strchr(wchar_t* text, wchar_t c) noexcept { return std::wcschr(text, c); }
const wchar_t* ZoCLib::strrchr(const wchar_t* text, wchar_t c) noexcept {
  return std::wcsrchr(text, c);
}
wchar_t* ZoCLib::strrchr(wchar_t* text, wchar_t c) noexcept { return std::wcsrchr(text, c); }
const wchar_t* ZoCLib::strstr(const wchar_t* text, const wchar_t* part) noexcept {
  return std::wcsstr(text, part);
}
wchar_t* ZoCLib::strstr(wchar_t* text, const wchar_t* part) noexcept {
  return std::wcsstr(text, part);
}
const wchar_t* ZoCLib::strpbrk(const wchar_t* text, const wchar_t* set) noexcept {
  return std::wcspbrk(text, set);
}
wchar_t* ZoCLib::strpbrk(wchar_t* text, const wchar_t* set) noexcept {
  return std::wcspbrk(text, set);
}
int ZoCLib::strcmp(const wchar_t* a, const wchar_t* b) noexcept { return std::wcscmp(a, b); }
int ZoCLib::stricmp(const wchar_t* a, const wchar_t* b) noexcept { return _wcsicmp(a, b); }
int ZoCLib::strncmp(const wchar_t* a, const wchar_t* b, size_t n) noexcept {
  return std::wcsncmp(a, b, n);
}
int ZoCLib::strnicmp(const wchar_t* a, const wchar_t* b, size_t n) noexcept {
  return _wcsnicmp(a, b, n);
}
int ZoCLib::strcoll(const wchar_t* a, const wchar_t* b) noexcept { return std::wcscoll(a, b); }

namespace {

constexpr size_t kWhole = _TRUNCATE - 1;  // more than any text has

// The runtime's bounded functions end the program on a wrong argument; here it is an error number
// like any other, and dest is left empty where there is room for that.
int boundedAppend(wchar_t* dest, size_t size, size_t used, const wchar_t* text, size_t n) noexcept {
  if (!dest && size == 0 && n == 0) return 0;
  if (!dest || size == 0) return EINVAL;
  const auto refuse = [dest](int error) {
    dest[0] = 0;
    return error;
  };
  if (used == size || (!text && n > 0)) return refuse(EINVAL);
  const size_t room = size - used - 1;
  const size_t length = n > 0 ? wcsnlen(text, std::min(n, room + 1)) : 0;
  if (length > room && n != _TRUNCATE) return refuse(ERANGE);
  const size_t taken = std::min(length, room);
  std::wmemmove(dest + used, text, taken);
  dest[used + taken] = 0;
  return taken < length ? STRUNCATE : 0;
}

size_t usedOf(const wchar_t* dest, size_t size) noexcept { return dest ? wcsnlen(dest, size) : 0; }

}  // namespace

int ZoCLib::Zo_strcat_s(wchar_t* dest, size_t size, const wchar_t* text) noexcept {
  return boundedAppend(dest, size, usedOf(dest, size), text, kWhole);
}

int ZoCLib::Zo_strcpy_s(wchar_t* dest, size_t size, const wchar_t* text) noexcept {
  return boundedAppend(dest, size, 0, text, kWhole);
}

int ZoCLib::Zo_strncat_s(wchar_t* dest, size_t size, const wchar_t* text, size_t n) noexcept {
  return boundedAppend(dest, size, usedOf(dest, size), text, n);
}

int ZoCLib::Zo_strncpy_s(wchar_t* dest, size_t size, const wchar_t* text, size_t n) noexcept {
  return boundedAppend(dest, size, 0, text, n);
}

// ---- Memory ----

void* ZoCLib::Zo_memcpy(void* dest, const void* from, size_t bytes) noexcept {
  return std::memcpy(dest, from, bytes);
}
void* ZoCLib::memset(void* dest, int value, size_t bytes) noexcept {
  return std::memset(dest, value, bytes);
}
void* ZoCLib::memmove(void* dest, const void* from, size_t bytes) noexcept {
  return std::memmove(dest, from, bytes);
}
int ZoCLib::memcmp(const void* a, const void* b, size_t bytes) noexcept {
  return std::memcmp(a, b, bytes);
}
void* ZoCLib::malloc(size_t bytes) noexcept { return std::malloc(bytes); }
void* ZoCLib::calloc(size_t count, size_t bytes) noexcept { return std::calloc(count, bytes); }
void* ZoCLib::realloc(void* block, size_t bytes) noexcept { return std::realloc(block, bytes); }
void ZoCLib::free(void* block) noexcept { std::free(block); }

// ---- Formatted text and files ----

int ZoCLib::Zo_sprintf(wchar_t* dest, size_t size, const wchar_t* format, ...) noexcept {
  if (!dest || size == 0 || !format) return -1;
  va_list arguments;
  va_start(arguments, format);
  const int written = _vsnwprintf(dest, size, format, arguments);
  va_end(arguments);
  dest[size - 1] = 0;
  return written >= 0 && static_cast<size_t>(written) < size ? written : -1;
}

int ZoCLib::fprintf(std::FILE* file, const wchar_t* format, ...) noexcept {
  va_list arguments;
  va_start(arguments, format);
  const int written = ZO_RUNTIME_WIDE(vfwprintf)(file, format, arguments);
  va_end(arguments);
  return written;
}

int ZoCLib::fscanf(std::FILE* file, const wchar_t* format, ...) noexcept {
  va_list arguments;
  va_start(arguments, format);
  const int fields = ZO_RUNTIME_WIDE(vfwscanf)(file, format, arguments);
  va_end(arguments);
  return fields;
}

std::FILE* ZoCLib::fdopen(int descriptor, const wchar_t* mode) noexcept {
  return _wfdopen(descriptor, mode);
}
int ZoCLib::open_osfhandle(std::intptr_t handle, int flags) noexcept {
  return _open_osfhandle(handle, flags);
}

// ---- Numbers and characters ----

double ZoCLib::atof(const wchar_t* text) noexcept { return _wtof(text); }
int ZoCLib::atoi(const wchar_t* text) noexcept { return _wtoi(text); }
long ZoCLib::atol(const wchar_t* text) noexcept { return _wtol(text); }
wchar_t ZoCLib::toupper(wchar_t c) noexcept { return static_cast<wchar_t>(std::towupper(c)); }
wchar_t ZoCLib::tolower(wchar_t c) noexcept { return static_cast<wchar_t>(std::towlower(c)); }
bool ZoCLib::islower(wchar_t c) noexcept { return std::iswlower(c) != 0; }
bool ZoCLib::isupper(wchar_t c) noexcept { return std::iswupper(c) != 0; }
bool ZoCLib::isalpha(wchar_t c) noexcept { return std::iswalpha(c) != 0; }
bool ZoCLib::isdigit(wchar_t c) noexcept { return std::iswdigit(c) != 0; }
bool ZoCLib::ispunct(wchar_t c) noexcept { return std::iswpunct(c) != 0; }
bool ZoCLib::isspace(wchar_t c) noexcept { return std::iswspace(c) != 0; }
int ZoCLib::mblen(const char* bytes, size_t n) noexcept { return std::mblen(bytes, n); }

// ---- Paths ----

void ZoCLib::splitpath(const wchar_t* path, wchar_t* drive, wchar_t* dir, wchar_t* name,
                       wchar_t* extension) noexcept {
  _wsplitpath_s(path, drive, drive ? 3 : 0, dir, dir ? 256 : 0, name, name ? 256 : 0, extension,
                extension ? 256 : 0);
}

int ZoCLib::Zo_makepath(wchar_t* dest, size_t size, const wchar_t* drive, const wchar_t* dir,
                        const wchar_t* name, const wchar_t* extension) noexcept {
  return _wmakepath_s(dest, size, drive, dir, name, extension);
}

// ---- Mathematics ----

double ZoCLib::acos(double x) noexcept { return std::acos(x); }
double ZoCLib::asin(double x) noexcept { return std::asin(x); }
double ZoCLib::atan(double x) noexcept { return std::atan(x); }
double ZoCLib::atan2(double y, double x) noexcept { return ZO_RUNTIME(atan2)(y, x); }
double ZoCLib::cos(double x) noexcept { return ZO_RUNTIME(cos)(x); }
double ZoCLib::exp(double x) noexcept { return ZO_RUNTIME(exp)(x); }
double ZoCLib::fabs(double x) noexcept { return std::fabs(x); }
long ZoCLib::labs(long x) noexcept { return std::labs(x); }
double ZoCLib::log(double x) noexcept { return ZO_RUNTIME(log)(x); }
double ZoCLib::log10(double x) noexcept { return std::log10(x); }
double ZoCLib::pow(double x, double y) noexcept { return ZO_RUNTIME(pow)(x, y); }
double ZoCLib::sin(double x) noexcept { return ZO_RUNTIME(sin)(x); }
double ZoCLib::sqrt(double x) noexcept { return ZO_RUNTIME(sqrt)(x); }
double ZoCLib::tan(double x) noexcept { return std::tan(x); }
double ZoCLib::modf(double x, double* whole) noexcept { return ZO_RUNTIME(modf)(x, whole); }
