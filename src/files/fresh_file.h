// Files that did not exist before, under names that nobody else has.
#pragma once

#include <zo/names/file_name.h>

#include <string>
#include <string_view>

#include "platform/open_file.h"

namespace zo {

// A name that most likely nothing has: stem, eight hexadecimal digits, ending.
[[nodiscard]] std::wstring freshName(std::wstring_view stem, std::wstring_view ending);

// One of them: closed and removed with this object as long as it is ours. That needs no memory, and
// keeps the last error.
struct FreshFile {
  FreshFile() = default;
  FreshFile(FreshFile&& other) noexcept;
  FreshFile& operator=(FreshFile&&) = delete;
  ~FreshFile();

  OpenFile file;  // none when it could not be made; GetLastError() then says why
  std::wstring name;
  std::wstring path;    // the name as the platform takes it (platform/system_path.h)
  bool isOurs = false;  // it is there, and is to go; false also keeps it
};

// A name for one that is yet to be made.
[[nodiscard]] FreshFile nameFresh(std::wstring_view stem, std::wstring_view ending);
// Makes one and opens it. The stem begins with the folder.
[[nodiscard]] FreshFile createFresh(std::wstring_view stem, std::wstring_view ending,
                                    unsigned long access, unsigned long share, unsigned long flags);

// Stem and ending for a temporary file that is to be called like `name`, in its folder; what it
// does not have is taken from the platform's folder for temporary files, "zo" and ".tmp". The stem
// is empty when that folder cannot be had; GetLastError() then says why.
[[nodiscard]] std::wstring temporaryStem(const ZoFileName& name);
[[nodiscard]] std::wstring temporaryEnding(const ZoFileName& name);

// Stem and ending for what is to take the place of `target` when it is complete: beside it, and not
// found by a search for files of the target's extension.
[[nodiscard]] std::wstring stemBeside(const ZoFileName& target);
inline constexpr std::wstring_view kEndingBeside = L".tmp";

}  // namespace zo
