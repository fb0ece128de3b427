// Text on its way into a file: UTF-16 in, UTF-8 out, in blocks. Line ends stay as they are given.
//
// A surrogate that stands alone becomes U+FFFD; a pair may arrive in two pieces.
//
// Errors:  the file keeps them. Nothing throws but std::bad_alloc from the constructor.
// Threads: one thread at a time per object.
#pragma once

#include <memory>
#include <string_view>

#include "platform/output_file.h"

namespace zo {

class Utf8Writer {
 public:
  // The file must outlive the writer.
  explicit Utf8Writer(OutputFile& file);

  Utf8Writer& operator<<(std::wstring_view text) noexcept;
  // Hands over what is still collected; without it, the end of the text is missing.
  void flush() noexcept;

 private:
  // Hands over the first `count` collected units and keeps the others.
  void writeOut(size_t count) noexcept;

  static constexpr size_t kUnits = size_t{32} * 1024;
  static constexpr size_t kBytesPerUnit = 3;

  OutputFile& file_;
  std::unique_ptr<wchar_t[]> units_;
  std::unique_ptr<char[]> bytes_;
  size_t used_ = 0;
};

}  // namespace zo
