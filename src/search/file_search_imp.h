// What the standard file search does with a name of any form, over the places that names are looked
// for in.
//
// Errors:  as in zo/system/file_search.h.
// Threads: any; what changes the cache under the service's guard.
#pragma once

#include <zo/search/download_cache.h>
#include <zo/system/file_search.h>

#include <cstdint>
#include <memory>
#include <string>

#include "search/file_finder.h"

struct ZoMemberName;
template <class T>
class ZoSequence;

namespace zo {

class FileSearchImp {
 public:
  [[nodiscard]] FileFinder& finder() noexcept { return finder_; }

  [[nodiscard]] int locate(const ZoFileName& name, ZoFound& found, SearchReport* report = nullptr);
  [[nodiscard]] int findNames(const ZoFileName& pattern, ZoSequence<ZoFileName>& names,
                              unsigned int kinds);
  [[nodiscard]] int open(const ZoFileName& name, ZoFile& file, int access, int share);
  [[nodiscard]] int toDisk(const ZoFileName& name, ZoFileName& file);
  [[nodiscard]] int setCache(const ZoFileName& folder, std::uint64_t limit, unsigned int maxAge);

 private:
  [[nodiscard]] int locateFile(const ZoFileName& name, ZoFound& found, SearchReport* report);
  [[nodiscard]] int locateAsNamed(const ZoFileName& name, ZoFound& found, SearchReport* report);
  [[nodiscard]] int locateBelow(const ZoFileName& name, ZoFound& found, SearchReport* report);
  [[nodiscard]] int locateMember(const ZoFileName& name, ZoFound& found, SearchReport* report);
  [[nodiscard]] int fetch(const ZoFileName& url, ZoFound& found, SearchReport* report);
  [[nodiscard]] int copyOf(const ZoFileName& url, ZoFileName& file, bool asksServer) const;
  [[nodiscard]] int namesOfMembers(const ZoFileName& pattern, ZoSequence<ZoFileName>& names,
                                   unsigned int kinds);
  [[nodiscard]] int copyMember(const ZoFound& member, ZoFileName& file);
  [[nodiscard]] std::wstring folderOfCopies() const;

  FileFinder finder_;
  struct Cache {
    ZoDownloadCache downloads;
    std::wstring folder;  // with its final delimiter
  };
  std::atomic<std::shared_ptr<Cache>> cache_;  // null: none
};

// The name of a file as it is to be looked for: its macro, if any, replaced. Refused for an unknown
// one.
[[nodiscard]] int withoutMacro(const ZoFileName& name, ZoFileName& plain);

}  // namespace zo
