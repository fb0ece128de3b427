// The whole public interface of zo_com.
//
//   int main() {
//     if (zoComDllAttach() != 0) return 1;  // makes the services, once in a process
//     ...
//     return zoComDllDetach();
//   }
#pragma once

// The first that a compiler says of it, before the headers that it cannot read.
#if !defined(_WIN32)
#error "zo_com is a library for Windows: choose a compiler that makes programs for it"
#endif
#if __cplusplus < 202002L && (!defined(_MSVC_LANG) || _MSVC_LANG < 202002L)
#error "zo_com needs C++20: -std=c++20, or /std:c++20; zo_c.h is for C and older compilers"
#endif

#include <zo/archive.h>
#include <zo/compress.h>
#include <zo/config.h>
#include <zo/containers.h>
#include <zo/dialogs.h>
#include <zo/files.h>
#include <zo/geometry.h>
#include <zo/graph.h>
#include <zo/messages.h>
#include <zo/parse.h>
#include <zo/result_text.h>
#include <zo/results.h>
#include <zo/strings.h>
#include <zo/system.h>
#include <zo/variant.h>
#include <zo/variant/color.h>
#include <zo/version.h>
#include <zo/xml.h>
