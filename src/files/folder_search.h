// The entries of a folder, one after the other, without "." and "..": of the file system by a
// search of the platform that stays open, of a server by a list that is fetched at once.
//
// Errors:  error() tells why a search could not begin or broke off: 0 when it came to its end.
// Threads: one.
#pragma once

#include <windows.h>
#include <zo/names/file_name.h>

#include <string>
#include <string_view>
#include <vector>

namespace zo {

class FtpConnection;

// The whole name up to the file name, with the final delimiter. (Drive and directory alone would
// miss the value of a macro.)
[[nodiscard]] inline std::wstring_view folderOf(const ZoFileName& name) noexcept {
  const std::wstring_view whole = name.view();
  return whole.substr(0, whole.size() - std::wstring_view(name.fileNameExt()).size());
}

// Where to look for what: a bare volume ("ftp://host", "\\server\share") stands for all in its
// root, and a name without a file name for all in its folder.
struct SearchPlace {
  std::wstring folder;   // with its final delimiter; empty for the current one
  std::wstring pattern;  // for names
};
[[nodiscard]] SearchPlace searchPlace(const ZoFileName& pattern);

class FolderSearch {
 public:
  // The folder ends in a delimiter, or is empty for the current one. The platform leaves out what
  // does not fit the pattern, but for short names that do.
  FolderSearch(std::wstring_view folder, std::wstring_view pattern);
  // All entries of a server's folder.
  FolderSearch(FtpConnection& server, const std::wstring& folder);
  FolderSearch(FolderSearch&& other) noexcept;
  FolderSearch& operator=(FolderSearch&&) = delete;
  ~FolderSearch();

  // false at the end and when it breaks off.
  bool next(WIN32_FIND_DATAW& entry);
  [[nodiscard]] DWORD error() const noexcept { return error_; }

 private:
  void endWith(DWORD error) noexcept;

  HANDLE handle_ = INVALID_HANDLE_VALUE;
  std::vector<WIN32_FIND_DATAW> fetched_;  // already, of which `given_` were given
  std::size_t given_ = 0;
  DWORD error_ = ERROR_SUCCESS;
};

}  // namespace zo
