// What every public header rests on: the export mark and what the platform must be. Nothing else.
#pragma once

// The first that a compiler says of it, before the headers that it cannot read.
#if !defined(_WIN32) && !defined(ZO_COM_STATIC)
#error "zo_com is a library for Windows: choose a compiler that makes programs for it"
#endif
#if __cplusplus < 202002L && (!defined(_MSVC_LANG) || _MSVC_LANG < 202002L)
#error "zo_com needs C++20: -std=c++20, or /std:c++20; zo_c.h is for C and older compilers"
#endif
// It gives the standard containers another layout than the DLL's.
#if defined(_GLIBCXX_DEBUG) && !defined(ZO_COM_STATIC)
#error "zo_com shares standard containers with its clients: _GLIBCXX_ASSERTIONS, not _GLIBCXX_DEBUG"
#endif

#if defined(_WIN32)
static_assert(sizeof(wchar_t) == 2, "zo_com text is UTF-16 in wchar_t");
static_assert(sizeof(void*) == 8, "zo_com is a 64-bit library");
#endif

// ZO_COM_API marks what the DLL exports. ZO_COM_BUILD is set while the DLL itself is compiled,
// ZO_COM_STATIC by programs that link its objects directly (the white-box tests and fuzz targets).
#if !defined(_WIN32) || defined(ZO_COM_STATIC)
#define ZO_COM_API
#elif defined(ZO_COM_BUILD)
#define ZO_COM_API __declspec(dllexport)
#else
#define ZO_COM_API __declspec(dllimport)
#endif

// Visual C++ gives overloads of one name their slots from the last declaration to the first. Where
// modules that were built before call by slot, such overloads are declared twice, for either rule.
#if defined(_MSC_VER)
#define ZO_OVERLOADS_BACKWARDS
#endif

// The DLL shares the C++ runtime with its clients. Visual C++ has several that do not mix: a client
// of another one does not compile, or does not link for want of a name that says why.
#if defined(_MSC_VER) && !defined(ZO_COM_STATIC)
#if !defined(_DLL)
#error "zo_com shares the C++ runtime with its clients: use /MD, or /MDd with a Debug zo_com"
#elif defined(ZO_COM_BUILD)
#elif defined(_DEBUG)
#pragma comment(linker, "/include:__imp_zo_com_has_the_debug_runtime")
#else
#pragma comment(linker, "/include:__imp_zo_com_has_the_release_runtime")
#endif
#endif
