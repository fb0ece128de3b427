// Files as bytes: one that is read at any place, and one that comes to be as a whole or not at all.
//
// Errors:  false, with the reason in GetLastError. A read that comes short is a failure.
// Threads: one thread at a time per object.
// Cost:    nothing is buffered: a call is a call of the platform.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/file_api.h"
#include "platform/handle.h"

namespace zo {

class InputFile {
 public:
  // Others may read, rename and delete the file meanwhile, but not write to it.
  [[nodiscard]] bool open(const wchar_t* name) noexcept;
  [[nodiscard]] std::uint64_t size() const noexcept { return size_; }  // when it was opened
  [[nodiscard]] bool read(std::uint64_t offset, std::span<unsigned char> to) noexcept;

 private:
  Handle file_;
  std::uint64_t size_ = 0;
  std::uint64_t position_ = 0;
};

// A file that is created or replaced in one step. Until commit it is another file in the same
// folder, and is removed unless commit succeeds; so the target is what it was after any failure,
// and after a killed process too.
class TargetFile {
 public:
  TargetFile() = default;
  ~TargetFile();
  TargetFile(const TargetFile&) = delete;
  TargetFile& operator=(const TargetFile&) = delete;

  // Throws std::bad_alloc.
  [[nodiscard]] bool open(const wchar_t* name);
  // All of the bytes; a write that comes short is a failure.
  [[nodiscard]] bool write(std::span<const unsigned char> bytes) noexcept;
  // Brings the bytes to the disk and the file to its name. No file must be open by that name.
  [[nodiscard]] bool commit() noexcept;

 private:
  Handle file_;
  std::wstring name_;
  std::wstring temporary_;
};

}  // namespace zo
