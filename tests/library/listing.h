// All that can be seen of a library, as text: the one thing that the tests of its promise compare.
// read_library.py prints the same.
#pragma once

#include <gtest/gtest.h>
#include <zo/library/library.h>
#include <zo/text/containers/array.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "bytes/crc32.h"

namespace zo::test {

inline constexpr const char* kNoFile = "(no file)\n";

// What is read of a member as a file; nothing for one that cannot be opened.
inline std::string contentOf(ZoLibrary& library, const ZoFileName& member) {
  ZoFile file;
  if (library.getFile(file, member)) return {};
  std::string bytes(static_cast<std::size_t>(file.size()), '\0');
  bytes.resize(file.read(bytes.data(), static_cast<unsigned int>(bytes.size())));
  return bytes;
}

inline std::uint32_t crcOf(const std::string& bytes) {
  return crc32({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
}

// A line for the library, and one for each member with its state, fields, the code of its check and
// the check value of what is read of it.
inline std::string seenIn(ZoLibrary& library) {
  std::vector<ZoLibEntry> entries;
  const int code = library.forEachEntry(
      [&](const ZoLibEntry& entry) {
        entries.push_back(entry);
        return true;
      },
      true);
  char line[400];
  std::snprintf(line, sizeof line, "library value=%016llx code=%d\n",
                static_cast<unsigned long long>(library.checkSum()), code);
  std::string text = line;
  for (const ZoLibEntry& entry : entries) {
    ZoLibEntry first;
    const bool isFirst = !entry.isDeleted() && library.getEntry(entry.name, first) == 0 &&
                         first.position == entry.position;
    const auto time = [](FILETIME value) {
      return static_cast<unsigned long long>(value.dwHighDateTime) << 32 | value.dwLowDateTime;
    };
    std::snprintf(line, sizeof line,
                  " %s number=%u mode=%u size=%llu stored=%llu %s crc=%08x created=%llx "
                  "accessed=%llx written=%llx check=%d read=%08x\n",
                  entry.isDeleted() ? "deleted" : (isFirst ? "live" : "hidden"), entry.number,
                  entry.mode, static_cast<unsigned long long>(entry.size),
                  static_cast<unsigned long long>(entry.storedSize),
                  entry.isProtected ? "protected" : "unprotected", entry.crc, time(entry.created),
                  time(entry.accessed), time(entry.written), library.verify(entry),
                  isFirst ? crcOf(contentOf(library, entry.name)) : 0);
    for (const char8_t c : std::filesystem::path(entry.name.view()).u8string()) {
      text += static_cast<char>(c);
    }
    text += line;
  }
  return text;
}

// Without what stands from one word to the next, in each line.
inline std::string without(std::string text, std::string_view begin, std::string_view end) {
  for (std::size_t at = 0; (at = text.find(begin, at)) != std::string::npos;) {
    text.erase(at, text.find(end, at) - at);
  }
  return text;
}

inline std::string seenAt(const ZoFileName& path) {
  ZoLibrary library, other;
  if (library.open(path) || other.open(path)) return kNoFile;
  const std::string text = seenIn(library);
  // Who asks for one member before all else is told the same: of one, another one each time.
  static unsigned s_turn = 0;
  ZoArray<ZoFileName> names;
  if (library.getFileNames(names, true) || names.isEmpty()) return text;
  const ZoFileName& name = names[s_turn++ % names.entries()];
  ZoLibEntry first, again;
  EXPECT_EQ(other.getEntry(name, first), library.getEntry(name, again));
  EXPECT_EQ(first.position, again.position);
  EXPECT_EQ(first.size, again.size);
  EXPECT_EQ(contentOf(other, name), contentOf(library, name));
  return text;
}

}  // namespace zo::test
