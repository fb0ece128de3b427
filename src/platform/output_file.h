// A new file, written from front to back.
//
// Errors:  the platform's code of the first failure is kept, and nothing is written after it; what
//          was written before it stays in the file. Nothing throws.
// Threads: one thread at a time per object.
#pragma once

#include <cstddef>

#include "platform/open_file.h"

namespace zo {

class OutputFile {
 public:
  // Replaces a file of that name; others may read it meanwhile. Null counts as an empty name, which
  // no file has.
  explicit OutputFile(const wchar_t* name) noexcept;
  ~OutputFile() = default;  // closes, and tells nobody of a failure: call close()
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void write(const void* bytes, size_t count) noexcept;
  // 0 so far, or the code of the failure that ended writing.
  [[nodiscard]] int error() const noexcept { return static_cast<int>(error_); }
  // Closes the file and returns error(): only now it is known that everything was taken.
  [[nodiscard]] int close() noexcept;

 private:
  void fail(DWORD code) noexcept;

  OpenFile file_;
  DWORD error_ = 0;
};

}  // namespace zo
