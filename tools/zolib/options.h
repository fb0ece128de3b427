// What a command line asks for.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "talk_options.h"

namespace zolib {

enum class Overwrite {
  kNever,
  kAlways,
  kNewer,
  kUnsaid,  // add: always; update: newer; extract: never, with a warning
};

enum class Sort { kFile, kName, kSize, kPacked, kTime };  // kFile: the file's order

enum class Recover { kLatest, kFirst, kAll };  // of several deleted members of a name

enum class Mode { kNormal, kFast, kBest, kStore, kAuto };

struct Options : TalkOptions {
  std::vector<std::wstring> names;  // what follows the library
  std::vector<std::wstring> include, exclude;
  std::optional<std::wstring> filesFrom;  // "-" is standard input
  std::wstring memberName;                // for data from standard input
  std::wstring output;
  std::optional<std::wstring> dot;  // "-" is standard output
  Mode mode = Mode::kAuto;
  Overwrite overwrite = Overwrite::kUnsaid;
  Recover recover = Recover::kLatest;
  double lockSeconds = 5;
  unsigned int threads = 1;
  bool deleted = false, physically = false, namesOnly = false;
  bool byContent = false, verify = false;  // while packing
  bool flat = false;                       // extract without folders
  unsigned int strip = 0;                  // so many levels
  Sort sort = Sort::kFile;
  bool folders = false;   // list their totals
  bool versions = false;  // what was deleted under a name, too
};

}  // namespace zolib
