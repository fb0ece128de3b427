// The folder of a download cache: its entries, each a copy and what is known of it, and who may
// touch them.
//
// A copy is KEY-SUM.ext, with a key of the URL and the first digits of its own checksum, and
// KEY.info beside it tells which copy is in force (search/cache_mark.h). So a new copy never takes
// the name of the old one, and one rename makes it the one in force.
//
// Threads: one per entry, the one that holds its lock.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "platform/handle.h"
#include "search/cache_mark.h"
#include "search/file_look.h"

namespace zo {

// Holds an entry against other threads and processes, in any of which it may be. One that was held
// by a process that ended is obtained.
class EntryLock {
 public:
  // The folder in full.
  EntryLock(const std::wstring& folder, const std::wstring& key);
  EntryLock(const EntryLock&) = delete;
  EntryLock& operator=(const EntryLock&) = delete;
  ~EntryLock();

  // Of the mutex.
  [[nodiscard]] static std::wstring nameOf(const std::wstring& folder, const std::wstring& key);
  // false where none can be had; GetLastError() then says why.
  [[nodiscard]] bool isThere() const noexcept { return static_cast<bool>(mutex_); }
  // Whether it is held now; waits so many milliseconds.
  bool wait(DWORD milliseconds) noexcept;

 private:
  Handle mutex_;
  bool isHeld_ = false;
};

class DownloadFolder {
 public:
  DownloadFolder() = default;
  // In full, with its final delimiter.
  explicit DownloadFolder(std::wstring folder) : folder_(std::move(folder)) {}
  [[nodiscard]] const std::wstring& path() const noexcept { return folder_; }

  [[nodiscard]] std::wstring copyName(const std::wstring& key, const Sha256Sum& sum,
                                      const std::wstring& extension) const;

  // What is known of the entry, and whether its copy is the one that was stored.
  [[nodiscard]] bool load(const std::wstring& key, const std::string& url,
                          const std::wstring& extension, CacheMark& mark, FileLook& look) const;
  // Makes it what is known of the entry, in one step; false leaves the reason in the last error.
  [[nodiscard]] bool store(const std::wstring& key, const CacheMark& mark) const;
  // Remembers that the entry was of use now.
  void touch(const std::wstring& key) const;
  // Removes all files of an entry but the copy `kept`; false when one stays.
  [[nodiscard]] bool removeAll(const std::wstring& key, const std::wstring& kept = {}) const;

  // Removes all entries; false when something stays, as somebody holds it.
  [[nodiscard]] bool clear() const;
  // Removes entries until the copies have no more bytes than that, the one used longest ago first,
  // and what killed processes left; never of `kept`, nor what somebody holds.
  void trim(std::uint64_t limit, const std::wstring& kept) const;

 private:
  [[nodiscard]] std::wstring copyInForce(const std::wstring& key) const;

  std::wstring folder_;
};

}  // namespace zo
