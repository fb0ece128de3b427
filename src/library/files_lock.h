// The process-wide lock of libraries.
#pragma once

namespace zo {

// One operation on libraries at a time in a process.
class FilesLock {
 public:
  FilesLock() noexcept;
  FilesLock(const FilesLock&) = delete;
  FilesLock& operator=(const FilesLock&) = delete;
  ~FilesLock();

 private:
  bool taken_;  // not before zoComDllAttach
};

}  // namespace zo
