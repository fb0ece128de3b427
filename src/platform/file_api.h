// The platform's file calls that the library makes, in one replaceable place: a test fails them,
// shortens them or stops at the n-th one.
//
// Errors:  false, with the reason in GetLastError.
// Threads: setFileApi while no file is in use; the calls from any thread.
#pragma once

#include <windows.h>

#include <cstdint>

#include "platform/handle.h"

namespace zo {

class FileApi {
 public:
  virtual ~FileApi() = default;

  virtual Handle open(const wchar_t* name, DWORD access, DWORD share, DWORD disposition) noexcept;
  virtual bool size(HANDLE file, std::uint64_t& bytes) noexcept;
  virtual bool seek(HANDLE file, std::uint64_t position) noexcept;
  // One call each: `done` may be less than `size`, 0 at the end of the file.
  virtual bool read(HANDLE file, void* to, DWORD size, DWORD& done) noexcept;
  virtual bool write(HANDLE file, const void* data, DWORD size, DWORD& done) noexcept;
  virtual bool flush(HANDLE file) noexcept;
  // Gives the file `from` the name `to`, in place of the file that has it.
  virtual bool replace(const wchar_t* from, const wchar_t* to) noexcept;
  virtual bool remove(const wchar_t* name) noexcept;
};

[[nodiscard]] FileApi& fileApi() noexcept;
// Installs another one, null for the platform's, and returns the one before.
FileApi* setFileApi(FileApi* api) noexcept;

}  // namespace zo
