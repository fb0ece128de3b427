// The process-wide lock of libraries.
#pragma once

namespace zo {

// One operation on libraries at a time in a process, be zoComDllAttach called or not.
class FilesLock {
 public:
  FilesLock() noexcept;
  FilesLock(const FilesLock&) = delete;
  FilesLock& operator=(const FilesLock&) = delete;
  ~FilesLock();
};

}  // namespace zo
