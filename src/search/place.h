// A place that relative names are looked for in, and what is known of its names.
//
// Threads: any; nothing but the counters ever changes in a place that was added.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/folder_watch.h"
#include "search/name_index.h"

namespace zo {

// By which a file is known to be the same as before.
struct FileStamp {
  std::int64_t size = -1;
  std::uint64_t written = 0;
  bool operator==(const FileStamp&) const = default;
};
[[nodiscard]] FileStamp stampOf(const std::wstring& file);

[[nodiscard]] bool isFile(const std::wstring& path);
[[nodiscard]] bool isFolder(const std::wstring& path);

struct FilePlace {
  enum Kind { kFolder, kTree, kLibrary, kServer };
  // A folder is read as soon as it was asked so often directly; what was dropped must earn it anew
  // by as many questions as it has names, which cost about the same.
  static constexpr unsigned int kFirstAsks = 8;

  FilePlace(Kind ofKind, std::wstring whole, std::wstring owner = {}, int rank = 0);

  const Kind kind;
  const std::wstring path;  // of a folder or server with its final delimiter
  const std::wstring module;
  const int priority;
  bool asNamed = false;  // it is the current directory
  std::atomic<unsigned int> asks = 0, asksBeforeReading = kFirstAsks;
};

// What was read of a place, as long as nobody tells of a change.
struct KnownNames {
  using Watches = std::vector<std::shared_ptr<const FolderWatch>>;  // one of each folder

  std::shared_ptr<const NameIndex> index;  // null: ask directly
  Watches watches;                         // none: nobody would tell
  FileStamp stamp;                         // of the place, when it was read
  // Of a library: how many changes of libraries this process had made when its file last had the
  // stamp.
  std::shared_ptr<std::atomic<std::uint64_t>> changes;

  [[nodiscard]] bool isOld() const {
    return std::ranges::any_of(watches, [](const auto& watch) {
      void* const handle = watch->get();
      return anyChanged({&handle, 1});
    });
  }
};

// Of what has a place's name; of a folder with the time when it was made in the size's stead.
[[nodiscard]] FileStamp stampOf(const FilePlace& place);

// Whether what is known of a library is all that this process made of it, and of one that nobody
// watches all that anybody did. Takes no call of the platform unless this process changed a
// library.
[[nodiscard]] bool isUpToDate(const FilePlace& library, const KnownNames& known);

// Reads the names of a place. No index: it cannot be watched or read, or has too many names or
// folders.
[[nodiscard]] KnownNames readNames(const FilePlace& place);
// The same where something changed: a library that is still the same keeps its index.
[[nodiscard]] KnownNames readAgain(const FilePlace& place, const KnownNames& before);

// A relative name with backslashes, without "." and "..", is looked for in a place: what stands
// below that, as a member is spelled by its library; nothing when it is not there. A file that is
// known to be there is looked at once more, as the platform may tell late that it has gone.
[[nodiscard]] std::optional<std::wstring> findBelow(const FilePlace& place, const KnownNames& known,
                                                    const std::wstring& name);
// All names of a place, as findBelow gives them, that fit a pattern in the last component and have
// the levels before it; what comes first counts first.
[[nodiscard]] std::vector<std::wstring> namesBelow(const FilePlace& place, const KnownNames& known,
                                                   const std::wstring& pattern);

}  // namespace zo
