// What a command line asks for.
#pragma once

#include <optional>
#include <string>

#include "talk_options.h"

namespace zoval {

struct Options : zolib::TalkOptions {
  std::wstring file, second;           // diff, convert, edit
  std::wstring path, value;            // get, set, graph
  std::wstring member;                 // of files that are libraries
  std::wstring from, to;               // forms; empty: by what is in the file, by its name
  std::optional<std::wstring> output;  // "-" is standard output
  double tolerance = 0;
  bool anyOrder = false, valuesOnly = false, readOnly = false;
};

}  // namespace zoval
