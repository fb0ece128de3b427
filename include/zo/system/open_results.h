// Result codes of ZoFileOpen and ZoDownloadCache, beside the common ones.
#pragma once

#include <zo/results.h>

namespace ZoResult {
// Media
inline constexpr int noManifest = 1010;       // nothing tells what should be on it
inline constexpr int mediaDiffers = 1011;     // a file is missing or not what it should be
inline constexpr int manifestDamaged = 1012;  // or made with another key
// Downloads
inline constexpr int stale = 1021;           // an older copy serves: there was no answer
inline constexpr int hostNotAllowed = 1022;  // the settings do not list the host
inline constexpr int tooLarge = 1023;        // more bytes than one file may have
inline constexpr int serverRefused = 1024;   // the server has no such file, or gave none
}  // namespace ZoResult
