// A fresh folder of its own for a test, removed with all that is in it at the end: read-only files,
// long paths, but not what links lead to.
//
// Errors: a folder that cannot be made throws std::runtime_error; what cannot be removed fails the
//         test and is named, because it mostly means that a file was left open.
#pragma once

#include <filesystem>

namespace zo::test {

class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  // Absolute, with a drive letter, without the prefix for long paths and a backslash at the end.
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace zo::test
