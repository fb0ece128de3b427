// The whole public interface of zo_com.
//
//   int main() {
//     if (zoComDllAttach() != 0) return 1;  // makes the services, once in a process
//     ...
//     return zoComDllDetach();
//   }
#pragma once

#include <zo/config.h>  // first: it says what the compiler must be

#include <zo/archive.h>
#include <zo/compress.h>
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
