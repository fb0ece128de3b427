// A disk M: in memory under the library, as a layer of zo::FileApi: its calls can go wrong, and
// what a loss of power leaves of them can be tried. Names on other drives pass on to the platform.
//
// A file counts as on the disk up to its last flush; of what followed, any part may be lost. Names
// are on the disk at once, and a file takes another's name with whatever it has on the disk then.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/file_api.h"

namespace zo::test {

enum class Trouble {
  none,
  fail,     // the n-th call fails
  shorten,  // it moves half of the bytes, and fails when it is no reading or writing
  full,     // it writes no more than whole sectors, and from there on no writing succeeds
  stop,     // it and all that follow do nothing, as if the process had been killed
};

class MemoryDisk final : public FileApi {
 public:
  struct Change {  // of a file: bytes written, or its end set
    std::uint64_t offset;
    std::string bytes;
    bool setsEnd;
  };
  struct File {
    std::string bytes;
    FILETIME created{}, accessed{}, written{};
    int handles = 0;
    bool isLocked = false, isDoomed = false;
    std::string flushed = {};
    std::vector<Change> pending = {};  // since the last flush
  };
  using Image = std::map<std::wstring, std::string>;

  MemoryDisk() : before_(setFileApi(this)) {}
  ~MemoryDisk() override { setFileApi(before_); }
  MemoryDisk(const MemoryDisk&) = delete;
  MemoryDisk& operator=(const MemoryDisk&) = delete;

  // All files, by name; putting an image in closes whatever was open.
  [[nodiscard]] Image image() const;
  void put(const Image& image);
  void arm(Trouble trouble, int nth) { trouble_ = trouble, nth_ = nth, calls_ = 0; }
  [[nodiscard]] int calls() const { return calls_; }
  // Whether a call went wrong that was the only one.
  [[nodiscard]] bool isOver() const {
    return (trouble_ == Trouble::fail || trouble_ == Trouble::shorten) && calls_ >= nth_;
  }
  // Called before the pending changes of a file come to the disk by a flush, and before a name is
  // changed.
  std::function<void(const std::wstring& name)> beforeDurable;
  // The pending changes of a file, if it exists.
  [[nodiscard]] const File* find(const std::wstring& name) const;

  HANDLE create(const wchar_t* name, DWORD access, DWORD share, DWORD disposition,
                DWORD flags) override;
  HANDLE reopen(HANDLE, DWORD, DWORD, DWORD) override { return INVALID_HANDLE_VALUE; }
  HANDLE duplicate(HANDLE) override { return nullptr; }
  bool close(HANDLE file) override;
  bool read(HANDLE file, void* buffer, DWORD count, DWORD& done) override;
  bool write(HANDLE file, const void* data, DWORD count, DWORD& done) override;
  bool seek(HANDLE file, std::int64_t offset, DWORD method, std::int64_t& position) override;
  bool setEnd(HANDLE file) override;
  bool lock(HANDLE file, std::uint64_t start, std::uint64_t length) override;
  bool unlock(HANDLE, std::uint64_t, std::uint64_t) override { return false; }
  bool flush(HANDLE file) override;
  bool size(HANDLE file, std::int64_t& bytes) override;
  bool information(HANDLE file, BY_HANDLE_FILE_INFORMATION& information) override;
  bool lastWrite(HANDLE file, FILETIME& time) override;
  bool setTimes(HANDLE file, const FILETIME* created, const FILETIME* accessed,
                const FILETIME* written) override;
  bool removeFile(const wchar_t* name) override;
  bool move(const wchar_t* from, const wchar_t* to, DWORD flags) override;
  DWORD attributes(const wchar_t* name) override;
  DWORD tempFolder(DWORD size, wchar_t* buffer) override;

 private:
  struct Open {
    std::shared_ptr<File> file;
    std::uint64_t position = 0;
    bool locks = false;
  };
  [[nodiscard]] bool passes(DWORD error = ERROR_DISK_FULL);
  [[nodiscard]] DWORD allowed(DWORD count, std::uint64_t position, bool writes);
  Open& at(HANDLE file);
  std::wstring nameOf(const File& file) const;

  FileApi* before_;
  std::map<std::wstring, std::shared_ptr<File>> files_;
  std::map<std::size_t, Open> open_;
  std::size_t lastHandle_ = 0x40000000;  // the platform has none like it
  Trouble trouble_ = Trouble::none;
  int nth_ = 0, calls_ = 0;
};

// What may be on the disk of a file with pending changes when the power goes: any of the changes,
// each in pieces of a sector. Visits all when they are few, otherwise the likely ones and some
// seeded others; no content twice. Returns how many.
int forEachRemainder(const MemoryDisk::File& file, std::size_t sector, int most,
                     const std::function<void(const std::string& bytes)>& visit);

}  // namespace zo::test
