// Splitting a file name into its parts: views in, views out; no storage and no platform.
//
// The rules stand in zo/names/file_name.h. A text of any length and content is safe.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zo {

enum class NameKind { Plain, Drive, Network, Disc, Url, Mail };

struct NameOptions {
  bool ownDelimiters = false;  // write every delimiter as the one of the name's kind
  bool wildcards = false;      // let * and ? stand in the file name
  bool anyDrive = false;       // take any character before a colon in second place for a drive
};

struct NameParts {
  NameKind kind = NameKind::Plain;
  bool isSplit = true;  // false: no name at all; only result and macro say something
  int result = 0;
  size_t prefixLength = 0;      // the volume of a network, disc or URL name
  std::wstring_view macro;      // without $ and quote
  std::wstring_view path;       // drive, directory, fileName and extension, one after the other
  std::wstring_view drive;      // with its colon
  std::wstring_view directory;  // with its final delimiter; with the volume, but for a drive
  std::wstring_view fileName;   // without extension
  std::wstring_view extension;  // with its dot

  // The last component: file name and extension.
  [[nodiscard]] std::wstring_view fileNameExt() const noexcept {
    return path.substr(drive.size() + directory.size());
  }
  // What the directory levels and the file name follow: drive or volume.
  [[nodiscard]] std::wstring_view root() const noexcept {
    return kind == NameKind::Drive ? drive : path.substr(0, prefixLength);
  }
};

[[nodiscard]] constexpr bool isDelimiter(wchar_t c) noexcept { return c == L'\\' || c == L'/'; }
// Whether text begins with a prefix of lower-case letters and signs, in any case of its letters.
[[nodiscard]] bool beginsWith(std::wstring_view text, std::wstring_view lowerPrefix) noexcept;
[[nodiscard]] constexpr wchar_t delimiterOf(NameKind kind) noexcept {
  return kind == NameKind::Disc || kind == NameKind::Url ? L'/' : L'\\';
}

// Splits and checks text. With asDirectory, a last component is made a directory level. Views refer
// to text, or to scratch where the path had to be rewritten; throws std::bad_alloc only there.
[[nodiscard]] NameParts parseName(std::wstring_view text, const NameOptions& options,
                                  bool asDirectory, std::wstring& scratch);

}  // namespace zo
