// What every tool needs to know to tell what it did.
#pragma once

#include <string>

namespace zolib {

struct TalkOptions {
  std::string verb;      // its full name
  std::wstring library;  // that it is about, if any
  bool dryRun = false, quiet = false, verbose = false, json = false;
};

}  // namespace zolib
