// A file on the disk that holds a library: bytes read and written at any place. That of an open
// library is written by its changes alone (library/change.h).
//
// Errors:  false; the platform's reason is reported to the file-system service at once. A read or
//          write that comes short is a failure.
// Threads: one at a time.
// Cost:    nothing is buffered: a call is a call of the platform, with a seek where needed.
#pragma once

#include "persist/container.h"
#include "platform/open_file.h"
#include "platform/system_path.h"

namespace zo {

// Tells the file-system service of the last error. Returns false.
bool reportFailure(const wchar_t* operation) noexcept;

// How many changes of libraries this process has made so far: who remembers what a library holds
// need not look at its file for them while the count stays. A change is counted before the call
// that made it returns. Any thread may ask.
[[nodiscard]] std::uint64_t libraryChanges() noexcept;
void countLibraryChange() noexcept;

class DiskFile final : public ByteStore {
 public:
  // What tells whether another process has changed the file: every change of a library moves the
  // time of the last write on, see touch().
  struct Signature {
    std::uint64_t size = 0, written = 0;
    bool operator==(const Signature&) const = default;
  };

  // For a reader, who keeps nobody out; for a writer, who keeps other writers out. They do not
  // report: an open may be tried again.
  [[nodiscard]] bool openToRead(const SystemPath& path, DWORD disposition) noexcept;
  [[nodiscard]] bool openToWrite(const SystemPath& path, DWORD disposition) noexcept;
  void take(OpenFile file) noexcept;
  [[nodiscard]] bool isOpen() const noexcept { return static_cast<bool>(file_); }
  [[nodiscard]] bool close() noexcept;

  // False, too, where that cannot be asked.
  [[nodiscard]] bool isEmpty() const noexcept;
  // As the file is now.
  [[nodiscard]] bool look(Signature& signature) noexcept;
  // Moves the time of the last write on. Without it a change within the platform's grain of time,
  // or one that the platform notes only when the file is closed, would not be seen. Counts a
  // change.
  void touch() noexcept;

  // When it was looked at, and since then changed from here.
  [[nodiscard]] std::uint64_t size() const noexcept override { return seen_.size; }
  [[nodiscard]] bool read(std::uint64_t offset, std::span<unsigned char> to) noexcept override;
  [[nodiscard]] bool write(std::uint64_t offset, Bytes bytes) noexcept;
  // Counts a change.
  [[nodiscard]] bool cut(std::uint64_t size) noexcept;
  [[nodiscard]] bool flush() noexcept;
  // The byte that a writer keeps locked.
  [[nodiscard]] bool lock() noexcept;

 private:
  [[nodiscard]] bool open(const SystemPath& path, DWORD access, DWORD share,
                          DWORD disposition) noexcept;
  [[nodiscard]] bool seek(std::uint64_t offset) noexcept;

  OpenFile file_;
  Signature seen_;
  std::uint64_t position_ = 0;  // of the platform's file; kUnknown after a failure
};

// Bytes that go behind one another from a place on.
class DiskSink final : public ByteSink {
 public:
  DiskSink(DiskFile& file, std::uint64_t at) : file_(file), begin_(at), at_(at) {}
  bool write(Bytes bytes) noexcept override {
    if (!file_.write(at_, bytes)) return false;
    at_ += bytes.size();
    return true;
  }
  [[nodiscard]] std::uint64_t size() const { return at_ - begin_; }
  // Goes on from the begin, over what it wrote.
  void restart() noexcept { at_ = begin_; }

 private:
  DiskFile& file_;
  std::uint64_t begin_, at_;
};

}  // namespace zo
