// File names level by level: walking directory levels, and paths computed from texts alone. Nothing
// here asks a disk; links and the current folder are unknown to it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "names/name_parser.h"

namespace zo {

// The stretch of a name that holds its directory levels: behind drive or volume, before the file
// name.
[[nodiscard]] std::wstring_view levelStretch(const NameParts& name) noexcept;
// The next level of a stretch at or after at, which is moved past it; empty at the end. Delimiters
// that follow each other count as one.
[[nodiscard]] std::wstring_view nextLevel(std::wstring_view stretch, size_t& at) noexcept;

[[nodiscard]] inline std::wstring_view withoutFinalDelimiters(std::wstring_view text) noexcept {
  while (!text.empty() && isDelimiter(text.back())) text.remove_suffix(1);
  return text;
}

// A name without superfluous levels.
struct NormalName {
  NameKind kind = NameKind::Plain;
  std::wstring_view macro;
  std::wstring_view root;  // drive or volume
  bool isRooted = false;   // the levels start at the root
  bool isBare = false;     // nothing followed the root: not even a delimiter
  std::vector<std::wstring_view> levels;
  std::wstring_view last;  // file name with extension
  wchar_t delimiter = L'\\';

  [[nodiscard]] std::wstring text() const;
};

// Views refer to the texts of name.
[[nodiscard]] NormalName normalise(const NameParts& name);

// The text that leads from the directory of base to name; nothing when no text does.
[[nodiscard]] std::optional<std::wstring> relativeText(const NormalName& name,
                                                       const NormalName& base);

// The normal text of name seen from the directory of base; of name itself when it is absolute.
[[nodiscard]] std::wstring resolvedText(const NameParts& name, const NameParts& base);

// Text for the whole name: the macro, if any, and the path.
[[nodiscard]] std::wstring wholeText(std::wstring_view macro, std::wstring_view path);

// See ZoFileName::isContained and possibleOnVolume.
[[nodiscard]] bool isContained(const NameParts& name);
[[nodiscard]] bool isPossible(const NameParts& name) noexcept;

}  // namespace zo
