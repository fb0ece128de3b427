// Saving a file so that nothing can leave half of it: what is written goes to a temporary file
// beside the target ("name~xxxxxxxx.tmp"), which takes the target's place in one step when it is
// complete and on the disk.
//
//   ZoFileSave save;
//   if (save.open(name)) return report();
//   write(save.file());
//   if (save.commit()) return report();      // the old file is still there
//
// Errors:  0, or 1 after a failure whose reason the file-system service's errorTxt() gives; 3 for a
//          URL. After any failure the target is as it was, and the temporary file is removed. A
//          process that is killed leaves the target old or complete, and perhaps the temporary
//          file.
// Threads: one.
// Cost:    commit waits for the disk, unless told otherwise.
#pragma once

#include <zo/files/file.h>

#include <memory>

namespace zo {
struct FreshFile;
}

class ZO_COM_API ZoFileSave {
 public:
  ZoFileSave();
  ZoFileSave(const ZoFileSave&) = delete;
  ZoFileSave& operator=(const ZoFileSave&) = delete;
  ~ZoFileSave();  // cancels what was not committed

  // Begins to save, cancelling what was begun before. The target's folder must exist.
  [[nodiscard]] int open(const ZoFileName& target);
  // What is to become the target: open for reading and writing, empty. It may be closed, or handed
  // to a stream that is closed before the commit.
  [[nodiscard]] ZoFile& file() noexcept { return file_; }
  // Puts the file in the target's place, and is done with it. Refused, and then cancelled, when a
  // write, seek or flush of it has failed, even if the caller did not look, or an archive over it
  // could not hand over what it holds; when it was cancelled; when nothing was opened; or when the
  // target is read-only. Without `toDisk` a loss of power may undo it.
  [[nodiscard]] int commit(bool toDisk = true);
  template <zo::NotAFlag T>
  int commit(const T& toDisk) = delete;  // the target is that of open; here true or false
  // Removes what was written.
  void cancel();

 private:
  class Imp;
  int fail();

  ZoFile file_;
  Imp* imp_ = nullptr;  // file_'s
  ZoFileName target_;
  std::unique_ptr<zo::FreshFile> beside_;  // null when nothing is open
};
