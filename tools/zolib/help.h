// Verbs as the command line and the help have them.
#pragma once

#include <span>

#include "options.h"
#include "report.h"
#include "say.h"

namespace zolib {

// What a verb takes beside the options that all have. Sums of bits.
enum Takes : unsigned int {
  kNames = 0x1,        // any number of members, patterns or files behind the library
  kFiles = 0x2,        // these are files, to be packed
  kOneName = 0x4,      // exactly one
  kTwoNames = 0x8,     // exactly two
  kInclude = 0x200,    // --include, --exclude
  kSelect = 0x210,     // these and --files-from
  kWrites = 0x20,      // --dry-run
  kLocks = 0x40,       // --lock-timeout
  kDeletedToo = 0x80,  // --deleted
  kNeedsName = 0x100,
  kThreads = 0x400,  // --threads
};

struct Verb {
  const char* name;
  const char* alias;  // or empty
  Text summary, namesHelp;
  unsigned int takes;
  void (*run)(const Options&, Report&);
  Text examples;
};

[[nodiscard]] std::span<const Verb> verbs() noexcept;

// Behind the list of verbs: names, exit codes, where to read on.
extern const Text kGeneralHelp;

}  // namespace zolib
