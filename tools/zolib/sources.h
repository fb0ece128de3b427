// What is to be packed: files, whole folders, names from a list, standard input.
#pragma once

#include <windows.h>
#include <zo/files/file.h>

#include <cstdint>
#include <string>
#include <vector>

#include "options.h"
#include "report.h"

namespace zolib {

struct Source {
  std::wstring path;    // "-" for standard input
  std::wstring member;  // its name in the library
  std::uint64_t size = 0;
  FILETIME written{};
  std::wstring key = {};  // folded(member); of a file
};

// The files that the options name, in order; folders are walked, their content by name. What cannot
// be found or read is reported and left out, and so is the library itself. Links to folders are not
// followed.
std::vector<Source> findSources(const Options& options, Report& report);

// Copies standard input to a temporary file that goes when it is closed, and stands at its start.
bool readInputInto(ZoFile& file, Report& report);

// The lines of a file, or of standard input for "-", without blank ones; or where there are zero
// bytes, what they end. False when it cannot be read, which is reported.
bool readLines(const std::wstring& path, std::vector<std::wstring>& lines, Report& report);

// The names behind the library and those of --files-from. False when these cannot be read.
bool namesOf(const Options& options, std::vector<std::wstring>& names, Report& report);

}  // namespace zolib
