// A disk M: in memory under the library, as a layer of zo::FileApi: its calls can go wrong, and
// what a loss of power leaves of them can be tried. Names on other drives pass on to the platform.
//
// A file counts as on the disk up to its last flush; of what followed, any part may be lost. Names
// are on the disk at once, and a file takes another's name with whatever it has on the disk then.
#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <set>
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
    void applyTo(std::string& file) const {
      const auto begin = static_cast<std::size_t>(offset);
      const std::size_t end = begin + bytes.size();
      if (setsEnd || file.size() < end) file.resize(end);
      file.replace(begin, bytes.size(), bytes);
    }
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
  [[nodiscard]] Image image() const {
    Image image;
    for (const auto& [name, file] : files_) image[name] = file->bytes;
    return image;
  }
  void put(const Image& image) {
    open_.clear();
    files_.clear();
    for (const auto& [name, bytes] : image) {
      files_[name] = std::make_shared<File>(File{
          .bytes = bytes, .created = kNow, .accessed = kNow, .written = kNow, .flushed = bytes});
    }
  }
  // What another process makes of a file meanwhile.
  void change(const std::wstring& name, const std::string& bytes) {
    File& file = *files_.at(name);
    file.bytes = bytes;
    ++file.written.dwHighDateTime;
  }
  std::function<void()> beforeRead;
  [[nodiscard]] std::uint64_t bytesRead() const { return bytesRead_; }
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
  [[nodiscard]] const File* find(const std::wstring& name) const {
    const auto found = files_.find(name);
    return found == files_.end() ? nullptr : found->second.get();
  }

  HANDLE reopen(HANDLE, DWORD, DWORD, DWORD) override { return INVALID_HANDLE_VALUE; }
  HANDLE duplicate(HANDLE) override { return nullptr; }
  bool unlock(HANDLE, std::uint64_t, std::uint64_t) override { return false; }
  HANDLE create(const wchar_t* name, DWORD access, DWORD share, DWORD disposition,
                DWORD flags) override {
    if (!isHere(name)) return FileApi::create(name, access, share, disposition, flags);
    if (!passes()) return INVALID_HANDLE_VALUE;
    std::shared_ptr<File>& file = files_[name];
    const bool exists = file != nullptr;
    if (exists ? disposition == CREATE_NEW : disposition == OPEN_EXISTING) {
      if (!exists) files_.erase(name);
      SetLastError(exists ? ERROR_FILE_EXISTS : ERROR_FILE_NOT_FOUND);
      return INVALID_HANDLE_VALUE;
    }
    if (!exists) file = std::make_shared<File>(File{{}, kNow, kNow, kNow});
    if (flags & FILE_FLAG_DELETE_ON_CLOSE) file->isDoomed = true;
    ++file->handles;
    open_[++lastHandle_] = {file};
    SetLastError(exists ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    return reinterpret_cast<HANDLE>(lastHandle_);
  }
  bool close(HANDLE handle) override {
    const auto found = open_.find(reinterpret_cast<std::size_t>(handle));
    if (found == open_.end()) return FileApi::close(handle);
    const bool passed = passes();
    File& file = *found->second.file;
    if (found->second.locks) file.isLocked = false;
    if (--file.handles == 0 && file.isDoomed && trouble_ != Trouble::stop) {
      files_.erase(nameOf(file));
    }
    open_.erase(found);
    return passed;
  }
  bool read(HANDLE file, void* buffer, DWORD count, DWORD& done) override {
    if (beforeRead) beforeRead();
    Open& open = at(file);
    const std::string& bytes = open.file->bytes;
    const auto begin =
        static_cast<std::size_t>(std::min<std::uint64_t>(open.position, bytes.size()));
    done = static_cast<DWORD>(std::min<std::size_t>(count, bytes.size() - begin));
    const bool isEnd = done == 0;
    done = allowed(done, begin, false);
    bytesRead_ += done;
    bytes.copy(static_cast<char*>(buffer), done, begin);
    open.position += done;
    return done != 0 || (isEnd && trouble_ != Trouble::stop);
  }
  bool write(HANDLE file, const void* data, DWORD count, DWORD& done) override {
    Open& open = at(file);
    done = allowed(count, open.position, true);
    if (done == 0) return false;
    Change change{open.position, std::string(static_cast<const char*>(data), done), false};
    change.applyTo(open.file->bytes);
    open.file->pending.push_back(std::move(change));
    open.position += done;
    return true;
  }
  bool seek(HANDLE file, std::int64_t offset, DWORD method, std::int64_t& position) override {
    if (!passes()) return false;
    Open& open = at(file);
    if (method == FILE_CURRENT) offset += static_cast<std::int64_t>(open.position);
    if (method == FILE_END) offset += static_cast<std::int64_t>(open.file->bytes.size());
    open.position = static_cast<std::uint64_t>(position = offset);
    return offset >= 0;
  }
  bool setEnd(HANDLE file) override {
    if (!passes()) return false;
    Open& open = at(file);
    open.file->pending.push_back({open.position, {}, true});
    open.file->pending.back().applyTo(open.file->bytes);
    return true;
  }
  bool lock(HANDLE file, std::uint64_t, std::uint64_t) override {
    if (!passes(ERROR_NOT_ENOUGH_MEMORY)) return false;
    Open& open = at(file);
    SetLastError(ERROR_LOCK_VIOLATION);
    if (open.file->isLocked) return false;
    return open.locks = open.file->isLocked = true;
  }
  bool flush(HANDLE handle) override {
    if (!passes(ERROR_IO_DEVICE)) return false;
    File& file = *at(handle).file;
    if (beforeDurable) beforeDurable(nameOf(file));
    file.flushed = file.bytes;
    file.pending.clear();
    return true;
  }
  bool size(HANDLE file, std::int64_t& bytes) override {
    bytes = static_cast<std::int64_t>(at(file).file->bytes.size());
    return passes();
  }
  bool times(HANDLE handle, FILETIME* created, FILETIME* accessed, FILETIME* written) override {
    const File& file = *at(handle).file;
    if (created) *created = file.created;
    if (accessed) *accessed = file.accessed;
    if (written) *written = file.written;
    return passes();
  }
  bool setTimes(HANDLE handle, const FILETIME* created, const FILETIME* accessed,
                const FILETIME* written) override {
    if (!passes()) return false;
    File& file = *at(handle).file;
    if (created) file.created = *created;
    if (accessed) file.accessed = *accessed;
    if (written) file.written = *written;
    return true;
  }
  bool removeFile(const wchar_t* name) override {
    if (!isHere(name)) return FileApi::removeFile(name);
    return passes(ERROR_ACCESS_DENIED) && files_.erase(name) != 0;
  }
  // Like the platform, does not replace a file that is open.
  bool move(const wchar_t* from, const wchar_t* to, DWORD flags) override {
    if (!passes(ERROR_ACCESS_DENIED)) return false;
    const auto found = files_.find(from);
    const File* const old = find(to);
    const bool mayReplace = !old || ((flags & MOVEFILE_REPLACE_EXISTING) && old->handles == 0);
    SetLastError(found == files_.end() ? ERROR_FILE_NOT_FOUND : ERROR_ACCESS_DENIED);
    if (found == files_.end() || !mayReplace) return false;
    rename(found, to);
    return true;
  }
  bool rename(HANDLE file, const wchar_t* to) override {
    if (!passes(ERROR_ACCESS_DENIED)) return false;
    SetLastError(ERROR_ALREADY_EXISTS);
    if (find(to)) return false;
    rename(files_.find(nameOf(*at(file).file)), to);
    return true;
  }
  DWORD attributes(const wchar_t* name) override {
    if (!isHere(name)) return FileApi::attributes(name);
    return passes() && find(name) ? FILE_ATTRIBUTE_NORMAL : INVALID_FILE_ATTRIBUTES;
  }
  DWORD tempFolder(DWORD, wchar_t* buffer) override {
    return static_cast<DWORD>(std::wstring(L"M:\\").copy(buffer, 4));
  }

 private:
  struct Open {
    std::shared_ptr<File> file;
    std::uint64_t position = 0;
    bool locks = false;
  };
  static constexpr std::size_t kSector = 512;
  static constexpr FILETIME kNow{.dwLowDateTime = 1000, .dwHighDateTime = 0x01D70000};

  void rename(std::map<std::wstring, std::shared_ptr<File>>::iterator from, const wchar_t* to) {
    if (beforeDurable) beforeDurable(to);
    const std::shared_ptr<File> moved = from->second;
    files_.erase(from);
    files_[to] = moved;
    if (beforeDurable) beforeDurable(to);
  }
  static bool isHere(const std::wstring& name) { return name.starts_with(L"M:\\"); }
  [[nodiscard]] bool passes(DWORD error = ERROR_DISK_FULL) {
    ++calls_;
    const bool isLater = trouble_ == Trouble::stop && calls_ > nth_;
    if (trouble_ == Trouble::none || trouble_ == Trouble::full || (calls_ != nth_ && !isLater)) {
      return true;
    }
    SetLastError(error);
    return false;
  }
  // How much of a reading or writing is done; none is a failure.
  [[nodiscard]] DWORD allowed(DWORD count, std::uint64_t position, bool writes) {
    if (trouble_ != Trouble::shorten && (trouble_ != Trouble::full || !writes)) {
      return passes() ? count : 0;
    }
    const bool isMet = ++calls_ == nth_;
    if (trouble_ == Trouble::shorten) return isMet ? (count + 1) / 2 : count;
    SetLastError(ERROR_DISK_FULL);
    if (calls_ < nth_) return count;
    const std::uint64_t end = (position + count / 2) / kSector * kSector;
    return isMet && end > position ? static_cast<DWORD>(end - position) : 0;
  }
  Open& at(HANDLE file) { return open_.at(reinterpret_cast<std::size_t>(file)); }
  [[nodiscard]] std::wstring nameOf(const File& file) const {
    for (const auto& [name, other] : files_) {
      if (other.get() == &file) return name;
    }
    return {};
  }

  FileApi* before_;
  std::map<std::wstring, std::shared_ptr<File>> files_;
  std::map<std::size_t, Open> open_;
  std::size_t lastHandle_ = 0x40000000;  // the platform has none like it
  Trouble trouble_ = Trouble::none;
  int nth_ = 0, calls_ = 0;
  std::uint64_t bytesRead_ = 0;
};

// What may be on the disk of a file with pending changes when the power goes: any of the changes,
// each in pieces of a sector. Visits all when they are few, otherwise the likely ones and some
// seeded others; no content twice. Returns how many.
inline int forEachRemainder(const MemoryDisk::File& file, std::size_t sector, int most,
                            const std::function<void(const std::string& bytes)>& visit) {
  std::vector<MemoryDisk::Change> pieces;
  std::size_t end = file.flushed.size();
  for (const MemoryDisk::Change& change : file.pending) {
    const auto offset = static_cast<std::size_t>(change.offset);
    const std::size_t after = offset + change.bytes.size();
    // That a file grows reaches the disk apart from the bytes.
    if (change.setsEnd || after > end) pieces.push_back({end = after, {}, true});
    for (std::size_t at = offset; at < after;) {
      const std::size_t next = std::min(after, (at / sector + 1) * sector);
      pieces.push_back({at, change.bytes.substr(at - offset, next - at), false});
      at = next;
    }
  }
  std::set<std::string> seen;
  const auto tryOut = [&](const auto& isKept) {
    std::string bytes = file.flushed;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
      if (isKept(i)) pieces[i].applyTo(bytes);
    }
    if (seen.insert(bytes).second) visit(bytes);
  };
  if (pieces.size() < 31 && (1 << pieces.size()) <= most) {
    for (unsigned mask = 0; mask >> pieces.size() == 0; ++mask) {
      tryOut([mask](std::size_t i) { return (mask >> i & 1) != 0; });
    }
    return static_cast<int>(seen.size());
  }
  std::mt19937 random(static_cast<unsigned>(pieces.size()));
  for (int round = 0; round < most; ++round) {
    const std::size_t one = random() % pieces.size();
    const unsigned kind = random() % 4, share = 1 + random() % 7;
    tryOut([&](std::size_t i) {
      if (kind == 0) return i == one;  // alone, missing, the first ones, or a share of all
      if (kind == 1) return i != one;
      return kind == 2 ? i <= one : random() % 8 < share;
    });
  }
  return static_cast<int>(seen.size());
}

}  // namespace zo::test
