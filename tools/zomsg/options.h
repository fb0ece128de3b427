// What a command line asks for.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "talk_options.h"

namespace zomsg {

struct Options : zolib::TalkOptions {
  std::vector<std::wstring> folders;  // check
  std::wstring file, number;          // show, extract
  std::vector<std::wstring> arguments;
  std::wstring language;
  std::optional<std::wstring> output;  // "-" is standard output
  bool strict = false, force = false;
};

}  // namespace zomsg
