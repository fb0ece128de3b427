// The platform's types that public headers name, declared without windows.h and its macros. They
// are the SDK's own (with STRICT, its default): who looks into one includes windows.h, before or
// after.
#pragma once

#include <zo/config.h>

// NOLINTBEGIN(bugprone-reserved-identifier): the platform's names
struct _FILETIME;
struct _GUID;
struct HKEY__;
struct HWND__;
struct tagVARIANT;
// NOLINTEND(bugprone-reserved-identifier)

using FILETIME = _FILETIME;
using HKEY = HKEY__*;
