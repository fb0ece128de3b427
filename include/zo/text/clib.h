// The runtime library under one name, on wide text, and comparisons of doubles with a tolerance.
//
// Each member is the runtime library's own function of its name, one to one, with that function's
// contract (null pointers, errno, locale, threads), and not the compiler's substitute for it: %s is
// a wide text in Zo_sprintf, fprintf and fscanf (%hs a narrow one), atof reads no "0x10" and no
// "inf". Only what differs is said here.
//
// Errors, Threads: as said; nothing throws.
#pragma once

#include <zo/config.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>

class ZO_COM_API ZoCLib {
 public:
  ZoCLib() = delete;

  // ---- Text ----
  static size_t strlen(const wchar_t* text) noexcept;
  static const wchar_t* strchr(const wchar_t* text, wchar_t c) noexcept;
  static wchar_t* strchr(wchar_t* text, wchar_t c) noexcept;
  static const wchar_t* strrchr(const wchar_t* text, wchar_t c) noexcept;
  static wchar_t* strrchr(wchar_t* text, wchar_t c) noexcept;
  static const wchar_t* strstr(const wchar_t* text, const wchar_t* part) noexcept;
  static wchar_t* strstr(wchar_t* text, const wchar_t* part) noexcept;
  static const wchar_t* strpbrk(const wchar_t* text, const wchar_t* set) noexcept;
  static wchar_t* strpbrk(wchar_t* text, const wchar_t* set) noexcept;
  static int strcmp(const wchar_t* a, const wchar_t* b) noexcept;
  static int stricmp(const wchar_t* a, const wchar_t* b) noexcept;
  static int strncmp(const wchar_t* a, const wchar_t* b, size_t n) noexcept;
  static int strnicmp(const wchar_t* a, const wchar_t* b, size_t n) noexcept;
  static int strcoll(const wchar_t* a, const wchar_t* b) noexcept;
  // Bounded: size is that of dest in characters, terminator included. Return 0, or the runtime's
  // error number, and then dest holds an empty text: EINVAL for a null pointer, a size of 0 and a
  // dest without terminator (the runtime's own end the program there), ERANGE for a text that does
  // not fit. With n = _TRUNCATE as much as fits is taken, and STRUNCATE says that it was not all.
  [[nodiscard]] static int Zo_strcat_s(wchar_t* dest, size_t size, const wchar_t* text) noexcept;
  [[nodiscard]] static int Zo_strcpy_s(wchar_t* dest, size_t size, const wchar_t* text) noexcept;
  [[nodiscard]] static int Zo_strncat_s(wchar_t* dest, size_t size, const wchar_t* text,
                                        size_t n) noexcept;
  [[nodiscard]] static int Zo_strncpy_s(wchar_t* dest, size_t size, const wchar_t* text,
                                        size_t n) noexcept;

  // ---- Memory ----
  static void* Zo_memcpy(void* dest, const void* from, size_t bytes) noexcept;
  static void* memset(void* dest, int value, size_t bytes) noexcept;
  static void* memmove(void* dest, const void* from, size_t bytes) noexcept;
  static int memcmp(const void* a, const void* b, size_t bytes) noexcept;
  [[nodiscard]] static void* malloc(size_t bytes) noexcept;
  [[nodiscard]] static void* calloc(size_t count, size_t bytes) noexcept;
  [[nodiscard]] static void* realloc(void* block, size_t bytes) noexcept;
  static void free(void* block) noexcept;

  // ---- Formatted text and files ----
  // Characters written, or -1 when the text does not fit with its terminator; dest then holds its
  // beginning, terminated unless size is 0. A null dest or format gives -1.
  static int Zo_sprintf(wchar_t* dest, size_t size, const wchar_t* format, ...) noexcept;
  static int fprintf(std::FILE* file, const wchar_t* format, ...) noexcept;
  [[nodiscard]] static int fscanf(std::FILE* file, const wchar_t* format, ...) noexcept;
  [[nodiscard]] static std::FILE* fdopen(int descriptor, const wchar_t* mode) noexcept;
  [[nodiscard]] static int open_osfhandle(std::intptr_t handle, int flags) noexcept;

  // ---- Numbers and characters ----
  static double atof(const wchar_t* text) noexcept;
  static int atoi(const wchar_t* text) noexcept;
  static long atol(const wchar_t* text) noexcept;
  static wchar_t toupper(wchar_t c) noexcept;
  static wchar_t tolower(wchar_t c) noexcept;
  static bool islower(wchar_t c) noexcept;
  static bool isupper(wchar_t c) noexcept;
  static bool isalpha(wchar_t c) noexcept;
  static bool isdigit(wchar_t c) noexcept;
  static bool ispunct(wchar_t c) noexcept;
  static bool isspace(wchar_t c) noexcept;
  static int mblen(const char* bytes, size_t n) noexcept;

  // ---- Paths ----
  // The buffers hold 3, 256, 256 and 256 characters; null leaves a piece out.
  static void splitpath(const wchar_t* path, wchar_t* drive, wchar_t* dir, wchar_t* name,
                        wchar_t* extension) noexcept;
  // Puts the pieces together in dest of size characters. Returns 0 or the runtime's error number.
  [[nodiscard]] static int Zo_makepath(wchar_t* dest, size_t size, const wchar_t* drive,
                                       const wchar_t* dir, const wchar_t* name,
                                       const wchar_t* extension) noexcept;

  // ---- Mathematics ----
  static double acos(double x) noexcept;
  static double asin(double x) noexcept;
  static double atan(double x) noexcept;
  static double atan2(double y, double x) noexcept;
  static double cos(double x) noexcept;
  static double exp(double x) noexcept;
  static double fabs(double x) noexcept;
  static long labs(long x) noexcept;
  static double log(double x) noexcept;
  static double log10(double x) noexcept;
  static double pow(double x, double y) noexcept;
  static double sin(double x) noexcept;
  static double sqrt(double x) noexcept;
  static double tan(double x) noexcept;
  static double modf(double x, double* whole) noexcept;

  // ---- Comparing with a tolerance ----
  // With d = a - b. A difference that is not a number is, on purpose, "same" to compare and unequal
  // to isEqual.
  [[nodiscard]] static constexpr int compare(double a, double b, double tol) noexcept {
    const double d = a - b;
    return d > tol ? 1 : (d < -tol ? -1 : 0);
  }
  [[nodiscard]] static constexpr bool isGreater(double a, double b, double tol) noexcept {
    return a - b > tol;
  }
  [[nodiscard]] static constexpr bool isSmaller(double a, double b, double tol) noexcept {
    return a - b < -tol;
  }
  [[nodiscard]] static constexpr bool isEqual(double a, double b, double tol) noexcept {
    const double d = a - b;
    return (d < 0 ? -d : d) <= tol;
  }
};
